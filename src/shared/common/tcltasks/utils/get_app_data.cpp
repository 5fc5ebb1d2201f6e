// omu::get_app_data
// The user's directory for the product's data, which need not exist. Fails with an empty result if there is
// no place for it.
#include "platform/env/HUTEnv.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace get_app_data {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::get_app_data";

    static void load_description() {
        in_categories("Report");
        description_instance("Fetch the location of the application data dir.", "path");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const std::string directory = HUTEnv::getVEKAppDataDir();
        set_result(interp, directory);
        return directory.empty() ? TCL_ERROR : TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_app_data
