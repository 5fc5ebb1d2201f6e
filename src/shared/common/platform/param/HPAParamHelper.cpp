#include "platform/param/HPAParamHelper.h"

#include <locale>
#include <sstream>

#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "platform/param/HPAParamMgr.h"
#include "platform/param/HPAParamText.h"
#include "platform/tcl/HTCTclUtils.h"

namespace {

struct range_text {
    std::string min, max;
};

range_text range_of(const HPAParam& param) {
    if (param.type() == HPA_FLOAT)
        return {param_helper::to_string(param.float_min()), param_helper::to_string(param.float_max())};
    return {std::to_string(param.int_min()), std::to_string(param.int_max())};
}

[[noreturn]] void raise_outside(const HPAParam& param) {
    const auto [min, max] = range_of(param);
    throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-154@%s%s\n", min, max});
}

} // namespace

HPAParam& param_helper::find_param(const std::string& name) {
    const HPAParamMgr& manager = HPAParamMgr::getParamMgr();
    HPAParam* const exact = manager.findParam(name);
    HPAParam* const found = exact ? exact : manager.findParamNoCase(name);
    if (!found)
        throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-153@%s\n", name});
    return *found;
}

std::string param_helper::get_value(const HPAParam& param) {
    return param.type() == HPA_FLOAT ? to_string(param.float_value()) : HPAParamMgr::valueText(param);
}

std::string param_helper::get_default_value(const HPAParam& param) {
    return param.type() == HPA_FLOAT ? to_string(param.float_default()) : HPAParamMgr::defaultText(param);
}

std::string param_helper::to_string(float value) {
    const int digits = HTCTclUtils::tclGetPrecision(0);
    if (digits == 0)
        return hpa_param_text::from_float(value);
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(digits);
    text << value;
    return text.str();
}

bool param_helper::to_bool(std::string_view text, bool& value) {
    const auto read = hpa_param_text::to_bool(text);
    value = read.value_or(value);
    return read.has_value();
}

void param_helper::check_int_range(const HPAParam& param, int value) {
    if (param.has_range() && (value < param.int_min() || value > param.int_max()))
        raise_outside(param);
}

void param_helper::check_float_range(const HPAParam& param, double value) {
    if (param.has_range() && (value < param.float_min() || value > param.float_max()))
        raise_outside(param);
}

void param_helper::set_value(HPAParam& param, std::string_view text) {
    HPAParamMgr::getParamMgr().setValue(param, text);
}

std::string param_helper::get_description(const HPAParam& param) {
    if (!param.has_range() || (param.type() != HPA_INT && param.type() != HPA_FLOAT))
        return param.description;
    const auto [min, max] = range_of(param);
    return param.description + " Value should be >= " + min + " and <= " + max;
}
