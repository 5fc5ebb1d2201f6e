// omu::hide_commands ?NAME ...?
// Keeps commands out of completion; a name such as foo:: stands for all commands of that namespace.
#include "tcltasks/builtin/completion/hidden_names.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace hide_commands {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::hide_commands";

    static void load_description() {
        in_categories("Internal");
        description_instance("Hide specified commands from command completion", "TCL_OK")
            .add_options()
            .add_option("commands", options::list(), "List of commands to hide from command completion")
            .hint("command");
        positional_instance().add("commands", -1);
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp*) override {
        HTCLibEdit::detail::s_hiddenProcs().add(get_option<std::vector<std::string>>("commands"));
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace hide_commands
