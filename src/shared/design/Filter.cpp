#include "design/Filter.h"

#include "design/Design.h"
#include "design/Error.h"

#include <charconv>
#include <strings.h>

namespace design {

namespace {

std::optional<double> number_of(std::string_view text) {
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size())
        return {};
    return value;
}

bool equal_text(std::string_view a, std::string_view b, bool nocase) {
    return a.size() == b.size() && (nocase ? ::strncasecmp(a.data(), b.data(), a.size()) == 0 : a == b);
}

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

} // namespace

/// Turns the text into tests and steps. A step list with jumps instead of a tree: no recursion, so nesting
/// of any depth is safe, here and when objects are matched.
class Filter::Compiler {
public:
    explicit Compiler(Filter& filter) : filter_(filter), text_(filter.text_) {}

    void run() {
        for (;;) {
            read_operand();
            if (!read_connective())
                return;
        }
    }

private:
    enum class Kind : uint8_t { open, negate, conjunction, disjunction };
    struct Pending {
        Kind kind;
        uint32_t step;
        size_t position;
    };

    [[noreturn]] void fail(size_t position, const std::string& expected) const {
        std::string found = position < text_.size() ? "'" + word_at(position) + "'" : "the end";
        throw Error(Fault::bad_filter, "The filter expression '" + std::string(text_.substr(0, 200)) +
                                           (text_.size() > 200 ? "...'" : "'") + " is wrong at character " +
                                           std::to_string(position + 1) + ": " + expected +
                                           " was expected, not " + found + ".");
    }

    std::string word_at(size_t position) const {
        size_t end = position + 1;
        while (end < text_.size() && end < position + 40 && !is_blank(text_[end]) &&
               (end > position && std::string_view("()&|").find(text_[end]) == std::string_view::npos))
            ++end;
        return std::string(text_.substr(position, end - position));
    }

    void skip_blanks() {
        while (at_ < text_.size() && is_blank(text_[at_]))
            ++at_;
    }

    bool take(std::string_view token) {
        if (text_.substr(at_, token.size()) != token)
            return false;
        at_ += token.size();
        return true;
    }

    void emit(Action action, uint32_t argument = 0) { filter_.steps_.push_back({action, argument}); }

    // Opening parentheses and '!' up to a comparison, then the comparison.
    void read_operand() {
        for (;;) {
            skip_blanks();
            const size_t position = at_;
            if (take("("))
                pending_.push_back({Kind::open, 0, position});
            else if (take("!"))
                pending_.push_back({Kind::negate, 0, position});
            else
                break;
        }
        read_test();
        reduce(Kind::negate);
    }

    // Closing parentheses, then '&&', '||' or the end; false at the end.
    bool read_connective() {
        for (;;) {
            skip_blanks();
            const size_t position = at_;
            if (take(")")) {
                reduce(Kind::disjunction);
                if (pending_.empty())
                    fail(position, "'&&', '||' or the end");
                pending_.pop_back();
                reduce(Kind::negate);
            } else if (take("&&")) {
                join(Kind::conjunction, Action::skip_if_false);
                return true;
            } else if (take("||")) {
                join(Kind::disjunction, Action::skip_if_true);
                return true;
            } else if (at_ == text_.size()) {
                reduce(Kind::disjunction);
                if (!pending_.empty())
                    fail(position,
                         "a ')' for the '(' at character " + std::to_string(pending_.back().position + 1));
                return false;
            } else {
                fail(position, pending_.empty() ? "'&&', '||' or the end" : "'&&', '||' or ')'");
            }
        }
    }

    void join(Kind kind, Action skip) {
        reduce(kind);
        pending_.push_back({kind, static_cast<uint32_t>(filter_.steps_.size()), at_});
        emit(skip);
    }

    // Finishes what binds at least as tightly as `kind`, down to an open parenthesis.
    void reduce(Kind kind) {
        while (!pending_.empty() && pending_.back().kind != Kind::open && pending_.back().kind <= kind) {
            if (pending_.back().kind == Kind::negate)
                emit(Action::negate);
            else
                filter_.steps_[pending_.back().step].argument = static_cast<uint32_t>(filter_.steps_.size());
            pending_.pop_back();
        }
    }

