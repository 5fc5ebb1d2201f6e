// omu::unregister_task ?-task NAME?
// Takes a command out of this interpreter. Succeeds also if there is no such task.
#include "platform/env/HUTEnv.h"
#include "platform/msg/ComMsgMgr.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace unregister_task {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::unregister_task";

    static void load_description() {
        in_categories("Ormeau");
        description_instance("Unregister a task from the interp", "")
            .add_options()
            .add_option("task", options::text(""), "Task to unregister")
            .hint("command");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const auto name = get_option<std::string>("task");
        if (!task_manager::unregisterFactory(interp, name) && HUTEnv::isTclDebug()) {
            ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_LINE,
                                     "No task named '" + name + "' is registered.\n");
        }
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace unregister_task
