// omu::get_data_dir ?-datafile FILE? ?-append?
// The data directory that holds FILE, or the first one; with -append the path of FILE in it. Fails with an
// empty result if there is none.
#include "platform/env/HUTEnv.h"
#include "platform/env/HUTPathUtils.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace get_data_dir {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::get_data_dir";

    static void load_description() {
        in_categories("Report");
        description_instance("Fetch the location of the data files.", "path")
            .add_options()
            .add_option("datafile", options::text(""),
                        "Locate the data file path for the specific data file.")
            .add_option("append", options::flag(), "Append the datafile argument to the return value");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const auto datafile = get_option<std::string>("datafile");
        const std::string directory = HUTEnv::getOMUDataDir(datafile);
        if (directory.empty()) {
            return TCL_ERROR;
        }
        return set_result(interp,
                          get_option<bool>("append") ? HUTPathUtils::join({directory, datafile}) : directory);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_data_dir
