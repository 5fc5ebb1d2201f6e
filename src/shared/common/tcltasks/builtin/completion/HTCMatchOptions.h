#pragma once

#include <tcl.h>

namespace HTCLibEditInit {

/// Registration of the listing of options that completion offers.
struct HTCMatchOptions {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

} // namespace HTCLibEditInit
