// omu::alias srcCmdName targetCmdName ?option ...?
// Runs a command under its new name, with the options behind it, and warns that the old one is out of use.
#include "platform/msg/ComMsgMgr.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/tcl_guard.h"
#include "tcltasks/builtin/HTCBuiltinCmds.h"

using namespace vek::tcltasks;

int Omu_AliasNRCmd(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        if (objc < 3) {
            Tcl_WrongNumArgs(interp, 1, objv, "srcCmdName targetCmdName ?option ...?");
            return TCL_ERROR;
        }
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-199@%s%s\n",
                           HTCTclEncoding::tclGetString(objv[1]), HTCTclEncoding::tclGetString(objv[2]));
        return Tcl_NREvalObj(interp, Tcl_NewListObj(objc - 2, objv + 2), 0);
    });
}

int Omu_AliasObjCmd(ClientData data, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return Tcl_NRCallObjProc(interp, Omu_AliasNRCmd, data, objc, objv);
}
