// common::list_features ?-all?
// The names of the features that can be loaded, sorted; with -all also those that are loaded or hidden.
#include "tcltasks/core/task.h"
#include "tcltasks/utils/detail/Features.h"

using namespace vek::tcltasks;

namespace list_features {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::list_features";

    static void load_description() {
        in_categories("Tools");
        description_instance("List available features.", "names of features")
            .add_options()
            .add_option("all", options::flag(), "List all features including those that are hidden");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        Features::init(interp);
        return set_result(interp, Features::getAll(interp, !get_option<bool>("all")));
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace list_features
