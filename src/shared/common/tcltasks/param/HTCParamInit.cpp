#include "tcltasks/param/HTCParamInit.h"

#include "tcltasks/core/task.h"

using vek::tcltasks::task_entry;

namespace get_param {
extern const task_entry entry;
}
namespace set_param {
extern const task_entry entry;
}
namespace list_param {
extern const task_entry entry;
}
namespace report_param {
extern const task_entry entry;
}
namespace reset_param {
extern const task_entry entry;
}

namespace HTCParamInit {

namespace {

const task_entry* const params[] = {
    &get_param::entry,
    &set_param::entry,
    &list_param::entry,
    &report_param::entry,
};

} // namespace

void param_cmds::init(Tcl_Interp* interp) {
    add_tasks(params, interp);
}

void param_cmds::uninit() {
    remove_tasks(params);
}

void HTCResetParam::init(Tcl_Interp* interp) {
    reset_param::entry.add(interp);
}

void HTCResetParam::uninit() {
    reset_param::entry.remove();
}

} // namespace HTCParamInit
