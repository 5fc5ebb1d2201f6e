#pragma once

#include <tcl.h>

/// Backslash, command and variable substitution in a text, as Tcl's subst does it. Interpreter's thread only.
namespace HTCBuiltin::detail {

/// Makes the substitutions of the kinds TCL_SUBST_BACKSLASHES, TCL_SUBST_COMMANDS and TCL_SUBST_VARIABLES in
/// a text and leaves the outcome as the interpreter's result. To be called by a command that Tcl runs without
/// recursion: scripts in the text may yield. A text that is substituted again and again is taken apart once.
int substitute(Tcl_Interp* interp, Tcl_Obj* text, int kinds);

} // namespace HTCBuiltin::detail
