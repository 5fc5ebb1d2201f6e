#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace tcl_detail {

/// Whether a text is the same in Tcl and in the system encoding. Tcl spells NUL and, in some builds,
/// characters beyond 16 bits in its own way; all else of ASCII is the same in every system encoding that Tcl
/// runs under.
inline bool is_plain_ascii(std::string_view text) {
    // Eight bytes at a time: one of them is NUL or beyond ASCII if its high bit is set in here.
    constexpr std::uint64_t ones = 0x0101010101010101, high = ones << 7;
    const auto is_plain = [](std::uint64_t word) { return ((word | (word - ones)) & high) == 0; };
    std::uint64_t word = ones;
    for (; text.size() >= sizeof word; text.remove_prefix(sizeof word)) {
        std::memcpy(&word, text.data(), sizeof word);
        if (!is_plain(word)) {
            return false;
        }
    }
    word = ones;
    if (!text.empty()) {
        std::memcpy(&word, text.data(), text.size());
    }
    return is_plain(word);
}

} // namespace tcl_detail
