#pragma once

#include <string>

/// What tasks that write Tcl commands share. Any thread.
namespace HTCTaskHelpers {

/// The text as one word of a command: in braces, or with backslashes where braces cannot hold it, when it
/// would not be read as one word by itself. A word that needs nothing stays as it is.
std::string brace(const std::string& text);

} // namespace HTCTaskHelpers
