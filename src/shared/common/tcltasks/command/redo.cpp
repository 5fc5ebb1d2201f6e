// common::redo ?-list? ?-clear? ?-size?
// Brings back what undo took back last. Fails when there is nothing.
#include "platform/msg/ComMsgMgr.h"
#include "platform/taskcore/HTCUndoRedo.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace redo {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::redo";

    static void load_description() {
        in_categories("GUIControl");
        description_instance("Re-do previous command", "with -list, the list of redoable tasks")
            .add_options()
            .add_option("list", options::flag(), "Show a list of redoable tasks")
            .add_option("clear", options::flag(), "Clear the undo/redo stack")
            .add_option("size", options::flag(), "Return number of commands on the redo stack");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        auto& stack = HTCUndoRedo::Mgr::instance();
        if (get_option<bool>("clear")) {
            stack.clearUndoRedo();
            return TCL_OK;
        }
        if (get_option<bool>("size")) {
            return set_result(interp, std::to_string(stack.redoSize()));
        }
        if (get_option<bool>("list")) {
            std::string steps;
            stack.listRedo(steps);
            return set_result(interp, steps);
        }
        if (stack.redoSize() < 1) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_INFO, "@17-173@\n");
            return TCL_ERROR;
        }
        if (stack.isInGroup()) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-377@");
        }
        if (stack.redo(interp)) {
            Tcl_ResetResult(interp);
        }
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace redo
