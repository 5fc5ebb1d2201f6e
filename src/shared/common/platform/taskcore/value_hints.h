#pragma once

#include <functional>
#include <map>
#include <string>
#include <tcl.h>
#include <vector>

namespace vek::tcltasks {

/// Where completion finds the values of an option that was declared with `.hint(kind)`. The library that owns
/// the values adds a source for the kind, once for the process; all other code only names the kind. The kinds
/// "file" and "command" need no source, nor does a list of values such as "low|high", for an option that only
/// its command checks. Interpreter's thread.
class value_hints {
public:
    /// The options that the line already gives, by name, as far as their values need no substitution.
    using given_options = std::map<std::string, std::string, std::less<>>;
    /// All values that could stand, in any order and in the system encoding. Must not change anything that a
    /// user could see; one that throws offers nothing.
    using source = std::function<std::vector<std::string>(Tcl_Interp*, const given_options&)>;

    /// A second source of one kind is refused: the first one stays.
    static void add(const std::string& kind, source values);
    /// Null for a kind that has none.
    static const source* find(const std::string& kind);
};

} // namespace vek::tcltasks
