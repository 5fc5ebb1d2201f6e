#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Small text operations. Case is folded for ASCII letters only, so no result depends on the locale.
/// All functions are safe from any thread.
class HSTStringUtils {
public:
    /// True if `text` begins with `prefix`, ignoring case. The empty prefix begins every text.
    static bool istarts_with(std::string_view text, std::string_view prefix);

    /// True if both texts are equal, ignoring case.
    static bool iequals(std::string_view a, std::string_view b);

    /// A copy with ASCII letters in lower case.
    static std::string to_lower(std::string_view text);

    /// The part of `text` without white space at both ends. Views into `text`.
    static std::string_view trim(std::string_view text);

    /// The pieces of `text` between occurrences of `separator`, empty ones included: "a::b" gives three, and
    /// "" gives one empty piece.
    static std::vector<std::string> split(std::string_view text, char separator);

    /// True if the whole of `text` matches `pattern`: `*` any run, `?` one character (UTF-8), `[a-z]` one of
    /// a set or range, `[^a-z]` or `[!a-z]` one outside it, `\x` the character x itself. A set that is not
    /// closed is matched as the character `[`.
    static bool glob_match(std::string_view pattern, std::string_view text, bool nocase = false);

    /// The candidate that is most likely meant by the misspelt `word`: the least number of inserted, deleted,
    /// changed or swapped characters, ignoring case, up to a third of the word's length (at least one).
    /// The first of equals; empty if none is near enough.
    static std::string nearest(std::string_view word, const std::vector<std::string>& candidates);

    /// The columns that UTF-8 `text` takes on a terminal: two for wide East Asian characters and emoji, none
    /// for combining marks, one for all else, also for each byte that is not UTF-8.
    static size_t display_width(std::string_view text);
};
