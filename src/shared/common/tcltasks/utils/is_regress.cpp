// omu::is_regress
// "1" in regression mode, in which output that differs from run to run is left out; else "0".
#include "platform/env/HUTEnv.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace is_regress {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::is_regress";

    static void load_description() {
        in_categories("Report");
        description_instance("Return 1 if it's in regression mode; 0 otherwise", "1 or 0");
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp* interp) override { return set_result(interp, HUTEnv::getRegressMode()); }
};

extern const task_entry entry = entry_of<task>;

} // namespace is_regress
