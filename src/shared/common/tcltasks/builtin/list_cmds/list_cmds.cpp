#include "tcltasks/builtin/list_cmds/list_cmds.h"

#include "tcltasks/builtin/list_cmds/by_collection.h"
#include "tcltasks/core/task.h"

using vek::tcltasks::task_entry;

namespace col_isshared {
extern const task_entry entry;
}
namespace col_copy {
extern const task_entry entry;
}
namespace col2list {
extern const task_entry entry;
}
namespace lrange {
extern const task_entry entry;
}
namespace lreverse {
extern const task_entry entry;
}
namespace lreplace {
extern const task_entry entry;
}
namespace lset {
extern const task_entry entry;
}
namespace lsort {
extern const task_entry entry;
}
namespace remove_duplicates {
extern const task_entry entry;
}

namespace HTCBuiltinInit {

namespace {

const task_entry* const tasks[] = {
    &col_isshared::entry, &col_copy::entry, &col2list::entry,
    &lrange::entry,       &lreverse::entry, &lreplace::entry,
    &lset::entry,         &lsort::entry,    &remove_duplicates::entry,
};

} // namespace

void list_cmds::init(Tcl_Interp* interp) {
    add_tasks(tasks, interp);
    HTCBuiltin::add_list_commands(interp);
}

void list_cmds::uninit() {
    remove_tasks(tasks);
}

} // namespace HTCBuiltinInit
