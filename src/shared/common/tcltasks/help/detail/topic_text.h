#pragma once

#include <string>
#include <tcl.h>

#include "tcltasks/help/detail/HelpInfo.h"

namespace HTCHelp::detail {

/// The whole help of a topic, each line ended by a newline. `form`, for a task, is "syntax", "args" or
/// "long". A page that cannot be read is warned of and has no text. Interpreter's thread.
std::string topic_text(Tcl_Interp* interp, const HelpInfo& topic, const std::string& form);

/// The lines of a file, each ended by a newline; nothing, after a warning, for a file that cannot be read.
std::string page_text(const std::string& path);

} // namespace HTCHelp::detail
