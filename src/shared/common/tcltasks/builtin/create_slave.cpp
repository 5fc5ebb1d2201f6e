// omu::create_slave ?-safe? ?-noimport? ?interp?
// Makes an interpreter that has all commands of this one's libraries, and gives its name. Fails when the name
// is taken, and when the commands do not come up: in a safe one, which has no load.
#include <string_view>
#include <system_error>

#include "platform/env/HUTFile.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/tcl/tclcmdobj.h"
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
        try {
            HUTFile::write_atomically("slave_creation_error.log",
                                      "Failed to create slave interpreter: " + result_of(master));
        } catch (const std::system_error&) {
            // A directory that takes no file does not change what failed.
        }
        throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-232@%s.\n", name});
    }
    return slave;
}

void require(Tcl_Interp* slave, int code, const std::string& name) {
    if (code != TCL_OK) {
        throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-233@%s%s\n", name, result_of(slave)});
    }
}

// Whether a file is one of the tool's libraries, apart from this one.
bool is_further_library(std::string_view file) {
    const std::string_view tail = file.substr(file.rfind('/') + 1);
    return tail.starts_with("libzq_") && !tail.starts_with("libzq_commontasks.");
}

// The commands of the product stand in libraries of their own, which the master has loaded before.
void load_further_libraries(Tcl_Interp* master, Tcl_Interp* slave, const std::string& name) {
    tclcmdobj(master, "::info").append("loaded").append("").eval_throw(TCL_EVAL_GLOBAL);
    const tclobj_ref loaded(Tcl_GetObjResult(master));
    int count = 0;
    Tcl_Obj** libraries = nullptr;
    Tcl_ListObjGetElements(nullptr, loaded.get(), &count, &libraries);
    while (count-- > 0) { // the newest stands first
        Tcl_Obj *file = nullptr, *package = nullptr;
        Tcl_ListObjIndex(nullptr, libraries[count], 0, &file);
        Tcl_ListObjIndex(nullptr, libraries[count], 1, &package);
        if (file && package && is_further_library(Tcl_GetString(file))) {
            require(slave, tclcmdobj(slave, "load").append(file).append(package).eval(TCL_EVAL_GLOBAL), name);
        }
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
        load_further_libraries(interp, slave, name);
        if (import) {
            require(slave, Tcl_Import(slave, nullptr, "::common::*", 1), name);
        }
        return set_result(interp, name);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace create_slave
