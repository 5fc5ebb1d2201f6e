#include "tcltasks/help/detail/property.h"

#include <algorithm>

#include "platform/env/HUTEnv.h"
#include "platform/property/HCPProperty.h"
#include "platform/tcl/HTCTclPatternMatch.h"

namespace HTCHelp::detail::property {

void validClassOrError(const std::string& name) {
    HCPProperty::getObjectInfoOrError(name);
}

void getMatchingClassTypes(const std::string& pattern, std::vector<std::string>& names) {
    const HTCTclPatternMatch matcher(pattern);
    std::vector<std::shared_ptr<HCPProperty::ObjectInfo>> classes;
    HCPProperty::getAllObjectInfo(classes);
    for (const auto& info : classes) {
        const std::string& name = info->getName();
        const bool shown = !matcher.hasWildcards() || isVisible(name) || HUTEnv::isTclDebug();
        if (!name.empty() && shown && matcher.match(name)) {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
}

bool isVisible(const std::string& name) {
    const auto info = HCPProperty::getObjectInfo(name);
    const auto spec = info ? info->getSpec("class") : nullptr;
    return spec && spec->getAttrSpec()->isVisible();
}

std::string getClassTypeDescription(const std::string& name) {
    const auto info = HCPProperty::getObjectInfo(name);
    return info ? info->getDescription() : std::string();
}

} // namespace HTCHelp::detail::property
