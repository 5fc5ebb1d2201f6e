// omu::get_journal_filename
// The name of the session's journal as it was given; empty without one.
#include "platform/env/HUTLogFileMgr.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace get_journal_filename {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::get_journal_filename";

    static void load_description() {
        in_categories("Report");
        description_instance("Return the name of current journal file", "name");
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp* interp) override {
        return set_result(interp, HUTLogFileMgr::getJournalFileName());
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_journal_filename
