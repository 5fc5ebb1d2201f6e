// omu::current_features
// The names of the features that are loaded in this interpreter, sorted.
#include "tcltasks/core/task.h"
#include "tcltasks/utils/detail/Features.h"

using namespace vek::tcltasks;

namespace current_features {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::current_features";

    static void load_description() {
        in_categories("Tools");
        description_instance("List features currently loaded.", "names of features");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        Features::init(interp);
        std::string names;
        for (const std::string& name : Features::loaded(interp)) {
            names += (names.empty() ? "" : " ") + name;
        }
        return set_result(interp, names);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace current_features