    void read_test() {
        const size_t position = at_;
        Test test{read_word("()!=<>~&|", "a property name"), Operator::truth, {}, {}, {}};
        if (test.property.empty())
            fail(position, "a property name");
        skip_blanks();
        static constexpr std::pair<std::string_view, Operator> operators[] = {
            {"==", Operator::equal},    {"!=", Operator::not_equal},  {"=~", Operator::match},
            {"!~", Operator::no_match}, {"<=", Operator::less_equal}, {">=", Operator::greater_equal},
            {"<", Operator::less},      {">", Operator::greater},
        };
        const size_t operator_position = at_;
        for (const auto& [token, op] : operators)
            if (take(token)) {
                test.op = op;
                break;
            }
        if (test.op == Operator::truth) {
            if (at_ < text_.size() && std::string_view("=!~").find(text_[at_]) != std::string_view::npos)
                fail(operator_position, "one of ==, !=, =~, !~, <, <=, >, >=");
        } else {
            skip_blanks();
            test.literal = read_word("()", "a value");
            test.number = number_of(test.literal);
            if (test.op == Operator::match || test.op == Operator::no_match)
                test.pattern = filter_.options_.regexp
                                   ? Pattern::regexp(test.literal, filter_.options_.nocase)
                                   : Pattern::glob(test.literal, filter_.options_.nocase);
        }
        emit(Action::test, static_cast<uint32_t>(filter_.tests_.size()));
        filter_.tests_.push_back(std::move(test));
    }

    // A quoted text, or a bare word up to a blank, '&&', '||' or one of `stops`.
    std::string read_word(std::string_view stops, const char* expected) {
        const size_t begin = at_;
        if (at_ == text_.size())
            fail(at_, expected);
        const char first = text_[at_];
        if (first == '{')
            return read_braces();
        if (first == '"' || first == '\'')
            return read_quotes(first);
        while (at_ < text_.size() && !is_blank(text_[at_]) &&
               stops.find(text_[at_]) == std::string_view::npos && text_.substr(at_, 2) != "&&" &&
               text_.substr(at_, 2) != "||") {
            if (text_[at_] == '\\' && at_ + 1 < text_.size())
                ++at_;
            ++at_;
        }
        if (at_ == begin)
            fail(at_, expected);
        return std::string(text_.substr(begin, at_ - begin));
    }

    std::string read_quotes(char quote) {
        const size_t begin = at_++;
        std::string word;
        for (; at_ < text_.size() && text_[at_] != quote; ++at_) {
            // Only an escaped quote loses its backslash: all others may belong to a pattern.
            if (text_[at_] == '\\' && at_ + 1 < text_.size()) {
                if (text_[at_ + 1] != quote)
                    word += '\\';
                ++at_;
            }
            word += text_[at_];
        }
        if (at_ == text_.size())
            fail(at_, std::string("a closing ") + quote + " for the one at character " +
                          std::to_string(begin + 1));
        ++at_;
        return word;
    }

    std::string read_braces() {
        const size_t begin = at_;
        size_t depth = 0;
        for (; at_ < text_.size(); ++at_) {
            if (text_[at_] == '\\' && at_ + 1 < text_.size()) {
                ++at_;
                continue;
            }
            if (text_[at_] == '{') {
                ++depth;
            } else if (text_[at_] == '}' && --depth == 0) {
                ++at_;
                return std::string(text_.substr(begin + 1, at_ - begin - 2));
            }
        }
        fail(at_, "a closing } for the one at character " + std::to_string(begin + 1));
    }

    Filter& filter_;
    std::string_view text_;
    size_t at_ = 0;
    std::vector<Pending> pending_;
};

/// One test with its property looked up, in the form that is cheapest for the kind of property.
class Filter::BoundTest {
public:
    BoundTest(const Filter& filter, const Test& test, const Design& design, ObjectClass cls)
        : test_(test), design_(design), reader_(design, cls, test.property), nocase_(filter.options_.nocase) {
        if (!reader_.known())
            throw_no_such_property(design, cls, test.property);
        type_ = reader_.type();
        const PropertySpec* spec = reader_.spec();
        if (spec && spec->number) {
            prepare_number(*spec);
        } else if (type_ == ValueType::boolean || type_ == ValueType::integer || type_ == ValueType::real) {
            if (compares_values())
                number_ = require_number(*spec);
        }
    }

    bool matches(uint32_t index) {
        if (number_getter_)
            return compare(static_cast<double>(number_getter_(design_, index)), number_);
        if (!choices_.empty())
            return choices_[static_cast<size_t>(reader_.spec()->number(design_, index))];
        if (reader_.has_interned())
            return matches_interned(reader_.read_interned(index));
        return matches_text(reader_.read_text(index, buffer_));
    }

private:
    bool compares_values() const {
        return test_.op != Operator::truth && test_.op != Operator::match && test_.op != Operator::no_match;
    }

