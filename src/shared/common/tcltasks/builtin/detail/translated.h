#pragma once

#include <string>

/// The commands of scripts that are known to be carried out by another command. Interpreter's thread only.
namespace HTCBuiltin::detail {

/// Notes that the command `name` has a translation.
void record_translated_command(const std::string& name);

/// Whether the first word of a command's text was recorded so.
bool command_has_translation(const std::string& commandText);

} // namespace HTCBuiltin::detail
