#include "platform/property/HATAttrUtils.h"

#include <optional>
#include <tcl.h>
#include <type_traits>

namespace {

template <class T>
std::string text_of(const T& value) {
    if constexpr (std::is_same_v<T, std::monostate>) {
        return {};
    } else if constexpr (std::is_same_v<T, std::string>) {
        return value;
    } else if constexpr (std::is_same_v<T, bool>) {
        return value ? "1" : "0";
    } else if constexpr (std::is_same_v<T, double>) {
        char buffer[TCL_DOUBLE_SPACE];
        Tcl_PrintDouble(nullptr, value, buffer);
        return buffer;
    } else if constexpr (std::is_integral_v<T>) {
        return std::to_string(value);
    } else {
        std::string text;
        for (const auto& element : value) {
            text += text.empty() ? "" : " ";
            text += text_of(element);
        }
        return text;
    }
}

std::optional<double> number_of(const HATAttrAny& value) {
    return std::visit(
        [](const auto& v) -> std::optional<double> {
            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(v)>>) {
                return static_cast<double>(v);
            } else {
                return std::nullopt;
            }
        },
        value);
}

} // namespace

std::string HATAttrUtils::getStringValue(const HATAttrAny& value) {
    return std::visit([](const auto& v) { return text_of(v); }, value);
}

std::string HATAttrUtils::getStringValue(const HATAttr& attr) {
    return getStringValue(attr.getValue());
}

bool HATAttrUtils::less(const HATAttrAny& a, const HATAttrAny& b) {
    const auto x = number_of(a), y = number_of(b);
    return x && y ? *x < *y : getStringValue(a) < getStringValue(b);
}
