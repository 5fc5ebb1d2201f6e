#pragma once

#include <cstddef>
#include <string_view>

namespace env_detail {

struct utf8_char {
    char32_t code; ///< 0xFFFD for a byte that is not UTF-8
    size_t size;   ///< bytes taken, at least 1
};

/// The character at `pos`, which must be inside `text`. Overlong forms and surrogates are not UTF-8.
utf8_char utf8_at(std::string_view text, size_t pos);

/// Terminal columns of a character: 0, 1 or 2.
size_t columns_of(char32_t code);

} // namespace env_detail
