#include "platform/msg/detail/MsgFormat.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <optional>

namespace com_msg_mgr {

namespace {

constexpr bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

std::string plain_form(const ArgView& arg) {
    if (const auto* text = std::get_if<std::string_view>(&arg))
        return std::string(*text);
    if (const auto* number = std::get_if<std::int64_t>(&arg))
        return std::to_string(*number);
    if (const auto* number = std::get_if<std::uint64_t>(&arg))
        return std::to_string(*number);
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%g", std::get<double>(arg));
    return buffer;
}

/// One conversion of a text: "%-8.3f", "%2$s". Widths and precisions are bounded, so that a message file
/// cannot ask for unreasonable memory.
struct Conversion {
    static constexpr int max_width = 1000;

    std::optional<std::size_t> position;
    std::string_view flags;
    int width = 0;
    int precision = -1;
    char letter = 0;

    /// Reads what follows a '%' at text[i]; on success i is behind the conversion.
    static std::optional<Conversion> parse(std::string_view text, std::size_t& i) {
        Conversion c;
        std::size_t at = i;
        const auto number = [&] {
            int value = 0;
            while (at < text.size() && is_digit(text[at]))
                value = std::min(max_width, value * 10 + (text[at++] - '0'));
            return value;
        };
        const std::size_t first = at;
        if (const int n = number(); n > 0 && at < text.size() && text[at] == '$') {
            c.position = static_cast<std::size_t>(n - 1);
            ++at;
        } else {
            at = first;
        }
        const std::size_t flagsAt = at;
        while (at < text.size() && std::string_view("-+ 0#").find(text[at]) != std::string_view::npos)
            ++at;
        c.flags = text.substr(flagsAt, at - flagsAt);
        c.width = number();
        if (at < text.size() && text[at] == '.') {
            ++at;
            c.precision = number();
        }
        while (at < text.size() && std::string_view("hlz").find(text[at]) != std::string_view::npos)
            ++at;
        if (at >= text.size() || std::string_view("scdiuxfge").find(text[at]) == std::string_view::npos)
            return std::nullopt;
        c.letter = text[at++];
        i = at;
        return c;
    }

    std::string spec(const char* length) const {
        std::string result = "%";
        result += flags;
        if (width > 0)
            result += std::to_string(width);
        if (precision >= 0)
            result += '.' + std::to_string(precision);
        return result + length + letter;
    }

    template <class T>
    static std::string print(const std::string& spec, T value) {
        char buffer[2 * max_width + 512];
        const int size = std::snprintf(buffer, sizeof buffer, spec.c_str(), value);
        return std::string(buffer, std::min<std::size_t>(std::max(size, 0), sizeof buffer - 1));
    }

    /// The argument in this form, or in its own form where the two do not agree.
    void append(std::string& out, const ArgView& arg) const {
        if (const auto* text = std::get_if<std::string_view>(&arg)) {
            appendText(out, *text);
            return;
        }
        const bool integral = letter == 'd' || letter == 'i' || letter == 'u' || letter == 'x';
        const bool floating = letter == 'f' || letter == 'g' || letter == 'e';
        if (const auto* value = std::get_if<std::int64_t>(&arg); value && integral) {
            out += print(spec("ll"), static_cast<long long>(*value));
        } else if (const auto* value = std::get_if<std::uint64_t>(&arg); value && integral) {
            Conversion c = *this;
            if (letter == 'd' || letter == 'i')
                c.letter = 'u';
            out += print(c.spec("ll"), static_cast<unsigned long long>(*value));
        } else if (const auto* value = std::get_if<double>(&arg); value && floating) {
            out += print(spec(""), *value);
        } else {
            appendText(out, plain_form(arg));
        }
    }

    void appendText(std::string& out, std::string_view text) const {
        if (precision >= 0 && letter == 's')
            text = text.substr(0, static_cast<std::size_t>(precision));
        const std::size_t fill =
            std::max<std::ptrdiff_t>(0, width - static_cast<std::ptrdiff_t>(text.size()));
        const bool left = flags.find('-') != std::string::npos;
        out.append(left ? 0 : fill, ' ').append(text).append(left ? fill : 0, ' ');
    }
};

} // namespace

void append_words(std::string& out, std::string_view words, std::span<const ArgView> args) {
    std::size_t next = 0;
    for (std::size_t i = 0; i < words.size();) {
        const std::size_t percent = std::min(words.find('%', i), words.size());
        out.append(words, i, percent - i);
        i = percent;
        if (i >= words.size())
            break;
        ++i;
        if (i < words.size() && words[i] == '%') {
            out += '%';
            ++i;
        } else if (const auto conversion = Conversion::parse(words, i)) {
            const std::size_t n = conversion->position.value_or(next);
            next = n + 1;
            if (n < args.size())
                conversion->append(out, args[n]);
        } else {
            out += '%';
        }
    }
}

void append_given(std::string& out, std::string_view text, std::span<const ArgView> args) {
    for (const ArgView& arg : args) {
        const std::size_t place = text.find("%s");
        if (place == std::string_view::npos)
            break;
        out.append(text.substr(0, place)).append(plain_form(arg));
        text.remove_prefix(place + 2);
    }
    out += text;
}

void append_missing(std::string& out, std::span<const ArgView> args) {
    out += "No text is installed for this message.";
    const char* separator = " Its arguments are '";
    for (const ArgView& arg : args) {
        out += separator + plain_form(arg) + '\'';
        separator = ", '";
    }
    if (!args.empty())
        out += '.';
}

} // namespace com_msg_mgr
