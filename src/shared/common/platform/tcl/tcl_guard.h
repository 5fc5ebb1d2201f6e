#pragma once

#include <exception>
#include <tcl.h>

namespace vek::tcltasks {

/// Leaves the text of the exception in flight as the interpreter's result and returns TCL_ERROR. Call it in a
/// catch block only. An exception of an unknown kind leaves the result as it is. A null interpreter is
/// allowed.
int tcl_error_from_exception(Tcl_Interp* interp) noexcept;

/// The one wrapper for C callbacks that Tcl makes outside the task dispatch (plain object commands, traces,
/// exit handlers): runs `body`, which returns a Tcl code, and lets no exception through Tcl's C frames.
template <class Body>
int tcl_guard(Tcl_Interp* interp, Body&& body) noexcept {
    try {
        return body();
    } catch (...) {
        return tcl_error_from_exception(interp);
    }
}

} // namespace vek::tcltasks
