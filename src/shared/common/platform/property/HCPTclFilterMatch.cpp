#include "platform/property/HCPTclFilterMatch.h"

#include <strings.h>

#include "platform/env/HUTConvert.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"

using Operator = HCPFilterExpression::Operator;

struct HCPTclFilterMatch::bound_test {
    const HCPFilterExpression::Test* test;
    HCPProperty::Reader reader;
    bool isNumber;                // the property is one, by its type
    std::optional<double> number; // what a number is compared with
};

namespace {

bool is_number(HATAttrTypes::AttrType type) {
    using namespace HATAttrTypes;
    return type == type_bool || type == type_int || type == type_long || type == type_double;
}

bool by_value(Operator op) {
    return op != Operator::truth && op != Operator::match && op != Operator::no_match;
}

bool is_equality(Operator op) {
    return op == Operator::equal || op == Operator::not_equal;
}

bool equal_text(const std::string& a, const std::string& b, bool nocase) {
    return a.size() == b.size() && (nocase ? ::strncasecmp(a.data(), b.data(), a.size()) == 0 : a == b);
}

bool is_true(const HATAttrAny& value) {
    if (const auto number = HATAttrUtils::numberOf(value)) {
        return *number != 0;
    }
    const std::string text = HATAttrUtils::getStringValue(value);
    const auto number = HATAttrUtils::numberFrom(text);
    return number ? *number != 0 : !text.empty() && !equal_text(text, "false", true);
}

[[noreturn]] void refuse(const std::string& literal, const HATAttrSpec& spec) {
    throw HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5366@%s%s%s\n",
                                     literal.substr(0, 200), spec.getName(), HATAttrUtils::accepted(spec)));
}

// The number that a literal is for a property which is one.
double number_for(const HCPFilterExpression::Test& test, const HATAttrSpec& spec) {
    bool truth = false;
    if (spec.getAttrType() == HATAttrTypes::type_bool && HUTConvert::toBool(test.literal, truth)) {
        return truth;
    }
    if (!test.number) {
        refuse(test.literal, spec);
    }
    return *test.number;
}

} // namespace

HCPTclFilterMatch::HCPTclFilterMatch(const std::string& expression, Tcl_Interp*, bool regexp, bool nocase)
    : m_expression(expression, {regexp, nocase}) {}

HCPTclFilterMatch::~HCPTclFilterMatch() = default;

bool HCPTclFilterMatch::match(const vek::tcltasks::tclany& object) {
    const auto info = HCPProperty::getObjectInfoOrError(object);
    return match(*info, info->typeInfo().address(object));
}

bool HCPTclFilterMatch::match(const HCPProperty::ObjectInfo& info, const void* object) {
    if (&info != m_info) {
        bind(info, object);
    }
    return m_expression.evaluate([&](uint32_t i) { return answer(m_tests[i], object); });
}

void HCPTclFilterMatch::bind(const HCPProperty::ObjectInfo& info, const void* object) {
    m_info = nullptr;
    m_tests.clear();
    for (const auto& test : m_expression.tests()) {
        bound_test bound{&test, HCPProperty::Reader(test.property), false, test.number};
        if (!bound.reader.known(info, object)) {
            HCPProperty::Utils::noSuchProperty(test.property, HCPProperty::Get::getClass(info));
        }
        if (bound.reader.spec() != info.defaultSpec()) {
            const HATAttrSpec& spec = *bound.reader.spec()->getAttrSpec();
            bound.isNumber = is_number(spec.getAttrType());
            if (bound.isNumber && by_value(test.op)) {
                bound.number = number_for(test, spec);
            }
            if (spec.isEnumerated() && is_equality(test.op) && !m_expression.options().nocase) {
                HATAttrUtils::convert(spec, test.literal);
            }
        }
        m_tests.push_back(std::move(bound));
    }
    m_info = &info;
}

bool HCPTclFilterMatch::answer(bound_test& bound, const void* object) {
    const HCPFilterExpression::Test& test = *bound.test;
    if (!bound.reader.get(*m_info, object, m_value)) {
        return test.op == Operator::not_equal || test.op == Operator::no_match;
    }
    if (test.op == Operator::truth) {
        return is_true(m_value);
    }
    if (bound.isNumber && by_value(test.op)) {
        if (const auto number = HATAttrUtils::numberOf(m_value)) {
            return HCPFilterExpression::compare(*number, test.op, *bound.number);
        }
    }
    const std::string* held = std::get_if<std::string>(&m_value);
    const std::string made = held ? std::string() : HATAttrUtils::getStringValue(m_value);
    const std::string& text = held ? *held : made;
    if (test.pattern) {
        return test.pattern->match(text) == (test.op == Operator::match);
    }
    if (is_equality(test.op)) {
        return equal_text(text, test.literal, m_expression.options().nocase) == (test.op == Operator::equal);
    }
    if (test.number) {
        if (const auto number = HATAttrUtils::numberFrom(text)) {
            return HCPFilterExpression::compare(*number, test.op, *test.number);
        }
    }
    return HCPFilterExpression::compare(text, test.op, test.literal);
}
