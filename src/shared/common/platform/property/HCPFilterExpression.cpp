#include "platform/property/HCPFilterExpression.h"

#include <strings.h>
#include <utility>

#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "platform/property/HATAttrUtils.h"

namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool equal_text(std::string_view a, std::string_view b, bool nocase) {
    return a.size() == b.size() && (nocase ? ::strncasecmp(a.data(), b.data(), a.size()) == 0 : a == b);
}

constexpr std::pair<std::string_view, HCPFilterExpression::Operator> operators[] = {
    {"==", HCPFilterExpression::Operator::equal},      {"!=", HCPFilterExpression::Operator::not_equal},
    {"=~", HCPFilterExpression::Operator::match},      {"!~", HCPFilterExpression::Operator::no_match},
    {"<=", HCPFilterExpression::Operator::less_equal}, {">=", HCPFilterExpression::Operator::greater_equal},
    {"<", HCPFilterExpression::Operator::less},        {">", HCPFilterExpression::Operator::greater},
};

} // namespace

/// Turns the text into tests and steps. A list of steps with jumps instead of a tree: no recursion, so
/// nesting of any depth is safe, here and in evaluation.
class HCPFilterExpression::Compiler {
public:
    explicit Compiler(HCPFilterExpression& filter) : m_filter(filter), m_text(filter.m_text) {}

    void run() {
        do {
            read_operand();
        } while (read_connective());
    }

private:
    enum class Kind : uint8_t { open, negate, conjunction, disjunction };
    struct Pending {
        Kind kind;
        uint32_t step;
        size_t position;
    };

