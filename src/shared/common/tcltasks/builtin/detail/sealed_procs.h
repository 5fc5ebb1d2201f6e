#pragma once

#include <tcl.h>

/// Procedures that encrypted scripts define: they work as all others, but do not show what they are made of.
/// Interpreter's thread only.
namespace HTCBuiltin::detail {

/// Whether what runs now is the text of an encrypted script, as opposed to a plain one that it sources.
bool& in_encrypted_script();

/// Has an interpreter seal the procedures that are defined in encrypted scripts: `info body` refuses them,
/// errors in them, caught or not, leave no trace of their commands, and `info frame` leaves out commands of
/// theirs and of encrypted scripts. A second time does nothing. Costs nothing in an interpreter where it was
/// never called.
void seal_procs(Tcl_Interp* interp);

/// Makes the error in flight look as if `place` were where it arose: its message stays, its trace does not.
void hide_trace(Tcl_Interp* interp, Tcl_Obj* place);

/// The trace of the last error, which Tcl keeps after it was caught; null if there was none.
Tcl_Obj* last_error(Tcl_Interp* interp);

/// Makes `errorInfo`, what last_error gave before, the last error again. `code` is the one in flight, which
/// stays with its result and options.
void forget_last_error(Tcl_Interp* interp, int code, Tcl_Obj* errorInfo);

} // namespace HTCBuiltin::detail
