#include "platform/env/HUTFile.h"

#include "platform/env/HUTPathUtils.h"
#include "platform/env/detail/file_descriptor.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

using env_detail::file_descriptor;
using env_detail::throw_system_error;

namespace env_detail {

size_t write_all(int fd, std::string_view bytes) noexcept {
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n >= 0)
            done += static_cast<size_t>(n);
        else if (errno != EINTR)
            break;
    }
    return done;
}

void throw_system_error(int code, const char* what, const std::string& path) {
    throw std::system_error(code, std::generic_category(), std::string(what) + " \"" + path + '"');
}

} // namespace env_detail

namespace {

constexpr const char* cannot_write = "cannot write";

void require_plain_path(const std::string& path, const char* what) {
    if (path.empty())
        throw_system_error(ENOENT, what, path);
    if (std::strlen(path.c_str()) != path.size())
        throw_system_error(EINVAL, what, path);
}

file_descriptor open_file(const std::string& path, int flags, mode_t mode = 0) {
    int fd;
    do
        fd = ::open(path.c_str(), flags | O_CLOEXEC, mode);
    while (fd < 0 && errno == EINTR);
    return file_descriptor(fd);
}

void write_directly(const std::string& path, std::string_view bytes) {
    const file_descriptor out = open_file(path, O_WRONLY);
    if (!out || env_detail::write_all(out.get(), bytes) != bytes.size())
        throw_system_error(errno, cannot_write, path);
}

// A file that is removed again unless it has been renamed. The short name of its own keeps the longest of
// file names writable.
class temporary {
public:
    explicit temporary(const std::string& directory) {
        static std::atomic<unsigned> count{0};
        do {
            char name[64];
            std::snprintf(name, sizeof name, ".corvane-%d-%u.tmp", static_cast<int>(::getpid()), ++count);
            path = HUTPathUtils::join({directory, name});
            file = open_file(path, O_WRONLY | O_CREAT | O_EXCL, 0666);
        } while (!file && errno == EEXIST);
    }
    ~temporary() {
        if (file && !renamed)
            ::unlink(path.c_str());
    }
    temporary(const temporary&) = delete;
    temporary& operator=(const temporary&) = delete;

    std::string path;
    file_descriptor file;
    bool renamed = false;
};

// The file that a chain of symbolic links ends at, whether or not it exists yet.
std::string follow_links(const std::string& path) {
    std::filesystem::path target(path);
    std::error_code error;
    for (int i = 0; i < 40 && std::filesystem::is_symlink(target, error); ++i) {
        const auto next = std::filesystem::read_symlink(target, error);
        if (error)
            break;
        target = target.parent_path() / next;
    }
    return target.string();
}

} // namespace

std::string HUTFile::getName() const {
    return HUTPathUtils::fileName(m_path);
}

bool HUTFile::isFile() const {
    return HUTPathUtils::isRegularFile(m_path);
}

std::vector<HUTFile> HUTFile::createFileIter() const {
    std::error_code error;
    std::vector<HUTFile> entries;
    for (std::filesystem::directory_iterator at(m_path, error), end; !error && at != end; at.increment(error))
        entries.emplace_back(at->path().string());
    if (error)
        throw_system_error(error.value(), "cannot read the directory", m_path);
    return entries;
}

std::string HUTFile::getCanonicalName(const std::string& path) {
    if (path.empty())
        return {};
    std::error_code error;
    auto canonical = std::filesystem::weakly_canonical(path, error);
    if (error)
        canonical = std::filesystem::absolute(path, error).lexically_normal();
    else if (canonical.is_relative())
        canonical = std::filesystem::absolute(canonical, error).lexically_normal();
    std::string name = error ? path : canonical.string();
    if (name.size() > 1 && name.back() == '/')
        name.pop_back();
    return name;
}

bool HUTFile::exists(const std::string& path) {
    return HUTPathUtils::exists(path);
}

bool HUTFile::isWriteable(const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos || HUTPathUtils::isDirectory(path))
        return false;
    if (HUTPathUtils::exists(path))
        return ::access(path.c_str(), W_OK) == 0;
    const std::size_t slash = path.rfind('/');
    return !path.ends_with('/') &&
           HUTPathUtils::isWritableDirectory(slash == std::string::npos ? "." : path.substr(0, slash + 1));
}

std::string HUTFile::read(const std::string& path) {
    constexpr const char* what = "cannot read";
    require_plain_path(path, what);
    const file_descriptor in = open_file(path, O_RDONLY);
    struct stat status;
    if (!in || ::fstat(in.get(), &status) != 0)
        throw_system_error(errno, what, path);
    std::string bytes;
    // One byte more than the size tells the end without growing; system files claim to be empty.
    size_t room = S_ISREG(status.st_mode) ? static_cast<size_t>(status.st_size) + 1 : 0;
    for (size_t size = 0;; room = 0) {
        bytes.resize(size + std::max<size_t>(room, 65536));
        const ssize_t n = ::read(in.get(), bytes.data() + size, bytes.size() - size);
        if (n < 0 && errno != EINTR)
            throw_system_error(errno, what, path);
        if (n > 0)
            size += static_cast<size_t>(n);
        if (n == 0) {
            bytes.resize(size);
            return bytes;
        }
    }
}

void HUTFile::write_atomically(const std::string& path, std::string_view bytes) {
    require_plain_path(path, cannot_write);
    const std::string target = follow_links(path);
    struct stat old;
    const bool replaces = ::stat(target.c_str(), &old) == 0;
    if (replaces && S_ISDIR(old.st_mode))
        throw_system_error(EISDIR, cannot_write, path);
    if (replaces && !S_ISREG(old.st_mode))
        return write_directly(target, bytes);

    const size_t slash = target.rfind('/');
    const std::string directory = slash == std::string::npos ? "." : target.substr(0, slash + 1);
    temporary beside(directory);
    if (!beside.file)
        throw_system_error(errno, cannot_write, path);
    if (replaces) {
        // The owner can only be kept by who may give files away; the mode comes second since a new owner
        // clears bits of it.
        if (::fchown(beside.file.get(), old.st_uid, old.st_gid) != 0)
            errno = 0;
        if (::fchmod(beside.file.get(), old.st_mode & 07777) != 0)
            throw_system_error(errno, cannot_write, path);
    }
    if (env_detail::write_all(beside.file.get(), bytes) != bytes.size() || ::fsync(beside.file.get()) != 0 ||
        ::rename(beside.path.c_str(), target.c_str()) != 0)
        throw_system_error(errno, cannot_write, path);
    beside.renamed = true;

    // The rename has happened; a file system that cannot flush a directory loses nothing by it.
    const file_descriptor parent = open_file(directory, O_RDONLY | O_DIRECTORY);
    if (parent && ::fsync(parent.get()) != 0 && errno == EIO)
        throw_system_error(errno, cannot_write, path);
}

void HUTFile::append(const std::string& path, std::string_view bytes) {
    require_plain_path(path, cannot_write);
    const file_descriptor out = open_file(path, O_WRONLY | O_CREAT | O_APPEND, 0666);
    struct stat before;
    if (!out || ::fstat(out.get(), &before) != 0)
        throw_system_error(errno, cannot_write, path);
    if (env_detail::write_all(out.get(), bytes) == bytes.size())
        return;
    const int reason = errno;
    if (S_ISREG(before.st_mode) && ::ftruncate(out.get(), before.st_size) != 0)
        throw_system_error(errno, "cannot take back what was added to", path);
    throw_system_error(reason, cannot_write, path);
}
