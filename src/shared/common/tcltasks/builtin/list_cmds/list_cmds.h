#pragma once

#include <tcl.h>

namespace HTCBuiltinInit {

/// Registration of the commands that derive and change collections, and of those that take the place of Tcl's
/// list commands of the same work.
struct list_cmds {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

} // namespace HTCBuiltinInit
