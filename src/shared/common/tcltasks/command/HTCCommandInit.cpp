#include "tcltasks/command/HTCCommandInit.h"

#include "tcltasks/core/task.h"

using vek::tcltasks::task_entry;

namespace startgroup {
extern const task_entry entry;
}
namespace endgroup {
extern const task_entry entry;
}
namespace undo {
extern const task_entry entry;
}
namespace redo {
extern const task_entry entry;
}

namespace HTCCommandInit {

namespace {

const task_entry* const commands[] = {
    &startgroup::entry,
    &endgroup::entry,
    &undo::entry,
    &redo::entry,
};

} // namespace

void command_cmds::init(Tcl_Interp* interp) {
    add_tasks(commands, interp);
}

void command_cmds::uninit() {
    remove_tasks(commands);
}

} // namespace HTCCommandInit
