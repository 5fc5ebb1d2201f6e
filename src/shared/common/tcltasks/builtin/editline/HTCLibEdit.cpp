#include "tcltasks/builtin/editline/HTCLibEdit.h"

#include "tcltasks/core/task.h"

using vek::tcltasks::task_entry;

namespace start_editline {
extern const task_entry entry;
}
namespace stop_editline {
extern const task_entry entry;
}

bool HTCLibEdit::detail::s_running = false;

namespace HTCLibEditInit {

namespace {

const task_entry* const tasks[] = {
    &start_editline::entry,
    &stop_editline::entry,
};

} // namespace

void HTCLibEdit::init(Tcl_Interp* interp) {
    add_tasks(tasks, interp);
}

void HTCLibEdit::uninit() {
    remove_tasks(tasks);
}

} // namespace HTCLibEditInit
