#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/tcl/HTCTclPatternMatch.h"

/// A filter expression over the properties of objects, as `ref_name =~ LUT* && (fanout > 4 || !is_leaf)`,
/// compiled into tests and steps. It knows no objects: whoever evaluates it answers the tests.
///
/// Comparisons are ==, !=, <, <=, >, >= by value, =~ and !~ by glob pattern (or regular expression); joined
/// by &&, || and !, with parentheses. The left side names a property; it alone asks whether its value is
/// true, a number other than 0 or a text other than "", "0", "false". The right side is a bare word or a text
/// in double quotes, single quotes or braces.
class HCPFilterExpression {
public:
    struct Options {
        bool regexp = false; ///< =~ and !~ take regular expressions
        bool nocase = false; ///< texts match without regard to case
    };

    enum class Operator : uint8_t {
        truth,
        equal,
        not_equal,
        match,
        no_match,
        less,
        less_equal,
        greater,
        greater_equal
    };

    struct Test {
        std::string property;
        Operator op = Operator::truth;
        std::string literal;
        std::optional<double> number;              ///< the literal, if it is one
        std::optional<HTCTclPatternMatch> pattern; ///< for match and no_match

        bool is_equality() const { return op == Operator::equal || op == Operator::not_equal; }
        /// True for the six comparisons by value.
        bool by_value() const {
            return op != Operator::truth && op != Operator::match && op != Operator::no_match;
        }
        /// What an object without the property answers.
        bool without_value() const { return op == Operator::not_equal || op == Operator::no_match; }
        /// What a text answers. Texts that both read as numbers compare by size, and are equal as such only
        /// if `equalAsNumbers`.
        bool answer(std::string_view text, bool nocase, bool equalAsNumbers = false) const;
    };

    /// Throws HEXError that tells the position, from 1, and what was expected there; and as
    /// HTCTclPatternMatch.
    HCPFilterExpression(std::string text, Options options);

    const std::string& text() const { return m_text; }
    const Options& options() const { return m_options; }
    const std::vector<Test>& tests() const { return m_tests; }

    /// True if the expression holds where all its tests do, so that these may be asked in any order.
    bool is_conjunction() const {
        return std::all_of(m_steps.begin(), m_steps.end(), [](const Step& step) {
            return step.action == Action::test || step.action == Action::skip_if_false;
        });
    }

    /// The value of the expression; `answer(i)` gives that of test number i and is called for those that
    /// matter only. Needs no stack, however deeply the expression nests.
    template <class Answer>
    bool evaluate(Answer&& answer) const {
        bool value = true;
        for (size_t i = 0; i < m_steps.size();) {
            const Step step = m_steps[i++];
            switch (step.action) {
            case Action::test:
                value = answer(step.argument);
                break;
            case Action::negate:
                value = !value;
                break;
            case Action::skip_if_false:
                i = value ? i : step.argument;
                break;
            case Action::skip_if_true:
                i = value ? step.argument : i;
                break;
            }
        }
        return value;
    }

    /// Whether `value op literal` holds; for the six comparisons by value.
    template <class V, class L>
    static bool compare(const V& value, Operator op, const L& literal) {
        switch (op) {
        case Operator::equal:
            return value == literal;
        case Operator::not_equal:
            return value != literal;
        case Operator::less:
            return value < literal;
        case Operator::less_equal:
            return value <= literal;
        case Operator::greater:
            return value > literal;
        case Operator::greater_equal:
            return value >= literal;
        default:
            return false;
        }
    }

private:
    enum class Action : uint8_t { test, negate, skip_if_false, skip_if_true };
    struct Step {
        Action action;
        uint32_t argument; // which test, or the step to go on at
    };
    class Compiler;

    std::string m_text;
    Options m_options;
    std::vector<Test> m_tests;
    std::vector<Step> m_steps;
};
