// omu::register_slave_tasks tasks
// Gives the interpreter it is called in commands of the one that made it. Fails at the first name that is no
// command there; those before stay.
#include "platform/msg/ComMsgMgr.h"
#include "platform/tcl/HTCTclInterp.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace register_slave_tasks {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::register_slave_tasks";

    static void load_description() {
        in_categories("Tools");
        description_instance("Register Tcl commands with a slave interpreter", "")
            .add_options()
            .add_option("tasks", options::objects<std::string>(), "list of tasks to register")
            .required();
        positional_instance().add("tasks", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        Tcl_Interp* master = Tcl_GetMaster(interp);
        if (!master) {
            throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5410@%s\n", command});
        }
        const auto tasks = get_option<tcl_collection<HSTVector<std::string>>>("tasks");
        for (const std::string& name : *tasks) {
            if (const int code = HTCTclInterp::registerSlaveTask(master, interp, name); code != TCL_OK) {
                return code;
            }
        }
        Tcl_ResetResult(interp);
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace register_slave_tasks
