#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <tcl.h>

namespace HTCLibEdit::detail {

/// What the Tab key does to a line.
struct completion {
    enum class outcome { error, redisplay, refresh };

    outcome then = outcome::error;
    bool beep = false;
    std::string output;                     ///< to be written below the line
    std::optional<std::string> replacement; ///< of the text from `replace` to the cursor
    size_t replace = 0;                     ///< in bytes from the start of the line
};

/// Completes `line`, the text before the cursor, in Tcl's encoding: a command, an option of a command, a
/// value that an option could have, a variable or a file name. Evaluates listing commands at global level,
/// nothing of what was typed; a line that would have to run a command to be known beeps. The interpreter's
/// result and error state are as before. Interpreter's thread. Does not throw for anything that the line
/// could hold.
completion complete(Tcl_Interp* interp, std::string_view line);

} // namespace HTCLibEdit::detail
