#pragma once

#include <tcl.h>

namespace HTCBuiltin {

/// Creates omu::lrange, omu::lreverse, omu::lreplace, omu::lset and omu::lsort, which take the place of Tcl's
/// commands: a collection goes to the task of the same work, and whatever that does not do, to Tcl's own.
void add_list_commands(Tcl_Interp* interp);

} // namespace HTCBuiltin
