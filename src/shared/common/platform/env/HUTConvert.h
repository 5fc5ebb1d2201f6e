#pragma once

#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <strings.h>

/// Text to values. Each returns false, with the value left alone, for a text that is none as a whole; no
/// blanks, no locale.
namespace HUTConvert {

/// The words true, yes, on, 1 and false, no, off, 0, case ignored.
inline bool toBool(std::string_view text, bool& value) {
    const auto is = [&](std::string_view word) {
        return text.size() == word.size() && ::strncasecmp(text.data(), word.data(), word.size()) == 0;
    };
    if (is("1") || is("true") || is("yes") || is("on")) {
        value = true;
    } else if (is("0") || is("false") || is("no") || is("off")) {
        value = false;
    } else {
        return false;
    }
    return true;
}

/// A decimal or, with 0x, a hexadecimal number that fits the type.
template <class Integer>
bool stringToInteger(std::string_view text, Integer& value) {
    const bool negative = text.starts_with('-');
    std::string_view digits = text.substr(negative || text.starts_with('+'));
    const bool hex = digits.starts_with("0x") || digits.starts_with("0X");
    digits.remove_prefix(hex ? 2 : 0);
    unsigned long magnitude = 0;
    const char* end = digits.data() + digits.size();
    const auto read = std::from_chars(digits.data(), end, magnitude, hex ? 16 : 10);
    if (digits.empty() || read.ec != std::errc() || read.ptr != end) {
        return false;
    }
    const unsigned long most = static_cast<unsigned long>(std::numeric_limits<Integer>::max());
    if (magnitude > most + (negative ? 1UL : 0UL)) {
        return false;
    }
    value = static_cast<Integer>(negative ? 0UL - magnitude : magnitude);
    return true;
}

/// A finite decimal number.
inline bool stringToFloat(std::string_view text, double& value) {
    const std::string_view digits = text.substr(text.starts_with('+') ? 1 : 0);
    double number = 0;
    const char* end = digits.data() + digits.size();
    const auto read = std::from_chars(digits.data(), end, number);
    if (digits.empty() || read.ec != std::errc() || read.ptr != end || !std::isfinite(number)) {
        return false;
    }
    value = number;
    return true;
}

} // namespace HUTConvert
