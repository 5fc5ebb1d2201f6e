#include "design/Filter.h"

#include "design/Design.h"
#include "design/Error.h"

#include <algorithm>
#include <numeric>

namespace design {

using Operator = HCPFilterExpression::Operator;

/// One test with its property looked up, in the form that is cheapest for the kind of property.
class Filter::BoundTest {
public:
    BoundTest(const HCPFilterExpression::Test& test, bool nocase, const Design& design, ObjectClass cls)
        : test_(test), design_(design), reader_(design, cls, test.property), nocase_(nocase) {
        if (!reader_.known())
            throw_no_such_property(design, cls, test.property);
        const std::optional<ValueType> type = reader_.type();
        equal_as_numbers_ = !type;
        const PropertySpec* spec = reader_.spec();
        if (type == ValueType::boolean || type == ValueType::integer || type == ValueType::real) {
            equal_as_numbers_ = true;
            if (test_.by_value())
                test_.number = require_number(*spec);
            if (test_.by_value() || test_.op == Operator::truth)
                number_getter_ = spec->number;
        } else if (spec && spec->number) {
            judge_choices(*spec);
        }
    }

    /// How dear the test is beside others: each text of the file is judged once, a number has to be computed,
    /// a text to be made.
    int cost() const { return reader_.has_interned() ? 0 : number_getter_ || !choices_.empty() ? 1 : 2; }

    bool matches(uint32_t index) {
        if (number_getter_)
            return judge(static_cast<double>(number_getter_(design_, index)));
        if (!choices_.empty())
            return choices_[static_cast<size_t>(reader_.spec()->number(design_, index))];
        if (reader_.has_interned())
            return matches_interned(reader_.read_interned(index));
        return matches_text(reader_.read_text(index, buffer_));
    }

private:
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

    void judge_choices(const PropertySpec& spec) {
        if (test_.is_equality() && !nocase_)
            spec.checked(test_.literal);
        for (const std::string& value : spec.enum_values)
            choices_.push_back(test_.answer(value, nocase_));
    }

    bool judge(double value) const {
        return test_.op == Operator::truth ? value != 0
                                           : HCPFilterExpression::compare(value, test_.op, *test_.number);
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
        return text ? test_.answer(*text, nocase_, equal_as_numbers_) : test_.without_value();
    }

    static constexpr uint8_t unknown = 2;

    HCPFilterExpression::Test test_; // its number is the one that the property's type asks for
    const Design& design_;
    PropertyReader reader_;
    bool nocase_;
    bool equal_as_numbers_ = false;
    int64_t (*number_getter_)(const Design&, uint32_t) = nullptr;
    std::vector<bool> choices_;
    std::vector<uint8_t> verdicts_;
    std::string buffer_;
};

struct Filter::Binding {
    const Design* design;
    ObjectClass cls;
    std::vector<BoundTest> tests;
    std::vector<uint32_t> in_any_order; // the tests of a conjunction, the cheapest first
};

Filter::Filter(std::string text, Options options) : expression_(std::move(text), options) {}
Filter::Filter(Filter&&) noexcept = default;
Filter::~Filter() = default;

void Filter::bind(const Design& design, ObjectClass cls) {
    for (const auto& binding : bindings_)
        if (binding->design == &design && binding->cls == cls) {
            bound_ = binding.get();
            return;
        }
    auto binding = std::make_unique<Binding>(Binding{&design, cls, {}, {}});
    binding->tests.reserve(expression_.tests().size());
    for (const HCPFilterExpression::Test& test : expression_.tests())
        binding->tests.emplace_back(test, expression_.options().nocase, design, cls);
    if (expression_.is_conjunction()) {
        auto& order = binding->in_any_order;
        order.resize(binding->tests.size());
        std::iota(order.begin(), order.end(), 0);
        std::stable_sort(order.begin(), order.end(), [&](uint32_t a, uint32_t b) {
            return binding->tests[a].cost() < binding->tests[b].cost();
        });
    }
    bound_ = bindings_.emplace_back(std::move(binding)).get();
}

bool Filter::matches(const ObjectRef& object) {
    const Design& design = object.design();
    if (!bound_ || bound_->design != &design || bound_->cls != object.object_class())
        bind(design, object.object_class());
    return matches(object.index());
}

bool Filter::matches(uint32_t index) {
    const auto& order = bound_->in_any_order;
    if (!order.empty())
        return std::all_of(order.begin(), order.end(),
                           [&](uint32_t test) { return bound_->tests[test].matches(index); });
    return expression_.evaluate([&](uint32_t test) { return bound_->tests[test].matches(index); });
}

} // namespace design
