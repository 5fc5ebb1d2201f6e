#include "platform/tcl/HTCTclPatternMatch.h"

#include <re2/re2.h>

#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"

namespace {

RE2::Options options_of(bool nocase) {
    RE2::Options options;
    options.set_case_sensitive(!nocase);
    options.set_log_errors(false);
    options.set_never_capture(true);
    options.set_dot_nl(true);
    return options;
}

char fold(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The place behind a character of UTF-8.
size_t behind(std::string_view text, size_t at) {
    ++at;
    while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xc0) == 0x80) {
        ++at;
    }
    return at;
}

// A glob pattern without its backslashes.
std::string unescaped(std::string_view pattern) {
    std::string name;
    for (size_t i = 0; i < pattern.size(); ++i) {
        i += pattern[i] == '\\' && i + 1 < pattern.size();
        name += pattern[i];
    }
    return name;
}

// One element of a glob pattern that stands for one character.
struct glob_step {
    size_t nextPattern;
    size_t nextText;
};

class glob_matcher {
public:
    glob_matcher(std::string_view pattern, std::string_view text, bool nocase, bool sets)
        : m_pattern(pattern), m_text(text), m_nocase(nocase), m_sets(sets) {}

    bool matches() const {
        // On a mismatch the last star takes one more character; earlier stars never need to be tried again.
        size_t p = 0, t = 0, star = std::string_view::npos, starText = 0;
        while (t < m_text.size()) {
            if (p < m_pattern.size() && m_pattern[p] == '*') {
                star = ++p;
                starText = t;
            } else if (const glob_step step = one(p, t); step.nextText > t) {
                p = step.nextPattern;
                t = step.nextText;
            } else if (star != std::string_view::npos) {
                p = star;
                t = starText = behind(m_text, starText);
            } else {
                return false;
            }
        }
        while (p < m_pattern.size() && m_pattern[p] == '*') {
            ++p;
        }
        return p == m_pattern.size();
    }

private:
    // Matches the pattern's element at p with the character at t; no step forward if they differ.
    glob_step one(size_t p, size_t t) const {
        if (p == m_pattern.size()) {
            return {p, t};
        }
        if (m_pattern[p] == '?') {
            return {p + 1, behind(m_text, t)};
        }
        if (m_pattern[p] == '[' && m_sets) {
            return set(p, t);
        }
        const size_t at = m_pattern[p] == '\\' && p + 1 < m_pattern.size() ? p + 1 : p;
        return same(m_pattern[at], m_text[t]) ? glob_step{at + 1, t + 1} : glob_step{p, t};
    }

    glob_step set(size_t p, size_t t) const {
        const std::string_view character = m_text.substr(t, behind(m_text, t) - t);
        bool found = false;
        size_t at = p + 1;
        while (at < m_pattern.size() && m_pattern[at] != ']') {
            const std::string_view first = m_pattern.substr(at, behind(m_pattern, at) - at);
            std::string_view last = first;
            at += first.size();
            if (at + 1 < m_pattern.size() && m_pattern[at] == '-' && m_pattern[at + 1] != ']') {
                last = m_pattern.substr(at + 1, behind(m_pattern, at + 1) - at - 1);
                at += 1 + last.size();
            }
            found = found || between(first, character, last);
        }
        if (at == m_pattern.size()) {
            return {p, t}; // the set is never closed
        }
        return found ? glob_step{at + 1, t + character.size()} : glob_step{p, t};
    }

    bool between(std::string_view first, std::string_view character, std::string_view last) const {
        if (m_nocase && character.size() == 1 && first.size() == 1 && last.size() == 1) {
            const char c = fold(character[0]);
            return (fold(first[0]) <= c && c <= fold(last[0])) || (first[0] <= c && c <= last[0]);
        }
        // UTF-8 sorts as its code points do.
        return (first <= character && character <= last) || (last <= character && character <= first);
    }

    bool same(char a, char b) const { return a == b || (m_nocase && fold(a) == fold(b)); }

    std::string_view m_pattern;
    std::string_view m_text;
    bool m_nocase;
    bool m_sets;
};

} // namespace

struct HTCTclPatternMatch::expression {
    expression(const std::string& pattern, bool nocase)
        : given(pattern, options_of(nocase)), caseless(pattern, options_of(true)) {}
    RE2 given;
    RE2 caseless;
};

HTCTclPatternMatch::HTCTclPatternMatch(std::string pattern, bool regexp, bool nocase, Brackets brackets)
    : m_pattern(std::move(pattern)), m_nocase(nocase), m_brackets(brackets) {
    if (!regexp || m_pattern == "*") {
        if (!nocase && !hasWildcards()) {
            m_literal = unescaped(m_pattern);
        }
        return;
    }
    auto compiled = std::make_shared<expression>(m_pattern, nocase);
    if (!compiled->given.ok()) {
        throw HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5358@%s%s\n",
                                         m_pattern.substr(0, 200), compiled->given.error()));
    }
    m_expression = std::move(compiled);
}

bool HTCTclPatternMatch::hasWildcards() const {
    if (m_expression) {
        return true;
    }
    const std::string_view wild = m_brackets == Brackets::set ? "*?[" : "*?";
    for (size_t i = 0; i < m_pattern.size(); ++i) {
        if (m_pattern[i] == '\\') {
            ++i;
        } else if (wild.find(m_pattern[i]) != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

bool HTCTclPatternMatch::matches(std::string_view name, bool nocase) const {
    if (m_expression) {
        return RE2::FullMatch(re2::StringPiece(name.data(), name.size()),
                              nocase ? m_expression->caseless : m_expression->given);
    }
    return m_pattern == "*" || glob_matcher(m_pattern, name, nocase, m_brackets == Brackets::set).matches();
}
