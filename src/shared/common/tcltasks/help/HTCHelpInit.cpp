#include "tcltasks/help/HTCHelpInit.h"

#include "tcltasks/core/task.h"

using vek::tcltasks::task_entry;

namespace help {
extern const task_entry entry;
}
namespace hide_category {
extern const task_entry entry;
}
namespace set_help_config {
extern const task_entry entry;
}

namespace {

const task_entry* const commands[] = {
    &help::entry,
    &hide_category::entry,
    &set_help_config::entry,
};

} // namespace

void HTCHelpInit::init(Tcl_Interp* interp) {
    HTCHelpInit_(interp);
}

void HTCHelpInit::uninit() {
    HTCHelpUninit();
}

void HTCHelpInit_(Tcl_Interp* interp) {
    add_tasks(commands, interp);
}

void HTCHelpUninit() {
    remove_tasks(commands);
}
