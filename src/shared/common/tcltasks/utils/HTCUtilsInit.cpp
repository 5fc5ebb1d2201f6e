#include "tcltasks/utils/HTCUtilsInit.h"

#include "tcltasks/core/task.h"

using vek::tcltasks::task_entry;

namespace get_app_root {
extern const task_entry entry;
}
namespace is_regress {
extern const task_entry entry;
}

namespace HTCUtilsInit {

namespace {

const task_entry* const utils[] = {
    &get_app_root::entry,
    &is_regress::entry,
};

} // namespace

void HTCUtils::init(Tcl_Interp* interp) {
    add_tasks(utils, interp);
}

void HTCUtils::uninit() {
    remove_tasks(utils);
}

} // namespace HTCUtilsInit
