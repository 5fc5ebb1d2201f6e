// omu::HistInfo ?-count N?
// A listing of the newest events of the history, of all of them unless a number is given.
#include "platform/tcl/HTCHistory.h"
#include "tcltasks/builtin/history/history_cmds.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace history_cmds::info {

class task : public HTCITaskHelper<task, history_tags> {
public:
    static constexpr const char* command = "omu::HistInfo";

    static void load_description() {
        in_categories("Internal");
        description_instance("Internal command for getting an entry from the history stack",
                             "list of commands")
            .add_options()
            .add_option("count", options::number(-1), "The number of commands to return");
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp* interp) override {
        return set_result(interp, HTCHistory::Mgr::instance().info(get_option<int>("count")));
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace history_cmds::info
