// omu::hide_namespaces ?NAME:: ...?
// Keeps namespaces, named with their trailing colons, out of completion.
#include "tcltasks/builtin/completion/hidden_names.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace hide_namespaces {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::hide_namespaces";

    static void load_description() {
        in_categories("Internal");
        description_instance("Hide specified namespaces from command completion", "TCL_OK")
            .add_options()
            .add_option("namespaces", options::list(), "List of namespaces to hide from command completion");
        positional_instance().add("namespaces", -1);
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp*) override {
        HTCLibEdit::detail::s_hiddenNs().add(get_option<std::vector<std::string>>("namespaces"));
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace hide_namespaces
