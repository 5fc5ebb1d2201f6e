#pragma once

#include <cstdint>
#include <string_view>

#include "platform/xp/detail/sodium.h"

/// The form of an encrypted script on disk; docs/encrypted_scripts.md tells it in full.
namespace isl::iostreams::detail {

/// "CORVANE SCRIPT\r\n" with the high bit set in each byte, which no text has.
inline constexpr std::string_view mark = "\xC3\xCF\xD2\xD6\xC1\xCE\xC5\xA0\xD3\xC3\xD2\xC9\xD0\xD4\x8D\x8A";

inline constexpr std::uint32_t currentVersion = 1;

/// What stands before the parts; numbers have their low byte first. Each part is sealed together with it.
struct file_header {
    unsigned char mark[16];
    unsigned char version[4];
    unsigned char keyId[16];
    unsigned char stream[crypto_secretstream_xchacha20poly1305_HEADERBYTES];
};
static_assert(sizeof(file_header) == 60);

inline constexpr size_t partOverhead = crypto_secretstream_xchacha20poly1305_ABYTES;
inline constexpr size_t partText = 65536;                     ///< most bytes of text in a part
inline constexpr size_t partSealed = partText + partOverhead; ///< most bytes of a part on disk

/// What a part is sealed with besides its text: the header and the part's length.
struct part_context {
    file_header header;
    unsigned char length[4];
};
static_assert(sizeof(part_context) == 64);

inline void put_number(unsigned char (&bytes)[4], std::uint32_t number) {
    for (int i = 0; i < 4; ++i) {
        bytes[i] = static_cast<unsigned char>(number >> (8 * i));
    }
}
inline std::uint32_t get_number(const unsigned char (&bytes)[4]) {
    return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
           static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

} // namespace isl::iostreams::detail
