#pragma once

#include <tcl.h>

/// Registration of the small services of the installation.
namespace HTCUtilsInit {

struct HTCUtils {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

} // namespace HTCUtilsInit
