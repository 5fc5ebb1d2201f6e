#pragma once

#include <string>

#include "platform/xp/filtering_stream.h"

/// Scripts that are stored encrypted.
namespace isl::iostreams {

namespace xp {

/// Whether a regular file begins as an encrypted script does. A few damaged bits do not make it a plain one.
/// False for what cannot be read. Any thread.
bool is_encrypted(const char* path);

/// Writes the text of `from` encrypted to `to`, which is replaced as a whole. Throws HEXError when a file
/// cannot be read or written, the key file is none, or `from` is encrypted already.
void encrypt(const std::string& from, const std::string& to, const std::string& keyFile);

} // namespace xp

/// Makes a stream over the encrypted script `path` deliver the plain text. Before that the whole file is
/// checked: when it returns, all of the file is what was once written. Throws HEXError when the file was
/// changed, is incomplete, is of a later format or of another key, and when there is no key; the text that
/// was read so far has been wiped then.
void xp_version60(const std::string& path, filtering_stream& stream);

} // namespace isl::iostreams
