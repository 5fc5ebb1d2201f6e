#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace design {

/// A test of names, in one of two languages.
///
/// Glob: `*` stands for any characters, `?` for one, a backslash takes the next character as it is. Brackets
/// stand for themselves, as bits of buses are named with them. Regular expression: RE2's, which take time in
/// proportion to the text whatever the expression; the whole name has to match. With nocase, letters match
/// without regard to case.
class Pattern {
public:
    static Pattern glob(std::string_view text, bool nocase = false);
    /// Throws Error(bad_pattern) that quotes the expression and tells what is wrong with it.
    static Pattern regexp(std::string_view text, bool nocase = false);

    bool matches(std::string_view name) const;

    /// The one name that a glob without wildcards stands for; absent with wildcards, nocase or regexp.
    const std::optional<std::string>& literal() const { return literal_; }

    const std::string& text() const { return text_; }
    bool is_regexp() const { return regexp_ != nullptr; }
    bool is_nocase() const { return nocase_; }

private:
    struct Regexp;

    std::string text_;
    bool nocase_ = false;
    bool match_all_ = false;
    std::optional<std::string> literal_;
    std::shared_ptr<const Regexp> regexp_;
};

/// Matches one glob without making a Pattern of it.
bool glob_matches(std::string_view pattern, std::string_view text, bool nocase);

} // namespace design
