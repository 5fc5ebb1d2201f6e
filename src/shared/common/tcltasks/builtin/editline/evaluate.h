#pragma once

#include <tcl.h>

namespace HTCLibEdit::detail {

/// Evaluates what the user typed, at global level: recorded in Tcl's history, which takes it to the journal,
/// and with interrupts, shown errors and log flushes counted for one command. Returns the Tcl code.
int evaluate(Tcl_Interp* interp, Tcl_Obj* command);

/// Shows what came of it: the error of a command that failed; the result of one that did not, if `results`
/// says so. In a session they go through the messages, and so to the log; elsewhere to the standard channels
/// of Tcl. A line end is added where there is none, an empty text shows nothing.
void show(Tcl_Interp* interp, int code, bool results);

} // namespace HTCLibEdit::detail
