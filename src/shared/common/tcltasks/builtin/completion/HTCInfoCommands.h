#pragma once

#include <tcl.h>

namespace HTCLibEditInit {

/// Registration of the listing of commands and namespaces that completion offers, and of hiding some of them.
struct HTCInfoCommands {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

} // namespace HTCLibEditInit
