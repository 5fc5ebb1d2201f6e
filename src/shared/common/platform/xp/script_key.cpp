#include "platform/xp/script_key.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "platform/env/HUTEnv.h"
#include "platform/env/detail/file_descriptor.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "platform/param/HPAParamMgr.h"

namespace isl::iostreams::xp {

using detail::sodium;
using env_detail::file_descriptor;

namespace {

constexpr auto error = ComMsgMgr::MSGTYPE_ERROR;
constexpr std::string_view keyHead = "corvane-script-key 1 ";
constexpr size_t keySize = crypto_secretstream_xchacha20poly1305_KEYBYTES;
constexpr size_t lineSize = keyHead.size() + 2 * keySize + 1;

std::string reason(int code) {
    return std::generic_category().message(code);
}

int digit(char c) {
    return c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

// As many bytes as there are, up to the size of the buffer.
size_t read_all(int fd, char* buffer, size_t size, const std::string& path) {
    size_t done = 0;
    while (done < size) {
        const ssize_t count = ::read(fd, buffer + done, size - done);
        if (count < 0 && errno != EINTR) {
            throw HEXError({"common", error, "@17-5405@%s%s\n", path, reason(errno)});
        }
        if (count == 0) {
            break;
        }
        done += count > 0 ? static_cast<size_t>(count) : 0;
    }
    return done;
}

[[noreturn]] void cannot_write(const std::string& path, int code) {
    throw HEXError({"common", error, "@17-5413@%s%s%s\n", path, "written", reason(code)});
}

} // namespace

std::string key_file() {
    if (std::string given = HPAParamMgr::getParamMgr().getValueAsString("source.keyFile"); !given.empty()) {
        return given;
    }
    if (std::string given = HUTEnv::getEnv("CORVANE_SCRIPT_KEY", ""); !given.empty()) {
        return given;
    }
    const std::string data = HUTEnv::getOMUDataDir("script.key");
    return data.empty() ? data : data + "/script.key";
}

void create_key_file(const std::string& path) {
    detail::wiped<unsigned char[keySize]> key;
    detail::wiped<char[lineSize]> line;
    sodium().randombytes_buf(key.value, keySize);
    keyHead.copy(line.value, keyHead.size());
    for (size_t i = 0; i < keySize; ++i) {
        line.value[keyHead.size() + 2 * i] = "0123456789abcdef"[key.value[i] >> 4];
        line.value[keyHead.size() + 2 * i + 1] = "0123456789abcdef"[key.value[i] & 15];
    }
    line.value[lineSize - 1] = '\n';

    // A link, unlike a rename, never replaces what has the name.
    const std::string beside = path + ".new" + std::to_string(::getpid());
    const file_descriptor file(::open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file) {
        cannot_write(path, errno);
    }
    const bool written =
        env_detail::write_all(file.get(), {line.value, lineSize}) == lineSize && ::fsync(file.get()) == 0;
    const int code = !written || ::link(beside.c_str(), path.c_str()) != 0 ? errno : 0;
    ::unlink(beside.c_str());
    if (code == EEXIST) {
        throw HEXError({"common", error, "@17-5407@%s\n", path});
    }
    if (code != 0) {
        cannot_write(path, code);
    }
}

script_key::script_key(const std::string& path) {
    const file_descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file) {
        throw HEXError({"common", error, "@17-5405@%s%s\n", path, reason(errno)});
    }
    detail::wiped<char[lineSize + 1]> line;
    size_t size = read_all(file.get(), line.value, sizeof line.value, path);
    size -= size > 0 && line.value[size - 1] == '\n' ? 1 : 0;
    bool wellFormed = size == lineSize - 1 && std::string_view(line.value, keyHead.size()) == keyHead;
    for (size_t i = 0; wellFormed && i < keySize; ++i) {
        const char* const at = line.value + keyHead.size() + 2 * i;
        wellFormed = digit(at[0]) >= 0 && digit(at[1]) >= 0;
        m_key.value[i] = static_cast<unsigned char>(digit(at[0]) << 4 | digit(at[1]));
    }
    if (!wellFormed) {
        throw HEXError({"common", error, "@17-5406@%s\n", path});
    }
}

void script_key::get_id(id_type& id) const {
    constexpr std::string_view purpose = "identity of a script key";
    sodium().generichash(id, sizeof id, reinterpret_cast<const unsigned char*>(purpose.data()),
                         purpose.size(), m_key.value, sizeof m_key.value);
}

} // namespace isl::iostreams::xp
