// omu::set_help_config ?-hide_category LIST? ?-expose_namespace LIST?
// Tells help which categories not to show, and commands of which namespaces to show. Never fails.
#include <algorithm>

#include "platform/taskcore/HTCTclTaskOptions.h"
#include "tcltasks/core/task.h"
#include "tcltasks/help/detail/HelpState.h"

using namespace vek::tcltasks;
using namespace HTCHelp::detail;

namespace set_help_config {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::set_help_config";

    static void load_description() {
        in_categories("Tools");
        description_instance("Configure behavior of help", "TCL_OK")
            .add_options()
            .add_option("hide_category", options::list(), "List of categories to hide from help")
            .add_option("expose_namespace", options::list(),
                        "List of namespaces to expose in help, by default all namespaces are hidden in help");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp*) override {
        const auto hide = get_option<std::vector<std::string>>("hide_category");
        const auto expose = get_option<std::vector<std::string>>("expose_namespace");
        for (const std::string& name : hide) {
            HTCTclTaskOptions::hideCategory(name);
        }
        auto& visible = g_visibleNamespaces();
        for (const std::string& name : expose) {
            visible.push_back(name.substr(std::min(name.find_first_not_of(':'), name.size())));
        }
        std::sort(visible.begin(), visible.end());
        visible.erase(std::unique(visible.begin(), visible.end()), visible.end());
        g_dirtyCategories = g_dirtyCategories || !hide.empty() || !expose.empty();
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace set_help_config
