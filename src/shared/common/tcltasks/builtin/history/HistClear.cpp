// omu::HistClear
// Forgets the history.
#include "platform/tcl/HTCHistory.h"
#include "tcltasks/builtin/history/history_cmds.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace history_cmds::clear {

class task : public HTCITaskHelper<task, history_tags> {
public:
    static constexpr const char* command = "omu::HistClear";

    static void load_description() {
        in_categories("Internal");
        description_instance("Internal command for clearing the history stack", "");
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp*) override {
        HTCHistory::Mgr::instance().clear();
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace history_cmds::clear
