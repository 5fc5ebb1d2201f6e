#include "tcltasks/driver/HTCDriverInit.h"

#include "platform/tcl/HTCTclUtils.h"
#include "tcltasks/core/task.h"
#include "tcltasks/driver/detail/RunMode.h"

using vek::tcltasks::task_entry;

namespace omumain {
extern const task_entry entry;
}
namespace version {
extern const task_entry entry;
}

namespace HTCDriverInit {

namespace {

const task_entry* const driver_tasks[] = {
    &omumain::entry,
    &version::entry,
};

} // namespace

bool HTCDriver::skip = false;

void HTCDriver::init(Tcl_Interp* interp) {
    if (Tcl_GetVar2Ex(interp, "omu::skip_driver", nullptr, TCL_GLOBAL_ONLY)) {
        skip = true;
        return;
    }
    HTCTclUtils::setModeQuery([] { return RunMode::sModeStr.c_str(); });
    add_tasks(driver_tasks, interp);
}

void HTCDriver::uninit() {
    if (!skip) {
        remove_tasks(driver_tasks);
    }
}

} // namespace HTCDriverInit
