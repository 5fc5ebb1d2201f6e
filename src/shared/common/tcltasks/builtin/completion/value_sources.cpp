#include "tcltasks/builtin/completion/value_sources.h"

#include <set>

#include "platform/msg/ComMsgMgr.h"
#include "platform/param/HPAParamMgr.h"
#include "platform/property/HCPProperty.h"
#include "platform/taskcore/value_hints.h"

namespace HTCLibEdit::detail {

namespace {

using vek::tcltasks::value_hints;
using names = std::vector<std::string>;
using given_options = value_hints::given_options;

names parameters(Tcl_Interp*, const given_options&) {
    names result;
    for (const HPAParam* param : HPAParamMgr::getParamMgr().params()) {
        if (param->visible && param->state == HPAParam::active) {
            result.push_back(param->name);
        }
    }
    return result;
}

// The values of the parameter that the option `name` of the line names.
names parameter_values(Tcl_Interp*, const given_options& given) {
    const auto name = given.find("name");
    const HPAParam* param =
        name == given.end() ? nullptr : HPAParamMgr::getParamMgr().findParamNoCase(name->second);
    if (!param) {
        return {};
    }
    const bool truth = param->type() == HPA_BOOL || param->type() == HPA_LINKED;
    return truth ? names{"false", "true"} : param->values();
}

std::vector<std::shared_ptr<HCPProperty::ObjectInfo>> named_classes() {
    std::vector<std::shared_ptr<HCPProperty::ObjectInfo>> all;
    HCPProperty::getAllObjectInfo(all);
    std::erase_if(all, [](const auto& info) { return info->getName().empty(); });
    return all;
}

names classes(Tcl_Interp*, const given_options&) {
    names result;
    for (const auto& info : named_classes()) {
        result.push_back(info->getName());
    }
    return result;
}

// The properties of the class that the line names, or else those of all classes.
names properties(Tcl_Interp*, const given_options& given) {
    const auto wanted = given.find("class");
    const bool one = wanted != given.end() && HCPProperty::getObjectInfo(wanted->second);
    std::set<std::string> result;
    for (const auto& info : named_classes()) {
        if (one && info->getName() != wanted->second) {
            continue;
        }
        for (const auto& spec : info->specs()) {
            if (spec->getAttrSpec()->isVisible()) {
                result.insert(spec->getName());
            }
        }
    }
    return {result.begin(), result.end()};
}

names severities(Tcl_Interp*, const given_options&) {
    names result;
    for (ComMsgMgr::MsgMask bit = 1; bit != 0; bit <<= 1) {
        if (bit & ComMsgMgr::MSGTYPE_SEVERITIES) {
            result.emplace_back(ComMsgMgr::msgType2Str(bit));
        }
    }
    return result;
}

} // namespace

void add_value_sources() {
    value_hints::add("param", parameters);
    value_hints::add("param_value", parameter_values);
    value_hints::add("class", classes);
    value_hints::add("property", properties);
    value_hints::add("severity", severities);
}

} // namespace HTCLibEdit::detail
