#pragma once

#include <string>

#include "platform/xp/detail/sodium.h"

/// The key of encrypted scripts. It comes from a file of the installation, never from the program.
namespace isl::iostreams::xp {

/// The key file that is set up: the parameter source.keyFile, else the environment variable
/// CORVANE_SCRIPT_KEY, else data/script.key of an application root. Empty if there is none.
std::string key_file();

/// Makes a file with a fresh key, which only its owner can read. Throws HEXError; a file that exists is never
/// replaced.
void create_key_file(const std::string& path);

/// A key, wiped when it goes.
class script_key {
public:
    using id_type = unsigned char[16];

    /// Reads a key file. Throws HEXError.
    explicit script_key(const std::string& path);

    const unsigned char* bytes() const { return m_key.value; }

    /// Tells keys apart without giving anything of them away.
    void get_id(id_type& id) const;

private:
    detail::wiped<unsigned char[crypto_secretstream_xchacha20poly1305_KEYBYTES]> m_key;
};

} // namespace isl::iostreams::xp
