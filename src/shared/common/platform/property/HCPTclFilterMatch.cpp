#include "platform/property/HCPTclFilterMatch.h"

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
            if (bound.isNumber && test.by_value()) {
                bound.number = number_for(test, spec);
            }
            if (spec.isEnumerated() && test.is_equality() && !m_expression.options().nocase) {
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
        return test.without_value();
    }
    if (bound.isNumber && test.by_value()) {
        if (const auto number = HATAttrUtils::numberOf(m_value)) {
            return HCPFilterExpression::compare(*number, test.op, *bound.number);
        }
    }
    if (test.op == Operator::truth) {
        if (const auto number = HATAttrUtils::numberOf(m_value)) {
            return *number != 0;
        }
    }
    const bool nocase = m_expression.options().nocase;
    const std::string* held = std::get_if<std::string>(&m_value);
    return held ? test.answer(*held, nocase) : test.answer(HATAttrUtils::getStringValue(m_value), nocase);
}
