// common::startgroup ?-try?
// Begins a group of commands that undo takes back together; groups nest. Gives 1, or 0 if none was begun.
#include "platform/taskcore/HTCUndoRedo.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace startgroup {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::startgroup";

    static void load_description() {
        in_categories("GUIControl");
        description_instance("Start a set of commands that can be undone/redone as a group", "")
            .add_options()
            .add_option("try", options::flag(), "Don't start a group if one has already been started");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        auto& stack = HTCUndoRedo::Mgr::instance();
        if (get_option<bool>("try") && stack.isInGroup()) {
            set_result(interp, "0");
            return task_manager::code_no_action;
        }
        stack.startGroup(true);
        return set_result(interp, "1");
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace startgroup
