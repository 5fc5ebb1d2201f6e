// omu::create_slave ?-safe? ?-noimport? ?interp?
// Makes an interpreter that has all commands, and gives its name. Fails when the name is taken, and when the
// commands do not come up: in a safe one, which has no load.
#include "platform/env/HUTFile.h"
#include "platform/msg/ComMsgMgr.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace create_slave {

namespace {

constexpr const char* loadScript = "load libzq_commontasks[info sharedlibextension]";

std::string next_name() {
    static unsigned counter = 0; // interpreters are made by one thread
    return "ormeau:slave" + std::to_string(counter++);
}

std::string result_of(Tcl_Interp* interp) {
    return HTCTclEncoding::tclGetString(Tcl_GetObjResult(interp));
}

Tcl_Interp* create(Tcl_Interp* master, const std::string& name, bool safe) {
    Tcl_Interp* slave = Tcl_CreateSlave(master, HTCTclEncoding::toTcl(name).c_str(), safe);
    if (!slave) {
        HUTFile::write_atomically("slave_creation_error.log",
                                  "Failed to create slave interpreter: " + result_of(master));
        throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-232@%s.\n", name});
    }
    return slave;
}

void require(Tcl_Interp* slave, int code, const std::string& name) {
    if (code != TCL_OK) {
        throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-233@%s%s\n", name, result_of(slave)});
    }
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::create_slave";

    static void load_description() {
        in_categories("Tools");
        description_instance("Create a slave interpreter", "Name of slave")
            .add_options()
            .add_option("interp", options::text(), "name of interp")
            .add_option("safe", options::flag(), "create safe interp")
            .add_option("noimport", options::flag(), "don't import common::");
        positional_instance().add("interp", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const bool import = !get_option<bool>("noimport");
        std::string name = get_option<std::string>("interp");
        if (name.empty()) {
            name = next_name();
        }
        Tcl_Interp* slave = create(interp, name, get_option<bool>("safe"));
        if (!import) {
            Tcl_CreateNamespace(slave, "omu", nullptr, nullptr);
            Tcl_SetVar2(slave, "omu::noimport", nullptr, "1", TCL_GLOBAL_ONLY);
        }
        require(slave, Tcl_EvalEx(slave, loadScript, -1, TCL_EVAL_GLOBAL), name);
        if (import) {
            require(slave, Tcl_Import(slave, nullptr, "::common::*", 1), name);
        }
        return set_result(interp, name);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace create_slave
