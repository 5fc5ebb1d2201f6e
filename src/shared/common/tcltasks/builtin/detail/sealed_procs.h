#pragma once

#include <tcl.h>

/// Procedures that encrypted scripts define: they work as all others, but do not show what they are made of.
/// Interpreter's thread only.
namespace HTCBuiltin::detail {

/// Whether what runs now is the text of an encrypted script, as opposed to a plain one that it sources.
bool& in_encrypted_script();

/// Has an interpreter seal the procedures that are defined in encrypted scripts: `info body` refuses them,
/// errors in them leave no trace of their commands, and `info frame` leaves out commands of theirs and of
/// encrypted scripts. A second time does nothing. Costs nothing in an interpreter where it was never called.
void seal_procs(Tcl_Interp* interp);

/// Makes the error in flight look as if `place` were where it arose: its message stays, its trace does not.
void hide_trace(Tcl_Interp* interp, Tcl_Obj* place);

} // namespace HTCBuiltin::detail
