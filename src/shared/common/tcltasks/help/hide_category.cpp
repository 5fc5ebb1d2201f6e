// omu::hide_category ?CATEGORY...?
// Keeps help categories out of the lists of categories and out of the help of commands. Never fails.
#include "platform/taskcore/HTCTclTaskOptions.h"
#include "tcltasks/core/task.h"
#include "tcltasks/help/detail/HelpState.h"

using namespace vek::tcltasks;

namespace hide_category {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::hide_category";

    static void load_description() {
        in_categories("Tools");
        description_instance("Hide specified categories from help", "TCL_OK")
            .add_options()
            .add_option("categories", options::list(), "List of categories to hide from help");
        positional_instance().add("categories", -1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp*) override {
        for (const std::string& name : get_option<std::vector<std::string>>("categories")) {
            HTCTclTaskOptions::hideCategory(name);
        }
        HTCHelp::detail::g_dirtyCategories = true;
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace hide_category
