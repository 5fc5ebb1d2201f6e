#include "platform/msg/detail/RuleText.h"

#include <algorithm>

namespace com_msg_mgr {

namespace {

constexpr std::string_view word_ends = " \t\v\f;\"$[]{}\\#";

bool can_stand_in_braces(std::string_view text) {
    int depth = 0;
    for (const char c : text) {
        depth += c == '{' ? 1 : c == '}' ? -1 : 0;
        if (depth < 0 || c == '\\')
            return false;
    }
    return depth == 0;
}

void append_escaped(std::string& out, char c) {
    if (c == '\n')
        out += "\\n";
    else if (c == '\r')
        out += "\\r";
    else if (c == '\0')
        out += "\\000";
    else if (word_ends.find(c) != std::string_view::npos)
        (out += '\\') += c;
    else
        out += c;
}

/// Reads a regular expression for what every match must have.
class LiteralFinder {
public:
    explicit LiteralFinder(std::string_view expression) : m_text(expression) {}

    std::string find() {
        // With alternatives or options, what stands in the text need not stand in a match; in \Q...\E
        // brackets are no groups.
        for (const std::string_view part : {"|", "(?", "\\Q"})
            if (m_text.find(part) != std::string_view::npos)
                return {};
        while (m_pos < m_text.size())
            step();
        endRun();
        return std::move(m_best);
    }

private:
    void step() {
        const char c = m_text[m_pos++];
        switch (c) {
        case '\\':
            escaped();
            break;
        case '[':
            skipClass();
            endRun();
            break;
        case '(':
            skipGroup();
            endRun();
            break;
        case '*':
        case '?':
        case '{':
            // What was repeated may not be there at all.
            if (!m_run.empty())
                m_run.pop_back();
            endRun();
            if (c == '{')
                skipNumbers();
            break;
        case '+':
        case '.':
        case '^':
        case '$':
        case ')':
            endRun();
            break;
        default:
            // A repetition behind a character of several bytes holds for all of them.
            (c & 0x80) ? endRun() : void(m_run += c);
        }
    }

    void escaped() {
        if (m_pos >= m_text.size())
            return;
        const char c = m_text[m_pos++];
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (!letter && !(c & 0x80)) {
            m_run += c;
            return;
        }
        endRun();
        // \pN, \x41: what follows is not read as plain text.
        if (c == 'p' || c == 'P' || c == 'x' || (c >= '0' && c <= '9'))
            m_pos = m_text.size();
    }

    /// Goes behind the numbers of a repetition; another brace is plain text.
    void skipNumbers() {
        const std::size_t end = m_text.find_first_not_of("0123456789,", m_pos);
        if (end != std::string_view::npos && m_text[end] == '}')
            m_pos = end + 1;
    }

    void skipClass() {
        if (m_pos < m_text.size() && m_text[m_pos] == '^')
            ++m_pos;
        if (m_pos < m_text.size() && m_text[m_pos] == ']')
            ++m_pos;
        while (m_pos < m_text.size() && m_text[m_pos] != ']') {
            if (m_text[m_pos] == '\\')
                ++m_pos;
            else if (m_text.substr(m_pos).starts_with("[:"))
                m_pos = std::min(m_text.find(":]", m_pos + 2), m_text.size() - 1) + 1;
            ++m_pos;
        }
        ++m_pos;
    }

    void skipGroup() {
        for (int depth = 1; m_pos < m_text.size() && depth > 0;) {
            const char c = m_text[m_pos++];
            if (c == '\\')
                ++m_pos;
            else if (c == '[')
                skipClass();
            else
                depth += c == '(' ? 1 : c == ')' ? -1 : 0;
        }
    }

    void endRun() {
        if (m_run.size() > m_best.size())
            m_best = m_run;
        m_run.clear();
    }

    std::string_view m_text;
    std::size_t m_pos = 0;
    std::string m_run;
    std::string m_best;
};

} // namespace

std::string tcl_word(std::string_view text) {
    const bool plain = !text.empty() && text.find_first_of(word_ends) == std::string_view::npos;
    const bool breaks = text.find_first_of(std::string_view("\n\r\0", 3)) != std::string_view::npos;
    if (plain && !breaks)
        return std::string(text);
    if (!breaks && can_stand_in_braces(text))
        return '{' + std::string(text) + '}';
    std::string out;
    for (const char c : text)
        append_escaped(out, c);
    return out;
}

std::string_view without_brackets(std::string_view id) {
    while (id.starts_with('['))
        id.remove_prefix(1);
    while (id.ends_with(']'))
        id.remove_suffix(1);
    return id;
}

std::string required_literal(std::string_view expression) {
    return LiteralFinder(expression).find();
}

} // namespace com_msg_mgr
