// omu::subst ?-nobackslashes? ?-nocommands? ?-novariables? string
// Tcl's subst, without the bytecode that Tcl makes of each text.
#include "platform/tcl/tcl_guard.h"
#include "tcltasks/builtin/HTCBuiltinCmds.h"
#include "tcltasks/builtin/detail/substitution.h"

using namespace vek::tcltasks;

namespace {

int read_kinds(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv, int& kinds) {
    static const char* const options[] = {"-nobackslashes", "-nocommands", "-novariables", nullptr};
    static constexpr int without[] = {TCL_SUBST_BACKSLASHES, TCL_SUBST_COMMANDS, TCL_SUBST_VARIABLES};
    kinds = TCL_SUBST_ALL;
    for (int i = 1; i < objc - 1; ++i) {
        int which = 0;
        if (Tcl_GetIndexFromObj(interp, objv[i], options, "option", 0, &which) != TCL_OK) {
            return TCL_ERROR;
        }
        kinds &= ~without[which];
    }
    return TCL_OK;
}

} // namespace

int Omu_SubstModifyNRCmd(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        if (objc < 2) {
            Tcl_WrongNumArgs(interp, 1, objv, "?-nobackslashes? ?-nocommands? ?-novariables? string");
            return TCL_ERROR;
        }
        int kinds = 0;
        if (read_kinds(interp, objc, objv, kinds) != TCL_OK) {
            return TCL_ERROR;
        }
        return HTCBuiltin::detail::substitute(interp, objv[objc - 1], kinds);
    });
}

int Omu_SubstModifyObjCmd(ClientData data, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return Tcl_NRCallObjProc(interp, Omu_SubstModifyNRCmd, data, objc, objv);
}
