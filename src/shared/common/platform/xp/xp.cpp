#include "platform/xp/xp.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "platform/env/HUTFile.h"
#include "platform/env/detail/file_descriptor.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "platform/xp/detail/file_source.h"
#include "platform/xp/detail/format.h"
#include "platform/xp/script_key.h"

namespace isl::iostreams {

using detail::file_header;
using detail::part_context;
using detail::partOverhead;
using detail::partSealed;
using detail::partText;
using detail::sodium;
using detail::wiped;

namespace {

constexpr auto error = ComMsgMgr::MSGTYPE_ERROR;

using stream_state = crypto_secretstream_xchacha20poly1305_state;

size_t read_full(byte_source& source, void* buffer, size_t size) {
    size_t done = 0;
    while (done < size) {
        const size_t count = source.read(static_cast<char*>(buffer) + done, size - done);
        if (count == 0) {
            break;
        }
        done += count;
    }
    return done;
}

// The text of an encrypted file, part by part.
class decrypting_source : public byte_source {
public:
    decrypting_source(int fd, const std::string& path, const xp::script_key& key, const std::string& keyFile)
        : m_path(path), m_file(fd, path) {
        if (::lseek(fd, 0, SEEK_SET) != 0) {
            env_detail::throw_system_error(errno, "cannot read", path);
        }
        read_header(key, keyFile);
    }

    size_t read(char* buffer, size_t size) override {
        while (m_at == m_size && !m_last) {
            read_part();
        }
        const size_t count = std::min(size, m_size - m_at);
        std::memcpy(buffer, m_text.value + m_at, count);
        m_at += count;
        return count;
    }

    // Reads all that is left without giving it to anybody.
    void check() {
        while (!m_last) {
            read_part();
        }
    }

private:
    [[noreturn]] void changed() const { throw HEXError({"common", error, "@17-5400@%s\n", m_path}); }
    [[noreturn]] void cut_off() const { throw HEXError({"common", error, "@17-5401@%s\n", m_path}); }

    void read_header(const xp::script_key& key, const std::string& keyFile) {
        file_header& header = m_context.header;
        const size_t size = read_full(m_file, &header, sizeof header);
        if (std::memcmp(header.mark, detail::mark.data(), std::min(size, sizeof header.mark)) != 0) {
            changed();
        }
        if (size < sizeof header.mark + sizeof header.version) {
            cut_off();
        }
        const std::uint32_t version = detail::get_number(header.version);
        if (version > detail::currentVersion) {
            throw HEXError({"common", error, "@17-5404@%s%u%u\n", m_path, version, detail::currentVersion});
        }
        if (version == 0) {
            changed();
        }
        if (size < sizeof header) {
            cut_off();
        }
        xp::script_key::id_type id;
        key.get_id(id);
        if (std::memcmp(header.keyId, id, sizeof id) != 0) {
            throw HEXError({"common", error, "@17-5402@%s%s\n", m_path, keyFile});
        }
        if (sodium().init_pull(&m_state.value, header.stream, key.bytes()) != 0) {
            changed();
        }
    }

    void read_part() {
        if (read_full(m_file, m_context.length, sizeof m_context.length) != sizeof m_context.length) {
            cut_off();
        }
        const size_t sealed = detail::get_number(m_context.length);
        if (sealed < partOverhead || sealed > partSealed) {
            changed();
        }
        if (read_full(m_file, m_sealed, sealed) != sealed) {
            cut_off();
        }
        unsigned char tag = 0;
        unsigned long long size = 0;
        if (sodium().pull(&m_state.value, m_text.value, &size, &tag, m_sealed, sealed,
                          reinterpret_cast<const unsigned char*>(&m_context), sizeof m_context) != 0) {
            changed();
        }
        m_at = 0;
        m_size = static_cast<size_t>(size);
        m_last = tag == crypto_secretstream_xchacha20poly1305_TAG_FINAL;
        char more = 0;
        if (m_last && m_file.read(&more, 1) != 0) {
            changed();
        }
    }

