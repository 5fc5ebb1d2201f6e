#pragma once

#include <tcl.h>

/// Marks the tasks that keep Tcl's history.
struct history_tags {};

namespace HTCBuiltinInit {

/// Registration of the storage behind Tcl's history command.
struct history_cmds {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

} // namespace HTCBuiltinInit
