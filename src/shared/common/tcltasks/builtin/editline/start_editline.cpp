// omu::start_editline APP
// Hands the prompt over to the line editor, whose prompts begin with APP. Fails if it runs already.
#include "tcltasks/builtin/editline/HTCLibEdit.h"
#include "tcltasks/builtin/editline/libedit.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace start_editline {

namespace {

struct start_editline_tags {};

} // namespace

class task : public HTCITaskHelper<task, start_editline_tags> {
public:
    static constexpr const char* command = "omu::start_editline";

    static void load_description() {
        in_categories("Tools");
        description_instance("Start command line editing", "")
            .add_options()
            .add_option("app", options::text(), "Name of application that starts command line editing");
        positional_instance().add("app", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        if (HTCLibEdit::detail::s_running) {
            throw HTCErrors::command_failed("editline is already running");
        }
        HTCLibEdit::detail::setTclMainLoop(interp, get_option<std::string>("app"));
        HTCLibEdit::detail::s_running = true;
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace start_editline
