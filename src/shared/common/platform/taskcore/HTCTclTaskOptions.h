#pragma once

#include <string>

/// What holds for the declarations of all tasks. Interpreter's thread.
namespace HTCTclTaskOptions {

/// Keeps a help category out of the lists of categories and out of the help of commands, whatever commands
/// are in it. There need be no such category.
void hideCategory(const std::string& name);
bool isCategoryHidden(const std::string& name);

} // namespace HTCTclTaskOptions
