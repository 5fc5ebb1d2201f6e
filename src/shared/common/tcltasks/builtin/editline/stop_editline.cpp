// omu::stop_editline
// Ends the line editor when the running command is done and gives the terminal back to the host's prompt.
// Does nothing if it does not run.
#include "tcltasks/builtin/editline/HTCLibEdit.h"
#include "tcltasks/builtin/editline/libedit.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace stop_editline {

namespace {

struct stop_editline_tags {};

} // namespace

class task : public HTCITaskHelper<task, stop_editline_tags> {
public:
    static constexpr const char* command = "omu::stop_editline";

    static void load_description() {
        in_categories("Tools");
        description_instance("Stop command line editing", "");
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp*) override {
        if (HTCLibEdit::detail::s_running) {
            HTCLibEdit::detail::resetTclMainLoop();
            HTCLibEdit::detail::s_running = false;
        }
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace stop_editline
