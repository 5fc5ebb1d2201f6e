#pragma once

#include <string>
#include <tcl.h>
#include <vector>

/// What the help commands share. Interpreter's thread.
namespace HTCHelp::detail {

/// Which part of a command's help is wanted: "syntax", "args" or "long".
std::string& g_helpType();
/// The namespaces whose commands help shows beside the public ones: sorted, each once.
std::vector<std::string>& g_visibleNamespaces();
/// The lists of categories have to be built again.
extern bool g_dirtyCategories;
/// The interpreter whose commands are looked at.
extern Tcl_Interp* g_interp;

} // namespace HTCHelp::detail
