// omu::HistKeep ?-count N?
// Sets how many events the history keeps, if a number is given. Gives how many it keeps.
#include "platform/tcl/HTCHistory.h"
#include "tcltasks/builtin/history/history_cmds.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace history_cmds::keep {

class task : public HTCITaskHelper<task, history_tags> {
public:
    static constexpr const char* command = "omu::HistKeep";

    static void load_description() {
        in_categories("Internal");
        description_instance("Internal command for setting the size of the history stack",
                             "size of the history stack")
            .add_options()
            .add_option("count", options::number(-1), "The size of the history stack");
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp* interp) override {
        const int kept = HTCHistory::Mgr::instance().keep(get_option<int>("count"));
        return set_result(interp, std::to_string(kept));
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace history_cmds::keep
