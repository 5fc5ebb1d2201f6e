// common::load_features ?NAME...?
// Loads features into this interpreter, in order. The first that is unknown, hidden or failing ends the
// command with an error; those before it stay loaded.
#include "tcltasks/core/task.h"
#include "tcltasks/utils/detail/Features.h"

using namespace vek::tcltasks;

namespace load_features {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::load_features";

    static void load_description() {
        in_categories("Tools");
        description_instance("Load Tcl commands for a specified feature.", "")
            .add_options()
            .add_option("features", options::list(),
                        "Feature(s) to load, use list_features for a list of available features.")
            .hint("feature");
        positional_instance().add("features", -1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        Features::init(interp);
        for (const std::string& name : get_option<std::vector<std::string>>("features")) {
            Features::load(interp, name);
        }
        Tcl_ResetResult(interp);
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace load_features
