#pragma once

#include <tcl.h>

namespace HTCLibEdit::detail {

/// Whether omu::start_editline has been done, and omu::stop_editline not since. Interpreter's thread.
extern bool s_running;

} // namespace HTCLibEdit::detail

namespace HTCLibEditInit {

/// Registration of the commands that start and stop the line editor.
struct HTCLibEdit {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

} // namespace HTCLibEditInit
