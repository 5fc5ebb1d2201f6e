#include "tcltasks/builtin/HTCLocaleInit.h"

#include "tcltasks/core/task.h"

using vek::tcltasks::task_entry;

namespace set_locale {
extern const task_entry entry;
}

namespace HTCLocaleInit {

namespace {

const task_entry* const locale_tasks[] = {&set_locale::entry};

} // namespace

void HTCCurrentLocale::init(Tcl_Interp* interp) {
    add_tasks(locale_tasks, interp);
}

void HTCCurrentLocale::uninit() {
    remove_tasks(locale_tasks);
}

} // namespace HTCLocaleInit
