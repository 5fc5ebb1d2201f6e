#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Text to value as parameters read it; nothing for a text that does not fit.
namespace hpa_param_text {

/// yes, true, no, false in any case, or a decimal number that is 0 or 1 ("+1", "0001", "-0").
std::optional<bool> to_bool(std::string_view text);
/// A whole number, decimal or hexadecimal with 0x, with an optional sign.
std::optional<int> to_int(std::string_view text);
/// A finite number that a float can hold, as exactly as it was written; and the float nearest to it.
std::optional<double> to_number(std::string_view text);
std::optional<float> to_float(std::string_view text);
/// The shortest text that gives the same number again.
std::string from_float(float value);

} // namespace hpa_param_text
