// omu::catch script ?resultVarName? ?optionVarName?
// As Tcl's catch; it lets a cancellation by the user through. omu::is_in_catch tells if one is running.
#include <set>

#include "platform/taskcore/task_manager.h"
#include "platform/tcl/tcl_guard.h"
#include "tcltasks/builtin/HTCBuiltinCmds.h"

using namespace vek::tcltasks;

namespace {

// The interpreters inside a catch. An interpreter belongs to one thread, so each thread keeps its own.
thread_local std::set<Tcl_Interp*> isInCatch;

int fail(Tcl_Interp* interp, const char* reason) {
    Tcl_ResetResult(interp);
    Tcl_AppendResult(interp, reason, nullptr);
    return TCL_ERROR;
}

int catch_result(Tcl_Interp* interp, int code, Tcl_Obj* resultVar, Tcl_Obj* optionVar) {
    if (Tcl_LimitExceeded(interp)) {
        Tcl_AppendObjToErrorInfo(interp,
                                 Tcl_ObjPrintf("\n    (\"catch\" body line %d)", Tcl_GetErrorLine(interp)));
        return TCL_ERROR;
    }
    if (resultVar && !Tcl_ObjSetVar2(interp, resultVar, nullptr, Tcl_GetObjResult(interp), 0)) {
        return fail(interp, "couldn't save command result in variable");
    }
    if (optionVar && !Tcl_ObjSetVar2(interp, optionVar, nullptr, Tcl_GetReturnOptions(interp, code), 0)) {
        return fail(interp, "couldn't save return options in variable");
    }
    Tcl_ResetResult(interp);
    Tcl_SetObjResult(interp, Tcl_NewIntObj(code));
    return task_manager::isTaskCanceled() ? TCL_ERROR : TCL_OK;
}

int finish(ClientData data[], Tcl_Interp* interp, int code) {
    return tcl_guard(interp, [&] {
        if (data[0]) {
            isInCatch.erase(interp);
        }
        return catch_result(interp, code, static_cast<Tcl_Obj*>(data[1]), static_cast<Tcl_Obj*>(data[2]));
    });
}

} // namespace

bool Omu_IsInCatch(Tcl_Interp* interp) {
    return isInCatch.contains(interp);
}

int Omu_CatchNRCmd(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        if (objc < 2 || objc > 4) {
            Tcl_WrongNumArgs(interp, 1, objv, "script ?resultVarName? ?optionVarName?");
            return TCL_ERROR;
        }
        const bool outermost = isInCatch.insert(interp).second;
        Tcl_NRAddCallback(interp, finish, outermost ? interp : nullptr, objc > 2 ? objv[2] : nullptr,
                          objc > 3 ? objv[3] : nullptr, nullptr);
        return Tcl_NREvalObj(interp, objv[1], 0);
    });
}

int Omu_CatchObjCmd(ClientData data, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return Tcl_NRCallObjProc(interp, Omu_CatchNRCmd, data, objc, objv);
}

int Omu_IsInCatchCmd(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    if (objc != 1) {
        Tcl_WrongNumArgs(interp, 1, objv, "omu::is_in_catch");
        return TCL_ERROR;
    }
    Tcl_ResetResult(interp);
    Tcl_SetObjResult(interp, Tcl_NewIntObj(Omu_IsInCatch(interp) ? 1 : 0));
    return TCL_OK;
}