    std::string m_path;
    detail::file_source m_file;
    part_context m_context;
    wiped<stream_state> m_state;
    unsigned char m_sealed[partSealed];
    wiped<unsigned char[partText]> m_text;
    size_t m_at = 0;
    size_t m_size = 0;
    bool m_last = false;
};

[[noreturn]] void io_failed(const std::string& path, const char* what, const std::system_error& failure) {
    throw HEXError({"common", error, "@17-5413@%s%s%s\n", path, what, failure.code().message()});
}

// The encrypted form of all that a source gives.
std::string sealed(byte_source& source, const xp::script_key& key) {
    wiped<stream_state> state;
    wiped<char[2][partText]> text; // one part is read ahead, to know the last one
    part_context context;
    file_header& header = context.header;
    detail::mark.copy(reinterpret_cast<char*>(header.mark), sizeof header.mark);
    detail::put_number(header.version, detail::currentVersion);
    key.get_id(header.keyId);
    sodium().init_push(&state.value, header.stream, key.bytes());
    std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
    size_t size = read_full(source, text.value[0], partText);
    for (int part = 0;; part = 1 - part) {
        const size_t next = read_full(source, text.value[1 - part], partText);
        const unsigned char tag = next == 0 ? crypto_secretstream_xchacha20poly1305_TAG_FINAL
                                            : crypto_secretstream_xchacha20poly1305_TAG_MESSAGE;
        detail::put_number(context.length, static_cast<std::uint32_t>(size + partOverhead));
        bytes.append(reinterpret_cast<const char*>(context.length), sizeof context.length);
        const size_t at = bytes.size();
        bytes.resize(at + size + partOverhead);
        sodium().push(&state.value, reinterpret_cast<unsigned char*>(bytes.data() + at), nullptr,
                      reinterpret_cast<const unsigned char*>(text.value[part]), size,
                      reinterpret_cast<const unsigned char*>(&context), sizeof context, tag);
        if (next == 0) {
            return bytes;
        }
        size = next;
    }
}

} // namespace

bool xp::is_encrypted(const char* path) {
    struct stat status;
    if (::stat(path, &status) != 0 || !S_ISREG(status.st_mode)) {
        return false; // to open a pipe or a device may wait, or take something from it
    }
    const env_detail::file_descriptor file(::open(path, O_RDONLY | O_CLOEXEC));
    unsigned char first[detail::mark.size()];
    const ssize_t size = file ? ::read(file.get(), first, sizeof first) : 0;
    int wrong = 0;
    for (ssize_t i = 0; i < size; ++i) {
        const auto expected = static_cast<unsigned char>(detail::mark[static_cast<size_t>(i)]);
        wrong += std::popcount(static_cast<unsigned>(first[i] ^ expected));
    }
    // Text of the same length differs in as many bits at least as it has bytes.
    return size > 0 && wrong < size * 3 / 4 + 1;
}

void xp::encrypt(const std::string& from, const std::string& to, const std::string& keyFile) {
    const script_key key(keyFile);
    if (is_encrypted(from.c_str())) {
        throw HEXError({"common", error, "@17-5408@%s\n", from});
    }
    std::string bytes;
    try {
        const filtering_stream plain(from);
        detail::file_source source(plain.file_descriptor(), from);
        bytes = sealed(source, key);
    } catch (const std::system_error& failure) {
        io_failed(from, "read", failure);
    }
    try {
        HUTFile::write_atomically(to, bytes);
    } catch (const std::system_error& failure) {
        io_failed(to, "written", failure);
    }
}

void xp_version60(const std::string& path, filtering_stream& stream) {
    const std::string keyFile = xp::key_file();
    if (keyFile.empty()) {
        throw HEXError({"common", error, "@17-5403@%s\n", path});
    }
    const xp::script_key key(keyFile);
    const int fd = stream.file_descriptor();
    std::make_unique<decrypting_source>(fd, path, key, keyFile)->check();
    stream.push(std::make_unique<decrypting_source>(fd, path, key, keyFile));
}

} // namespace isl::iostreams
