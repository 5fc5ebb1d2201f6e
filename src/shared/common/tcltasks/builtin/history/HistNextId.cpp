// omu::HistNextId
// The number that the next event of the history gets.
#include "platform/tcl/HTCHistory.h"
#include "tcltasks/builtin/history/history_cmds.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace history_cmds::nextid {

class task : public HTCITaskHelper<task, history_tags> {
public:
    static constexpr const char* command = "omu::HistNextId";

    static void load_description() {
        in_categories("Internal");
        description_instance("Internal command for getting the next id of the history stack", "id");
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp* interp) override {
        return set_result(interp, std::to_string(HTCHistory::Mgr::instance().nextid()));
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace history_cmds::nextid
