// common::undo ?-list? ?-clear? ?-disable? ?-enable? ?-size?
// Takes back the last command or group of commands. Fails when there is none.
#include "platform/msg/ComMsgMgr.h"
#include "platform/taskcore/HTCUndoRedo.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace undo {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::undo";

    static void load_description() {
        in_categories("GUIControl");
        description_instance("Un-do previous command", "with -list, the list of undoable tasks")
            .add_options()
            .add_option("list", options::flag(), "Show a list of undoable tasks")
            .add_option("clear", options::flag(), "Clear the undo/redo stack")
            .add_option("disable", options::flag(), "Disables the undo/redo stack")
            .add_option("enable", options::flag(), "Enables the undo/redo stack")
            .add_option("size", options::flag(), "Return number of commands on the undo stack");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        auto& stack = HTCUndoRedo::Mgr::instance();
        if (get_option<bool>("clear")) {
            stack.clearUndoRedo();
            return TCL_OK;
        }
        if (get_option<bool>("disable")) {
            stack.disableUndoStack();
            return TCL_OK;
        }
        if (get_option<bool>("enable")) {
            stack.enableUndoStack();
            return TCL_OK;
        }
        if (get_option<bool>("size")) {
            return set_result(interp, std::to_string(stack.undoSize()));
        }
        if (get_option<bool>("list")) {
            std::string steps;
            stack.listUndo(steps);
            return set_result(interp, steps);
        }
        if (stack.undoSize() < 1) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_INFO, "@17-174@\n");
            return TCL_ERROR;
        }
        if (stack.isInGroup()) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-378@");
        }
        if (stack.undo(interp)) {
            Tcl_ResetResult(interp);
        }
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace undo
