#include "platform/tcl/tcl_guard.h"

#include "platform/tcl/HTCTclEncoding.h"

int vek::tcltasks::tcl_error_from_exception(Tcl_Interp* interp) noexcept {
    try {
        throw;
    } catch (const std::exception& failure) {
        if (interp) {
            Tcl_SetObjResult(interp, HTCTclEncoding::tclNewStringObj(failure.what()));
        }
    } catch (...) {
    }
    return TCL_ERROR;
}
