#include "tcltasks/builtin/completion/HTCInfoCommands.h"

#include "tcltasks/builtin/completion/value_sources.h"
#include "tcltasks/core/task.h"

using vek::tcltasks::task_entry;

namespace info_commands {
extern const task_entry entry;
}
namespace hide_commands {
extern const task_entry entry;
}
namespace hide_namespaces {
extern const task_entry entry;
}

namespace HTCLibEditInit {

namespace {

const task_entry* const tasks[] = {
    &info_commands::entry,
    &hide_commands::entry,
    &hide_namespaces::entry,
};

} // namespace

void HTCInfoCommands::init(Tcl_Interp* interp) {
    HTCLibEdit::detail::add_value_sources();
    add_tasks(tasks, interp);
}

void HTCInfoCommands::uninit() {
    remove_tasks(tasks);
}

} // namespace HTCLibEditInit
