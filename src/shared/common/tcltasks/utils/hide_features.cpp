// omu::hide_features ?NAME...?
// Keeps features, which need not exist, out of list_features and from being loaded, for the rest of the
// session.
#include "tcltasks/core/task.h"
#include "tcltasks/utils/detail/Features.h"

using namespace vek::tcltasks;

namespace hide_features {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::hide_features";

    static void load_description() {
        in_categories("Tools");
        description_instance("Hide specified commands from command completion", "")
            .add_options()
            .add_option("features", options::list(), "List of features to hide from list_features")
            .hint("feature");
        positional_instance().add("features", -1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        Features::init(interp);
        for (const std::string& name : get_option<std::vector<std::string>>("features")) {
            Features::hide(name);
        }
        Tcl_ResetResult(interp);
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace hide_features
