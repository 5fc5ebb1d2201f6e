#pragma once

#include <tcl.h>

namespace HTCBuiltin {

/// Creates omu::lrange, omu::lreverse, omu::lreplace, omu::lset and omu::lsort, which take the place of Tcl's
/// commands: a plain value goes straight to Tcl's own, a collection to a procedure in builtin.tcl, which
/// knows the task of the same work.
void add_list_commands(Tcl_Interp* interp);

} // namespace HTCBuiltin
