// omu::warn_if_shell_cmd cmd ?arg ...?
// Warns when a program of the operating system has the name of the command; does not run it.
#include "platform/msg/ComMsgMgr.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/tcl_guard.h"
#include "platform/tcl/tclcmdobj.h"
#include "tcltasks/builtin/HTCBuiltinCmds.h"

using namespace vek::tcltasks;

int Omu_WarnIfShellObjCmd(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        if (objc < 2) {
            Tcl_WrongNumArgs(interp, 1, objv, "omu::warn_if_shell_cmd cmd ?...?");
            return TCL_ERROR;
        }
        if (const int code = tclcmdobj(interp, "auto_execok").append(objv[1]).eval(); code != TCL_OK) {
            return code;
        }
        const bool found = !HTCTclEncoding::tclGetString(Tcl_GetObjResult(interp)).empty();
        Tcl_ResetResult(interp);
        if (found) {
            std::string line;
            for (int i = 1; i < objc; ++i) {
                line += i > 1 ? " " : "";
                line += HTCTclEncoding::tclGetString(objv[i]);
            }
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-259@%s\n", line);
        }
        return TCL_OK;
    });
}
