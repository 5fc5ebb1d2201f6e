#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace com_msg_mgr {

/// One argument of a message as its sender holds it: a text is viewed where it lies.
using ArgView = std::variant<std::string_view, std::int64_t, std::uint64_t, double>;

/// \param value lives as long as the view.
template <class T>
ArgView to_view(const T& value) {
    if constexpr (std::is_same_v<T, char>)
        return std::string_view(&value, 1);
    else if constexpr (std::is_same_v<T, std::filesystem::path>)
        return std::string_view(value.native());
    else if constexpr (std::is_floating_point_v<T>)
        return static_cast<double>(value);
    else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>)
        return static_cast<std::int64_t>(value);
    else if constexpr (std::is_integral_v<T>)
        return static_cast<std::uint64_t>(value);
    else if constexpr (std::is_pointer_v<T>)
        return value ? std::string_view(value) : std::string_view("(null)");
    else
        return std::string_view(value);
}

/// Appends the words of a message with the arguments filled in. Nothing of an argument is read as a format,
/// and words that ask for an argument which is not there get none.
void append_words(std::string& out, std::string_view words, std::span<const ArgView> args);

/// Appends a text of the sender's own: each "%s" takes the next argument, all else stands as it is, also a
/// "%s" for which there is no argument left.
void append_given(std::string& out, std::string_view text, std::span<const ArgView> args);

/// Appends what is shown of a message that has no words.
void append_missing(std::string& out, std::span<const ArgView> args);

} // namespace com_msg_mgr
