#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace HTCLibEdit::detail {

/// The innermost command that a text is in the middle of, as Tcl itself reads it: in `puts [lindex {a` that
/// is `lindex {a`. Positions count bytes from the start of the text. Nothing is evaluated.
struct typed_command {
    struct word {
        size_t begin = 0;
        size_t end = 0;
        std::optional<std::string> value; ///< what the command gets, if nothing is to be substituted
        bool runs_command = false;        ///< a command substitution stands in it
    };

    std::vector<word> words; ///< those before the word that is being typed
    word current;            ///< the one that is being typed; empty behind a blank
    char open = 0;           ///< the quote or brace that `current` begins with and that is not closed, or 0
    bool readable = true;    ///< false for a text with a bracket that cannot be read, as `"a"b [c]`

    /// Whether a command substitution stands anywhere in the command; also if it cannot be told.
    bool runs_command() const;
};

/// The longest text that is read; a longer one, or one that is no Tcl at all, has no words.
inline constexpr size_t longest_typed_command = 4096;

typed_command read_typed_command(std::string_view text);

/// Where the name of a variable begins that the text ends in the middle of, and what is needed to finish it.
struct typed_variable {
    size_t begin = 0;  ///< of the part to complete: behind "$", "${" or "$array("
    std::string array; ///< the array whose element is being typed, or empty
    std::string name;  ///< the part to complete, as typed
    bool braced = false;
};
std::optional<typed_variable> read_typed_variable(std::string_view text);

/// Text as it has to be typed to be one word, or a part of one, of a command: with backslashes before what is
/// special to Tcl at that place. `open` is as in typed_command.
std::string quoted(std::string_view text, char open);

/// Text with backslashes before what is special in a glob pattern.
std::string glob_quoted(std::string_view text);

} // namespace HTCLibEdit::detail
