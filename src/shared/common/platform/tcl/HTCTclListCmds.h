#pragma once

#include <tcl.h>

namespace HTCTclListCmds {

/// As Tcl_ListObjGetElements, and a collection gives all of its elements whatever the display limit. The
/// array belongs to the value and lives until the value changes. Interpreter's thread.
int tclListObjGetElements(Tcl_Interp* interp, Tcl_Obj* list, int* objc, Tcl_Obj*** objv);

} // namespace HTCTclListCmds
