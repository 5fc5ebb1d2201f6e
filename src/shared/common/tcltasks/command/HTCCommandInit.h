#pragma once

#include <tcl.h>

/// Registration of undo and redo.
namespace HTCCommandInit {

struct command_cmds {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

} // namespace HTCCommandInit
