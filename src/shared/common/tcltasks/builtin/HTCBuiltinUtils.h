#pragma once

#include <string>
#include <tcl.h>

/// What the replaced Tcl commands share.
namespace HTCBuiltinUtils {

/// The position that an index word names in a list whose last position is `last` (-1 for an empty list): an
/// integer or `end`, with an offset behind it or not. The result may lie outside of the list. Throws
/// std::invalid_argument for a word that is no index and std::bad_cast for a number beyond 32 bits.
int parseIndex(const std::string& index, int last);

/// Tcl's own commands, under the names that they keep after the take-over.
enum class plain_command { lappend, lindex, load, lrange, lreplace, lreverse, lsearch, lset, lsort };

/// Runs Tcl's own command on the words of a call of its replacement, so that results, error texts and error
/// stacks are those of Tcl. Interpreter's thread.
int call_plain(plain_command command, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv);

/// Reports the exception in flight as an ERROR message and returns TCL_ERROR. The interpreter's result stays
/// as it is. `unknown` is written to standard output for an exception that is no std::exception; null for
/// silence. Call it in a catch block only.
int report_exception(const char* unknown) noexcept;

} // namespace HTCBuiltinUtils
