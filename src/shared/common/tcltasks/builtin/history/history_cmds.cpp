#include "tcltasks/builtin/history/history_cmds.h"

#include "tcltasks/core/task.h"

using vek::tcltasks::task_entry;

namespace history_cmds::add {
extern const task_entry entry;
}
namespace history_cmds::change {
extern const task_entry entry;
}
namespace history_cmds::clear {
extern const task_entry entry;
}
namespace history_cmds::event {
extern const task_entry entry;
}
namespace history_cmds::info {
extern const task_entry entry;
}
namespace history_cmds::keep {
extern const task_entry entry;
}
namespace history_cmds::nextid {
extern const task_entry entry;
}
namespace history_cmds::redo {
extern const task_entry entry;
}

namespace HTCBuiltinInit {

namespace {

const task_entry* const tasks[] = {
    &::history_cmds::add::entry,    &::history_cmds::change::entry, &::history_cmds::clear::entry,
    &::history_cmds::event::entry,  &::history_cmds::info::entry,   &::history_cmds::keep::entry,
    &::history_cmds::nextid::entry, &::history_cmds::redo::entry,
};

} // namespace

void history_cmds::init(Tcl_Interp* interp) {
    add_tasks(tasks, interp);
}

void history_cmds::uninit() {
    remove_tasks(tasks);
}

} // namespace HTCBuiltinInit
