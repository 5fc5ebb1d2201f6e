// omu::command_translated command
// Notes that a command of older scripts is carried out by another one, so that a trace tells so.
#include "tcltasks/builtin/detail/translated.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace command_translated {

namespace {

struct cmd_tags {};

} // namespace

class task : public itask_helper<task, cmd_tags> {
public:
    class factory : public HTCIFactoryHelper<task> {};

    static constexpr const char* command = "omu::command_translated";

    static void load_description() {
        in_categories("Tools");
        description_instance("Note that command is translated", "")
            .add_options()
            .add_option("command", options::text(), "commands that are translated");
        positional_instance().add("command", 1);
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp*) override {
        HTCBuiltin::detail::record_translated_command(get_option<std::string>("command"));
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace command_translated
