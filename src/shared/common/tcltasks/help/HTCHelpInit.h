#pragma once

#include <tcl.h>

/// Registration of the help commands.
struct HTCHelpInit {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

void HTCHelpInit_(Tcl_Interp* interp);
void HTCHelpUninit();
