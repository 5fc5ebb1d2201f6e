// omu::HistEvent ?-event N?
// The command of an event of the history, the newest one unless another is named.
#include "platform/tcl/HTCHistory.h"
#include "tcltasks/builtin/history/history_cmds.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace history_cmds::event {

class task : public HTCITaskHelper<task, history_tags> {
public:
    static constexpr const char* command = "omu::HistEvent";

    static void load_description() {
        in_categories("Internal");
        description_instance("Internal command for getting an entry from the history stack", "command")
            .add_options()
            .add_option("event", options::value<int>(), "The command to return");
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp* interp) override {
        return set_result(interp, HTCHistory::Mgr::instance().event(get_option<int>("event")));
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace history_cmds::event
