// omu::get_log_filename
// The name of the session's log as it was given; empty without one.
#include "platform/env/HUTLogFileMgr.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace get_log_filename {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::get_log_filename";

    static void load_description() {
        in_categories("Report");
        description_instance("Return the name of current log file", "name");
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp* interp) override { return set_result(interp, HUTLogFileMgr::getLogFileName()); }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_log_filename
