#pragma once

#include "design/Pattern.h"
#include "design/Property.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace design {

/// A filter expression, as `ref_name =~ LUT* && (fanout > 4 || !is_leaf)`, compiled once and then asked for
/// any number of objects.
///
/// Comparisons are ==, !=, <, <=, >, >= by value, =~ and !~ by glob pattern (or regular expression); joined
/// by &&, || and !, with parentheses. The left side names a property; it alone means that the value is true,
/// a number other than 0 or a text other than "", "0", "false". The right side is a bare word or a text in
/// double quotes, single quotes or braces. Numbers compare as numbers. An object without the property makes
/// != and !~ true and all others false.
///
/// Properties are bound to a design and a class when the first of its objects is asked for.
class Filter {
public:
    struct Options {
        bool regexp = false; ///< =~ and !~ take regular expressions
        bool nocase = false; ///< texts match without regard to case
    };

    /// Throws Error(bad_filter) that tells the position, from 1, and what was expected there.
    Filter(std::string_view text, Options options);
    explicit Filter(std::string_view text) : Filter(text, Options()) {}
    Filter(Filter&&) noexcept;
    ~Filter();

    /// Resolves the properties for a class; matches() does so by itself. Throws Error(no_such_property) if no
    /// object of the class can have one, Error(bad_filter) if a literal does not fit a property's type.
    void bind(const Design& design, ObjectClass cls);

    bool matches(const ObjectRef& object);

    /// The same for the class and design bound last, by number.
    bool matches(uint32_t index);

private:
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
        Operator op;
        std::string literal;
        std::optional<double> number;
        std::optional<Pattern> pattern;
    };
    enum class Action : uint8_t { test, negate, skip_if_false, skip_if_true };
    struct Step {
        Action action;
        uint32_t argument; ///< which test, or the step to go on at
    };
    class Compiler;
    class BoundTest;
    struct Binding;

    std::string text_;
    Options options_;
    std::vector<Test> tests_;
    std::vector<Step> steps_;
    std::vector<std::unique_ptr<Binding>> bindings_;
    Binding* bound_ = nullptr;
};

} // namespace design
