#pragma once

#include <set>
#include <string>
#include <tcl.h>

/// Features: named groups of Tcl commands that a session loads on demand. Each is a directory NAME under
/// lib/scripts/omu/features of an application root, with a script NAME.tcl and perhaps a tclIndex. What is
/// known of features belongs to all interpreters, what is loaded to one. No locks: interpreter's thread, and
/// interpreters of several threads must not use features at the same time. Nothing is ever unloaded.
namespace Features {

/// Finds the features of the installation, once for each interpreter. Throws HEXAll if the script that
/// prepares features is missing or fails; the next call then tries again.
void init(Tcl_Interp* interp);

/// The names of all features, sorted, with one blank between them; with `visibleOnly` without those that
/// are loaded in the interpreter or hidden.
std::string getAll(Tcl_Interp* interp, bool visibleOnly);

/// Sources the feature's script unless that has been done in this interpreter. Throws HEXAll for a name that
/// is unknown or hidden, and for a script that fails, after sending the script's own error.
void load(Tcl_Interp* interp, const std::string& name);

/// The names loaded in the interpreter.
const std::set<std::string>& loaded(Tcl_Interp* interp);

/// Keeps a name, which need not exist, out of lists and from being loaded.
void hide(const std::string& name);

} // namespace Features