    double require_number(const PropertySpec& spec) const {
        if (spec.type == ValueType::boolean) {
            PropertySpec plain;
            plain.name = spec.name;
            plain.type = ValueType::boolean;
            return plain.checked(test_.literal) == "1";
        }
        if (!test_.number)
            throw Error(Fault::bad_filter, "'" + test_.literal.substr(0, 200) +
                                               "' cannot be compared with the property '" + spec.name +
                                               "', which is of the type " + value_type_name(spec.type) +
                                               "; a number was expected.");
        return *test_.number;
    }

    void prepare_number(const PropertySpec& spec) {
        if (spec.type == ValueType::enumeration) {
            if (test_.op == Operator::equal || test_.op == Operator::not_equal)
                if (!nocase_)
                    spec.checked(test_.literal);
            for (const std::string& value : spec.enum_values)
                choices_.push_back(matches_text(std::string_view(value)));
        } else if (test_.op == Operator::truth) {
            number_getter_ = spec.number;
        } else if (compares_values()) {
            number_ = require_number(spec);
            number_getter_ = spec.number;
        }
    }

    bool compare(double value, double literal) const {
        switch (test_.op) {
        case Operator::truth:
            return value != 0;
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

    // Each distinct text of the file is judged once.
    bool matches_interned(NameId id) {
        if (id != none && (id & PropertyReader::set_flag))
            return matches_text(reader_.text_of(id, buffer_));
        const size_t slot = id == none ? 0 : size_t(id) + 1;
        if (slot >= verdicts_.size())
            verdicts_.resize(design_.netlist().names.size() + 1, unknown);
        if (verdicts_[slot] == unknown)
            verdicts_[slot] = matches_text(reader_.text_of(id, buffer_));
        return verdicts_[slot];
    }

    bool matches_text(std::optional<std::string_view> text) const {
        if (!text)
            return test_.op == Operator::not_equal || test_.op == Operator::no_match;
        switch (test_.op) {
        case Operator::truth: {
            const auto number = number_of(*text);
            return number ? *number != 0 : !text->empty() && !equal_text(*text, "false", true);
        }
        case Operator::match:
            return test_.pattern->matches(*text);
        case Operator::no_match:
            return !test_.pattern->matches(*text);
        default:
            break;
        }
        const bool typed_number =
            type_ == ValueType::boolean || type_ == ValueType::integer || type_ == ValueType::real;
        const std::optional<double> literal = typed_number ? std::optional(number_) : test_.number;
        const bool is_text = type_ == ValueType::string || type_ == ValueType::enumeration;
        const bool equality = test_.op == Operator::equal || test_.op == Operator::not_equal;
        if (literal && !(is_text && equality))
            if (const auto number = number_of(*text))
                return compare(*number, *literal);
        if (equality)
            return equal_text(*text, test_.literal, nocase_) == (test_.op == Operator::equal);
        return compare(text->compare(test_.literal), 0);
    }

    static constexpr uint8_t unknown = 2;

    const Test& test_;
    const Design& design_;
    PropertyReader reader_;
    bool nocase_;
    std::optional<ValueType> type_;
    int64_t (*number_getter_)(const Design&, uint32_t) = nullptr;
    double number_ = 0;
    std::vector<bool> choices_;
    std::vector<uint8_t> verdicts_;
    std::string buffer_;
};

struct Filter::Binding {
    const Design* design;
    ObjectClass cls;
    std::vector<BoundTest> tests;
};

Filter::Filter(std::string_view text, Options options) : text_(text), options_(options) {
    Compiler(*this).run();
}
Filter::Filter(Filter&&) noexcept = default;
Filter::~Filter() = default;

void Filter::bind(const Design& design, ObjectClass cls) {
    for (const auto& binding : bindings_)
        if (binding->design == &design && binding->cls == cls) {
            bound_ = binding.get();
            return;
        }
    auto binding = std::make_unique<Binding>(Binding{&design, cls, {}});
    binding->tests.reserve(tests_.size());
    for (const Test& test : tests_)
        binding->tests.emplace_back(*this, test, design, cls);
    bound_ = bindings_.emplace_back(std::move(binding)).get();
}

bool Filter::matches(const ObjectRef& object) {
    const Design& design = object.design();
    if (!bound_ || bound_->design != &design || bound_->cls != object.object_class())
        bind(design, object.object_class());
    return matches(object.index());
}

bool Filter::matches(uint32_t index) {
    bool value = true;
    for (size_t i = 0; i < steps_.size();) {
        const Step step = steps_[i++];
        switch (step.action) {
        case Action::test:
            value = bound_->tests[step.argument].matches(index);
            break;
        case Action::negate:
            value = !value;
            break;
        case Action::skip_if_false:
            if (!value)
                i = step.argument;
            break;
        case Action::skip_if_true:
            if (value)
                i = step.argument;
            break;
        }
    }
    return value;
}

} // namespace design
