#pragma once

#include <tcl.h>

/// Registration of the command that shows and sets the locale.
namespace HTCLocaleInit {

struct HTCCurrentLocale {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

} // namespace HTCLocaleInit
