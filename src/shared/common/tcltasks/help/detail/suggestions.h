#pragma once

#include <string>
#include <vector>

#include "tcltasks/help/detail/HelpInfo.h"

/// What stands below the error for a topic that does not exist. Interpreter's thread.
namespace HTCHelp::detail::suggestions {

/// Lines, each with a newline in front, with the topics whose names come near to `word` and those whose text
/// mentions it; empty when there are none. Reads the text of all topics.
std::string forTopic(Tcl_Interp* interp, const std::string& word, const std::vector<HelpInfo>& topics);

/// A line, with a newline in front, with the names of `all` that come near to `word`; all of them when none
/// does. `what` begins the line: "The categories are".
std::string forName(const std::string& what, const std::string& word, const std::vector<std::string>& all);

} // namespace HTCHelp::detail::suggestions
