#pragma once

#include <string>
#include <tcl.h>
#include <vector>

/// The commands that Tcl loads from features when they are first called. Interpreter's thread.
namespace HTCHelp::detail::features {

/// Finds the commands, once in a process: as long as it finds none, each call looks again. The interpreter's
/// result is left alone.
void init(Tcl_Interp* interp);

bool isCommand(const std::string& name);
void appendCommands(std::vector<std::string>& names);

/// The command that loads one; empty for a name that is none of these.
std::string getLoadCommandForCommand(Tcl_Interp* interp, const std::string& name);

} // namespace HTCHelp::detail::features
