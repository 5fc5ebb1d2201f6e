#include "tcltasks/builtin/completion/HTCMatchOptions.h"

#include "tcltasks/core/task.h"

using vek::tcltasks::task_entry;

namespace match_options {
extern const task_entry entry;
}

namespace HTCLibEditInit {

namespace {

const task_entry* const tasks[] = {&match_options::entry};

} // namespace

void HTCMatchOptions::init(Tcl_Interp* interp) {
    add_tasks(tasks, interp);
}

void HTCMatchOptions::uninit() {
    remove_tasks(tasks);
}

} // namespace HTCLibEditInit
