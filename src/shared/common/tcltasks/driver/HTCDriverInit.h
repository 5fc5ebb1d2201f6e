#pragma once

#include <tcl.h>

/// Registration of the session driver's commands.
namespace HTCDriverInit {

struct HTCDriver {
    /// True if the Tcl variable omu::skip_driver existed at init: an application that runs the session itself
    /// keeps the driver's commands out.
    static bool skip;

    static void init(Tcl_Interp* interp);
    static void uninit();
};

} // namespace HTCDriverInit
