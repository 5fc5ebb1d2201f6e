#pragma once

#include <tcl.h>

/// The object commands that take the place of Tcl's own. All on the interpreter's thread; none reads its
/// client data. Those with a second procedure run scripts: it is the one for Tcl's engine without recursion,
/// by which a script in them may yield from a coroutine as in Tcl's own commands.
Tcl_ObjCmdProc Omu_AliasObjCmd;
Tcl_ObjCmdProc Omu_AliasNRCmd;
Tcl_ObjCmdProc Omu_CatchObjCmd;
Tcl_ObjCmdProc Omu_CatchNRCmd;
Tcl_ObjCmdProc Omu_IsInCatchCmd;
Tcl_ObjCmdProc Omu_ForeachObjCmd;
Tcl_ObjCmdProc Omu_ForeachNRCmd;
Tcl_ObjCmdProc Omu_JoinObjCmd;
Tcl_ObjCmdProc Omu_LappendObjCmd;
Tcl_ObjCmdProc Omu_LindexObjCmd;
Tcl_ObjCmdProc Omu_LlengthObjCmd;
Tcl_ObjCmdProc Omu_LoadObjCmd;
Tcl_ObjCmdProc Omu_LsearchObjCmd;
Tcl_ObjCmdProc Omu_SubstModifyObjCmd;
Tcl_ObjCmdProc Omu_SubstModifyNRCmd;
Tcl_ObjCmdProc Omu_SubstObjCmd;
Tcl_ObjCmdProc Omu_WarnIfShellObjCmd;

/// True while the interpreter runs inside a catch of the script. Interpreter's thread.
bool Omu_IsInCatch(Tcl_Interp* interp);
