#pragma once

#include <string>
#include <tcl.h>

/// The file system by which Tcl reads encrypted scripts as plain text, for as long as it is registered.
/// Interpreter's thread only.
namespace HTCBuiltin::detail {

/// Both return a Tcl code.
int register_file_system(Tcl_Interp* interp);
int unregister_file_system();

/// Why the last encrypted file could not be opened; empty after one that could. Tcl's source drops the
/// reason.
std::string take_open_failure();

} // namespace HTCBuiltin::detail
