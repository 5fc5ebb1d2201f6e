#include "platform/env/HUTHistoryFile.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

#include "platform/env/HUTFile.h"
#include "platform/env/HUTPathUtils.h"
#include "platform/env/detail/file_descriptor.h"

using env_detail::file_descriptor;
using env_detail::throw_system_error;

namespace {

constexpr size_t longestEntry = 1 << 20;
// A session that was stopped while it held the lock must not stop the others.
constexpr auto longestWait = std::chrono::seconds(1);

std::string absoluteFromEnv(const char* name) {
    const char* value = std::getenv(name);
    return value && value[0] == '/' ? std::string(value) : std::string();
}

std::string toLine(const std::string& entry) {
    std::string line;
    line.reserve(entry.size() + 1);
    for (const char c : entry) {
        if (c == '\n') {
            line += "\\n";
        } else if (c == '\\') {
            line += "\\\\";
        } else {
            line += c;
        }
    }
    return line + '\n';
}

std::string fromLine(std::string_view line) {
    std::string entry;
    entry.reserve(line.size());
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\\' && i + 1 < line.size() && (line[i + 1] == 'n' || line[i + 1] == '\\')) {
            entry += line[++i] == 'n' ? '\n' : '\\';
        } else {
            entry += line[i];
        }
    }
    return entry;
}

bool isKept(std::string_view text) {
    return !text.empty() && text.size() <= longestEntry && text.find('\0') == std::string_view::npos;
}

// Reads the lines of a file from its end on, so that a huge file costs no more than what is wanted of it. The
// last one without a line end is what a session that died has left of it. The newest come first.
template <class Visit>
void forEachLineBackwards(int fd, const std::string& path, Visit&& visit) {
    struct stat info;
    if (::fstat(fd, &info) != 0) {
        throw_system_error(errno, "cannot read", path);
    }
    constexpr off_t piece = 64 << 10;
    std::string text; // from `begin` to the last line end that was found
    bool oversized = false;
    off_t begin = info.st_size;
    while (begin > 0) {
        const off_t size = std::min(piece, begin);
        std::string part(static_cast<size_t>(size), '\0');
        const ssize_t got = ::pread(fd, part.data(), part.size(), begin - size);
        if (got < 0) {
            throw_system_error(errno, "cannot read", path);
        }
        part.resize(static_cast<size_t>(got));
        begin -= size;
        for (size_t end = part.rfind('\n'); end != std::string::npos; end = part.rfind('\n')) {
            text.insert(0, part, end + 1);
            part.resize(end);
            if (!oversized && !text.empty() && !visit(text)) {
                return;
            }
            oversized = false;
            text.clear();
        }
        text.insert(0, part);
        if (text.size() > 2 * longestEntry + 2) { // each byte may be written as two
            oversized = true;
            text.clear();
        }
    }
    if (!oversized && !text.empty()) {
        visit(text);
    }
}

