// common::endgroup ?-nodisplay?
// Ends the group of commands that startgroup began last.
#include "platform/taskcore/HTCUndoRedo.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace endgroup {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::endgroup";

    static void load_description() {
        in_categories("GUIControl");
        description_instance("End a set of commands that can be undone/redone as a group", "")
            .add_options()
            .add_option("nodisplay", options::flag(),
                        "Disable displaying the endgroup command when it is undone");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp*) override {
        HTCUndoRedo::Mgr::instance().endGroup(!get_option<bool>("nodisplay"));
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace endgroup