    [[noreturn]] void fail(size_t position, const std::string& expected) const {
        const std::string found = position < m_text.size() ? "'" + word_at(position) + "'" : "the end";
        const std::string shown = std::string(m_text.substr(0, 200)) + (m_text.size() > 200 ? "..." : "");
        throw HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5365@%s%d%s%s\n", shown,
                                         static_cast<long>(position + 1), expected, found));
    }

    std::string word_at(size_t position) const {
        size_t end = position + 1;
        while (end < m_text.size() && end < position + 40 && !is_blank(m_text[end]) &&
               std::string_view("()&|").find(m_text[end]) == std::string_view::npos) {
            ++end;
        }
        return std::string(m_text.substr(position, end - position));
    }

    void skip_blanks() {
        while (m_at < m_text.size() && is_blank(m_text[m_at])) {
            ++m_at;
        }
    }

    bool take(std::string_view token) {
        if (m_text.substr(m_at, token.size()) != token) {
            return false;
        }
        m_at += token.size();
        return true;
    }

    uint32_t steps() const { return static_cast<uint32_t>(m_filter.m_steps.size()); }
    void emit(Action action, uint32_t argument = 0) { m_filter.m_steps.push_back({action, argument}); }

    // Opening parentheses and '!' up to a comparison, then the comparison.
    void read_operand() {
        for (;;) {
            skip_blanks();
            const size_t position = m_at;
            if (take("(")) {
                m_pending.push_back({Kind::open, 0, position});
            } else if (take("!")) {
                m_pending.push_back({Kind::negate, 0, position});
            } else {
                break;
            }
        }
        read_test();
        reduce(Kind::negate);
    }

    // Closing parentheses, then '&&', '||' or the end; false at the end.
    bool read_connective() {
        for (;;) {
            skip_blanks();
            const size_t position = m_at;
            if (take(")")) {
                reduce(Kind::disjunction);
                if (m_pending.empty()) {
                    fail(position, "'&&', '||' or the end");
                }
                m_pending.pop_back();
                reduce(Kind::negate);
            } else if (take("&&")) {
                join(Kind::conjunction, Action::skip_if_false);
                return true;
            } else if (take("||")) {
                join(Kind::disjunction, Action::skip_if_true);
                return true;
            } else if (m_at == m_text.size()) {
                reduce(Kind::disjunction);
                if (!m_pending.empty()) {
                    fail(position,
                         "a ')' for the '(' at character " + std::to_string(m_pending.back().position + 1));
                }
                return false;
            } else {
                fail(position, m_pending.empty() ? "'&&', '||' or the end" : "'&&', '||' or ')'");
            }
        }
    }

    void join(Kind kind, Action skip) {
        reduce(kind);
        m_pending.push_back({kind, steps(), m_at});
        emit(skip);
    }

    // Finishes what binds at least as tightly as `kind`, down to an open parenthesis.
    void reduce(Kind kind) {
        while (!m_pending.empty() && m_pending.back().kind != Kind::open && m_pending.back().kind <= kind) {
            if (m_pending.back().kind == Kind::negate) {
                emit(Action::negate);
            } else {
                m_filter.m_steps[m_pending.back().step].argument = steps();
            }
            m_pending.pop_back();
        }
    }

    void read_test() {
        Test test;
        const size_t begin = m_at;
        test.property = read_word("()!=<>~&|", "a property name");
        if (test.property.empty()) {
            fail(begin, "a property name");
        }
        skip_blanks();
        const size_t position = m_at;
        for (const auto& [token, op] : operators) {
            if (take(token)) {
                test.op = op;
                break;
            }
        }
        if (test.op != Operator::truth) {
            read_literal(test);
        } else if (m_at < m_text.size() &&
                   std::string_view("=~").find(m_text[m_at]) != std::string_view::npos) {
            fail(position, "one of ==, !=, =~, !~, <, <=, >, >=");
        }
        emit(Action::test, static_cast<uint32_t>(m_filter.m_tests.size()));
        m_filter.m_tests.push_back(std::move(test));
    }

    void read_literal(Test& test) {
        skip_blanks();
        test.literal = read_word("()", "a value");
        test.number = HATAttrUtils::numberFrom(test.literal);
        if (test.op == Operator::match || test.op == Operator::no_match) {
            test.pattern.emplace(test.literal, m_filter.m_options.regexp, m_filter.m_options.nocase,
                                 HTCTclPatternMatch::Brackets::itself);
        }
    }

    // A quoted text, or a bare word up to a blank, '&&', '||' or one of `stops`.
    std::string read_word(std::string_view stops, const char* expected) {
        const size_t begin = m_at;
        if (m_at == m_text.size()) {
            fail(m_at, expected);
        }
        const char first = m_text[m_at];
        if (first == '{') {
            return read_braces();
        }
        if (first == '"' || first == '\'') {
            return read_quotes(first);
        }
        while (m_at < m_text.size() && !is_blank(m_text[m_at]) &&
               stops.find(m_text[m_at]) == std::string_view::npos && m_text.substr(m_at, 2) != "&&" &&
               m_text.substr(m_at, 2) != "||") {
            m_at += m_text[m_at] == '\\' && m_at + 1 < m_text.size() ? 2 : 1;
        }
        if (m_at == begin) {
            fail(m_at, expected);
        }
        return std::string(m_text.substr(begin, m_at - begin));
    }

    std::string read_quotes(char quote) {
        const size_t begin = m_at++;
        std::string word;
        for (; m_at < m_text.size() && m_text[m_at] != quote; ++m_at) {
            // Only an escaped quote loses its backslash: all others may belong to a pattern.
            if (m_text[m_at] == '\\' && m_at + 1 < m_text.size()) {
                if (m_text[m_at + 1] != quote) {
                    word += '\\';
                }
                ++m_at;
            }
            word += m_text[m_at];
        }
        if (m_at >= m_text.size()) {
            fail(m_text.size(), std::string("a closing ") + quote + " for the one at character " +
                                    std::to_string(begin + 1));
        }
        ++m_at;
        return word;
    }

    std::string read_braces() {
        const size_t begin = m_at;
        size_t depth = 0;
        for (; m_at < m_text.size(); ++m_at) {
            if (m_text[m_at] == '\\') {
                ++m_at;
            } else if (m_text[m_at] == '{') {
                ++depth;
            } else if (m_text[m_at] == '}' && --depth == 0) {
                ++m_at;
                return std::string(m_text.substr(begin + 1, m_at - begin - 2));
            }
        }
        fail(m_text.size(), "a closing } for the one at character " + std::to_string(begin + 1));
    }

    HCPFilterExpression& m_filter;
    std::string_view m_text;
    size_t m_at = 0;
    std::vector<Pending> m_pending;
};

HCPFilterExpression::HCPFilterExpression(std::string text, Options options)
    : m_text(std::move(text)), m_options(options) {
    Compiler(*this).run();
}

bool HCPFilterExpression::Test::answer(std::string_view text, bool nocase, bool equalAsNumbers) const {
    if (op == Operator::truth) {
        const auto value = HATAttrUtils::numberFrom(text);
        return value ? *value != 0 : !text.empty() && !equal_text(text, "false", true);
    }
    if (pattern) {
        return pattern->match(text) == (op == Operator::match);
    }
    if (number && (equalAsNumbers || !is_equality())) {
        if (const auto value = HATAttrUtils::numberFrom(text)) {
            return compare(*value, op, *number);
        }
    }
    if (is_equality()) {
        return equal_text(text, literal, nocase) == (op == Operator::equal);
    }
    return compare(text, op, std::string_view(literal));
}
