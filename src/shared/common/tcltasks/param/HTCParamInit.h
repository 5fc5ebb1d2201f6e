#pragma once

#include <tcl.h>

/// Registration of the parameter commands.
namespace HTCParamInit {

struct param_cmds {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

struct HTCResetParam {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

} // namespace HTCParamInit
