#pragma once

#include <string>
#include <vector>

/// The classes of objects that have properties, for help on them. Interpreter's thread.
namespace HTCHelp::detail::property {

/// Throws HEXError that names the classes there are unless this is one.
void validClassOrError(const std::string& name);

/// The names of the classes that match a glob pattern, sorted; without those that only the tool's engineers
/// look at, unless they are asked for by name or the session debugs Tcl.
void getMatchingClassTypes(const std::string& pattern, std::vector<std::string>& names);

/// False for a class that only the tool's engineers look at, and for a name that is no class.
bool isVisible(const std::string& name);

/// One sentence on the class; empty if there is none.
std::string getClassTypeDescription(const std::string& name);

} // namespace HTCHelp::detail::property
