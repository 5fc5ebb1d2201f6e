// common::version ?-short?
// The product's version, build and copyright, or the version number alone.
#include "tcltasks/driver/detail/version.h"

#include "platform/env/HUTEnv.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace version {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::version";

    static void load_description() {
        const std::string& product = HUTEnv::getProductName();
        in_categories("Report");
        description_instance("Returns the build for " + product + " and the build date", product + " version")
            .add_options()
            .add_option("short", options::flag(), "Return only the numeric version number");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        set_result(interp, driver::detail::getVersion(get_option<bool>("short")));
        return 0;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace version
