#include "tcltasks/property/HTCGetAttrSpecProperties.h"

#include "platform/property/HCPPropertyTable.h"
#include "tcltasks/core/native_types.h"

namespace {

const char* type_word(const HATAttrSpec* spec) {
    return HATAttrUtils::getStringType(spec->getAttrType());
}

std::vector<std::string> legal_values(const HATAttrSpec* spec) {
    std::vector<std::string> values;
    HCPProperty::Utils::getValues(*spec, values, false);
    return values;
}

} // namespace

void HTCGetAttrSpecProperties::init() {
    const HCPProperty::Property<HATAttrSpec*> properties[] = {
        {"name", &HATAttrSpec::getName, "Name of the property", {.hidden = true}},
        {"is_enumerated", &HATAttrSpec::isEnumerated, "True if the property takes only certain words"},
        {"is_rangeset", &HATAttrSpec::isRangeset, "True if the property takes only numbers of a range"},
        {"is_visible", &HATAttrSpec::isVisible, "True if list_property and report_property show it"},
        {"is_readonly", &HATAttrSpec::isReadOnly, "True if the property cannot be set"},
        {"is_tcl", &HATAttrSpec::isUserDefined, "True if create_property made it"},
        {"has_default", &HATAttrSpec::hasDefault, "True if the property has a default"},
        {"type", type_word, "Type of its values"},
        {"values", legal_values, "Legal values; empty if the property takes any"},
    };
    HCPProperty::registerClass<HATAttrSpec*>(
        "attr_spec", "Internal object type for querying values on an HATAttrSpec.", properties,
        {.alive = [](HATAttrSpec* spec) { return !spec->isDeleted(); },
         .userProperties = false,
         .hiddenClassProperty = true});
}
