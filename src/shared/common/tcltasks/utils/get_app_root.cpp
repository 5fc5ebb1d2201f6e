// omu::get_app_root ?-appfile FILE?
// The application root that holds FILE, or the first root. Fails with an empty result if no root holds it.
#include "platform/env/HUTEnv.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace get_app_root {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::get_app_root";

    static void load_description() {
        in_categories("Report");
        description_instance("Fetch the location of the application root.", "path")
            .add_options()
            .add_option("appfile", options::text(""),
                        "Locate the application root path for the specific application file.");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const std::string root = HUTEnv::getOMUAppRoot(get_option<std::string>("appfile"));
        set_result(interp, root);
        return root.empty() ? TCL_ERROR : TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_app_root