bool isSameFile(int fd, const std::string& path) {
    struct stat open, named;
    return ::fstat(fd, &open) == 0 && ::stat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

void lock(int fd, const std::string& path) {
    const auto end = std::chrono::steady_clock::now() + longestWait;
    while (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            throw_system_error(errno, "cannot lock", path);
        }
        if (std::chrono::steady_clock::now() > end) {
            throw_system_error(ETIMEDOUT, "cannot lock", path);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

// The file, open at its end and locked until it is closed. Another session may put a new file into its place
// in the meantime; that one counts then.
file_descriptor openLocked(const std::string& path) {
    for (;;) {
        file_descriptor file(::open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, 0600));
        if (!file) {
            throw_system_error(errno, "cannot open", path);
        }
        lock(file.get(), path);
        if (isSameFile(file.get(), path)) {
            return file;
        }
    }
}

} // namespace

HUTHistoryFile::HUTHistoryFile(const std::string& path, size_t limit)
    : m_path(HUTFile::getCanonicalName(path)), m_limit(std::max<size_t>(limit, 1)) {
    m_added = m_limit; // the first entry looks how many the file has
}

HUTHistoryFile::~HUTHistoryFile() {
    try {
        write();
    } catch (const std::exception&) {
        // It was reported when the entry was added.
    }
}

std::string HUTHistoryFile::userPath() {
    if (const std::string folder = absoluteFromEnv("TANDREL_LOCAL_USER_DATA"); !folder.empty()) {
        return HUTPathUtils::join({folder, "history"});
    }
    if (const std::string state = absoluteFromEnv("XDG_STATE_HOME"); !state.empty()) {
        return HUTPathUtils::join({state, "corvane/history"});
    }
    const std::string home = absoluteFromEnv("HOME");
    return home.empty() ? home : HUTPathUtils::join({home, ".local/state/corvane/history"});
}

std::vector<std::string> HUTHistoryFile::newest(size_t count) const {
    std::vector<std::string> entries;
    if (m_path.empty() || count == 0) {
        return entries;
    }
    const file_descriptor file(::open(m_path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (!file) {
        if (errno == ENOENT || errno == ENOTDIR) {
            return entries;
        }
        throw_system_error(errno, "cannot open", m_path);
    }
    forEachLineBackwards(file.get(), m_path, [&](std::string_view line) {
        if (std::string entry = fromLine(line); isKept(entry)) {
            entries.push_back(std::move(entry));
        }
        return entries.size() < count;
    });
    std::reverse(entries.begin(), entries.end());
    return entries;
}

void HUTHistoryFile::add(const std::string& entry) {
    if (m_path.empty() || !isKept(entry)) {
        return;
    }
    m_pending += toLine(entry);
    ++m_added;
    try {
        write();
        m_lastError = 0;
    } catch (const std::system_error& failure) {
        if (m_pending.size() > 4 * longestEntry) {
            m_pending.clear();
        }
        if (std::exchange(m_lastError, failure.code().value()) != failure.code().value()) {
            throw;
        }
    }
}

void HUTHistoryFile::write() {
    if (m_pending.empty()) {
        return;
    }
    if (!m_madeFolder) {
        std::filesystem::create_directories(std::filesystem::path(m_path).parent_path());
        m_madeFolder = true;
    }
    const file_descriptor file = openLocked(m_path);
    const off_t size = ::lseek(file.get(), 0, SEEK_END);
    char last = '\n';
    if (size > 0 && ::pread(file.get(), &last, 1, size - 1) == 1 && last != '\n') {
        m_pending.insert(0, "\n"); // what a session that died has left of its last entry
    }
    if (env_detail::write_all(file.get(), m_pending) != m_pending.size()) {
        const int error = errno;
        [[maybe_unused]] const int cut = ::ftruncate(file.get(), size);
        throw_system_error(error, "cannot write", m_path);
    }
    m_pending.clear();
    if (m_added > m_limit) {
        compact(file.get());
        m_added = 0;
    }
}

// Called under the lock. The new file is complete before it takes the name.
void HUTHistoryFile::compact(int fd) const {
    std::deque<std::string> lines;
    size_t count = 0;
    forEachLineBackwards(fd, m_path, [&](std::string_view line) {
        if (++count <= m_limit) {
            lines.emplace_front(line);
        }
        return count <= m_limit + m_limit / 4; // the work is worth its while only now and then
    });
    if (count <= m_limit + m_limit / 4) {
        return;
    }
    std::string text;
    for (const std::string& line : lines) {
        text += line + '\n';
    }
    const std::string beside = m_path + ".new";
    const file_descriptor out(
        ::open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
    const bool written = out && env_detail::write_all(out.get(), text) == text.size() &&
                         ::fsync(out.get()) == 0 && ::rename(beside.c_str(), m_path.c_str()) == 0;
    if (!written) {
        const int error = errno;
        ::unlink(beside.c_str());
        throw_system_error(error, "cannot write", m_path);
    }
}
