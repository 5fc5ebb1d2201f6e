#pragma once

#include <tcl.h>

/// Registration of the small services of the installation.
namespace HTCUtilsInit {

/// Where the installation lies, what the session's files are called.
struct HTCUtils {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

/// The check of the install variables.
struct HTCCheckEnv {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

/// Groups of Tcl commands that are loaded on demand.
struct HTCLoadFeature {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

/// Taking commands out of an interpreter.
struct HTCRegisterTask {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

} // namespace HTCUtilsInit
