// omu::HistChange -newvalue TEXT ?-event N?
// Puts another text in the place of an event of the history, the newest one unless another is named.
#include "platform/tcl/HTCHistory.h"
#include "tcltasks/builtin/detail/journal.h"
#include "tcltasks/builtin/history/history_cmds.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace history_cmds::change {

class task : public HTCITaskHelper<task, history_tags> {
public:
    static constexpr const char* command = "omu::HistChange";

    static void load_description() {
        in_categories("Internal");
        description_instance("Internal command for changing an entry in the history stack", "")
            .add_options()
            .add_option("newvalue", options::text(), "Add command to history stack")
            .add_option("event", options::value<int>(), "The command to replace with new value");
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp* interp) override {
        const auto text = get_option<std::string>("newvalue");
        const int event = get_option<int>("event");
        HTCHistory::Mgr::instance().change(text, event);
        HTCBuiltin::detail::journal_changed_event(interp, event, text);
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace history_cmds::change
