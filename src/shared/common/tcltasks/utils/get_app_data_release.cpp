// omu::get_app_data_release
// The directory of this release in the user's data, as .../2026.1. Fails with an empty result if there is no
// place for it.
#include "platform/env/HUTEnv.h"
#include "platform/env/HUTPathUtils.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace get_app_data_release {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::get_app_data_release";

    static void load_description() {
        in_categories("Report");
        description_instance("Fetch the location of the application data/{release}.", "path");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const std::string directory = HUTEnv::getVEKAppDataDir();
        if (directory.empty()) {
            return TCL_ERROR;
        }
        return set_result(interp, HUTPathUtils::join({directory, HUTEnv::getProductMajorMinorVersion()}));
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_app_data_release
