#include "platform/param/HPAParamText.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "platform/env/HSTStringUtils.h"

namespace hpa_param_text {

std::optional<bool> to_bool(std::string_view text) {
    if (HSTStringUtils::iequals(text, "yes") || HSTStringUtils::iequals(text, "true"))
        return true;
    if (HSTStringUtils::iequals(text, "no") || HSTStringUtils::iequals(text, "false"))
        return false;
    if (text.empty() || (text.back() != '0' && text.back() != '1'))
        return std::nullopt;
    const bool value = text.back() == '1';
    text.remove_suffix(1);
    if (!text.empty() && (text.front() == '+' || (text.front() == '-' && !value)))
        text.remove_prefix(1);
    if (text.find_first_not_of('0') != std::string_view::npos)
        return std::nullopt;
    return value;
}

std::optional<int> to_int(std::string_view text) {
    const bool negative = !text.empty() && text.front() == '-';
    if (!text.empty() && (text.front() == '-' || text.front() == '+'))
        text.remove_prefix(1);
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
        base = 16;
    }
    unsigned long long magnitude = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude, base);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    constexpr unsigned long long max = std::numeric_limits<int>::max();
    if (magnitude > max + (negative ? 1 : 0))
        return std::nullopt;
    return static_cast<int>(negative ? -static_cast<long long>(magnitude)
                                     : static_cast<long long>(magnitude));
}

std::optional<double> to_number(std::string_view text) {
    if (text.starts_with('+'))
        text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value) ||
        std::abs(value) > std::numeric_limits<float>::max())
        return std::nullopt;
    return value;
}

std::optional<float> to_float(std::string_view text) {
    const auto value = to_number(text);
    return value ? std::optional(static_cast<float>(*value)) : std::nullopt;
}

std::string from_float(float value) {
    char buffer[64];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
    return error == std::errc() ? std::string(buffer, end) : std::string();
}

} // namespace hpa_param_text
