#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// A predicate on names: a glob pattern or a regular expression.
///
/// Glob: `*` stands for any characters, `?` for one, `[a-z]` for one of a set, a backslash takes the next
/// character as it is. Regular expression: RE2's, which take time in proportion to the text whatever the
/// expression; the whole name has to match. The pattern `*`, by default that of most commands, matches every
/// name in either way. Copies share what was compiled. Any thread.
class HTCTclPatternMatch {
public:
    enum class Brackets {
        set,    ///< `[a-z]` stands for one character
        itself, ///< brackets stand for themselves, as in the names of bits of buses
    };

    /// Throws HEXError, which quotes the expression and tells what is wrong with it, for a regular expression
    /// that is none or too large.
    explicit HTCTclPatternMatch(std::string pattern, bool regexp = false, bool nocase = false,
                                Brackets brackets = Brackets::set);

    bool match(std::string_view name) const {
        return m_literal ? name == *m_literal : matches(name, m_nocase);
    }
    /// Without regard to the case of letters, whatever the pattern was made with.
    bool matchNoCase(std::string_view name) const { return matches(name, true); }

    /// True if the pattern can match more than one name; always for a regular expression.
    bool hasWildcards() const;
    /// The one name that the pattern stands for; absent with wildcards, and where case is ignored.
    const std::optional<std::string>& literal() const { return m_literal; }
    const std::string& pattern() const { return m_pattern; }
    bool isNoCase() const { return m_nocase; }

private:
    struct expression;

    bool matches(std::string_view name, bool nocase) const;

    std::string m_pattern;
    bool m_nocase;
    Brackets m_brackets;
    std::optional<std::string> m_literal;
    std::shared_ptr<const expression> m_expression; // null for a glob
};
