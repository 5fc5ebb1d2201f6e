#include "platform/env/HUTLogFileMgr.h"

#include "platform/env/HUTFile.h"
#include "platform/env/HUTPathUtils.h"
#include "platform/env/detail/file_descriptor.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <mutex>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <time.h>
#include <utility>
#include <vector>

using env_detail::file_descriptor;

namespace {

constexpr size_t kept_backups = 10;

// Stands where text was lost; a comment for those who replay a journal.
constexpr std::string_view gap_mark = "# Text is missing here: the file could not be written.\n";

// A lock that a signal handler can try for, which std::mutex does not promise.
class signal_safe_lock {
public:
    void lock() noexcept {
        while (taken_.test_and_set(std::memory_order_acquire))
            taken_.wait(true, std::memory_order_relaxed);
    }
    bool try_lock() noexcept { return !taken_.test_and_set(std::memory_order_acquire); }
    void unlock() noexcept {
        taken_.clear(std::memory_order_release);
        taken_.notify_one();
    }

private:
    std::atomic_flag taken_;
};

// A log or journal: its file, and the text that has not been handed to the system yet.
class stream {
public:
    explicit stream(const char* kind) : kind_(kind) {}

    void open(const std::string& name, bool append, const stream& other);
    void close();
    void write(std::string_view text);
    void flush();
    void flush_from_signal_handler() noexcept;
    void check();
    bool has_error() const noexcept { return has_error_.load(std::memory_order_relaxed); }
    std::optional<HUTLogFileMgr::WriteError> take_error();
    std::string name() const;
    std::string full_name() const;

private:
    bool is_same_file(const struct stat& status) const;
    size_t room() const;
    void append(std::string_view text);
    void add(std::string_view text);
    void mark_gap(bool in_line);
    void drain(size_t count);
    void drain_whole_lines();
    void fail(int code);
    void look_for_file();

    const char* const kind_;
    mutable signal_safe_lock lock_; // guards all below
    std::atomic<int> fd_{-1};       // atomic, as size_, for the handler that could not get the lock
    std::string name_, full_name_;
    bool line_open_ = false;     // what was last added does not end a line
    std::thread::id line_owner_; // of the open line
    bool gap_ = false;           // what was last added is the mark of a gap
    bool failing_ = false;       // the last write was refused
    bool removed_ = false;       // the file has no name any more
    time_t checked_ = 0;         // when it was last looked for, in seconds of any clock
    std::optional<HUTLogFileMgr::WriteError> error_;
    std::atomic<bool> has_error_{false}; // whether error_ holds one
    std::atomic<size_t> size_{0};
    std::array<char, 65536> buffer_; // of fixed place, so that the handler may read it at any moment
};

stream& log_stream() {
    static stream& the_log = *new stream("log");
    return the_log;
}

stream& journal_stream() {
    static stream& the_journal = *new stream("journal");
    return the_journal;
}

// The parts of "corvane_12.backup.log" around the number: directory, "corvane_", ".backup.log".
struct backup_name {
    explicit backup_name(const std::string& full_name) {
        const std::filesystem::path path(full_name);
        directory = path.parent_path();
        prefix = path.stem().string() + '_';
        suffix = ".backup" + path.extension().string();
    }

    std::optional<unsigned long> number_of(std::string_view file) const {
        if (file.size() <= prefix.size() + suffix.size() || file.substr(0, prefix.size()) != prefix ||
            file.substr(file.size() - suffix.size()) != suffix)
            return std::nullopt;
        const std::string digits(file.substr(prefix.size(), file.size() - prefix.size() - suffix.size()));
        if (digits.size() > 18 || digits.find_first_not_of("0123456789") != std::string::npos)
            return std::nullopt;
        return std::stoul(digits);
    }

    std::string path_of(unsigned long number) const {
        return (directory / (prefix + std::to_string(number) + suffix)).string();
    }

    std::vector<unsigned long> numbers() const {
        std::vector<unsigned long> found;
        std::error_code error;
        for (std::filesystem::directory_iterator it(directory, error), end; !error && it != end;
             it.increment(error)) {
            const auto number = number_of(it->path().filename().native());
            // "corvane_007.backup.log" was not made here.
            if (number && path_of(*number) == it->path())
                found.push_back(*number);
        }
        std::sort(found.begin(), found.end());
        return found;
    }

    std::filesystem::path directory;
    std::string prefix, suffix;
};

// Renames unless there is a file of the new name.
bool rename_to_new(const std::string& from, const std::string& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    // A file system that cannot do it in one step.
    struct stat status;
    if (::lstat(to.c_str(), &status) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::rename(from.c_str(), to.c_str()) == 0;
}

// Moves the file out of the way; returns false, with errno set, when that is refused. A file that has
// vanished meanwhile is out of the way.
bool keep_as_backup(const std::string& full_name) {
    const backup_name backup(full_name);
    const auto numbers = backup.numbers();
    unsigned long number = numbers.empty() ? 1 : numbers.back() + 1;
    // Another session may take the same number at the same moment.
    for (int tries = 0; tries < 1000; ++tries, ++number) {
        if (rename_to_new(full_name, backup.path_of(number)) || errno == ENOENT)
            return true;
        if (errno != EEXIST)
            return false;
    }
    return false;
}

[[noreturn]] void refuse(const char* kind, const std::string& path, int code) {
    std::string reason;
    if (code == ENOENT)
        reason = "its directory does not exist";
    else if (code == EEXIST)
        reason = "it is already open for this session";
    else
        reason = std::generic_category().message(code);
    throw HUTLogFileError(std::string("The ") + kind + " file \"" + path + "\" cannot be opened: " + reason +
                              '.',
                          path, std::error_code(code, std::generic_category()));
}

file_descriptor open_for_writing(const std::string& path, int flags) {
    // Not waiting matters for a pipe that nobody reads: that is an error, not a reason to hang.
    file_descriptor file(
        ::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK | flags, 0666));
    if (file)
        ::fcntl(file.get(), F_SETFL, O_APPEND);
    return file;
}

// A new file of this name, whatever stood there before kept as a backup.
file_descriptor open_new(const std::string& full_name) {
    for (int tries = 0; tries < 100; ++tries) {
        file_descriptor file = open_for_writing(full_name, O_CREAT | O_EXCL);
        if (file || errno != EEXIST)
            return file;
        struct stat status;
        if (::stat(full_name.c_str(), &status) != 0) {
            // A symbolic link to nothing: make what it points to. Or a file that has just been moved away.
            file = open_for_writing(full_name, O_CREAT);
            if (file || errno != ENOENT)
                return file;
            struct stat link;
            if (::lstat(full_name.c_str(), &link) == 0) {
                errno = ENOENT;
                return {};
            }
        } else if (!S_ISREG(status.st_mode)) {
            return open_for_writing(full_name, 0);
        } else if (!keep_as_backup(full_name)) {
            return {};
        }
    }
    errno = EBUSY;
    return {};
}

void stream::open(const std::string& name, bool append, const stream& other) {
    if (std::strlen(name.c_str()) != name.size())
        refuse(kind_, name.c_str(), EINVAL);
    if (name.empty())
        refuse(kind_, name, ENOENT);
    // An existing link is followed, so that the backup stands beside the file itself and the link stays.
    const std::string full = HUTFile::getCanonicalName(name);
    struct stat status;
    if (::stat(full.c_str(), &status) == 0 && S_ISREG(status.st_mode) && other.is_same_file(status))
        refuse(kind_, full, EEXIST);
    if (name.back() == '/')
        refuse(kind_, full, EISDIR);

    file_descriptor file = append ? open_for_writing(full, O_CREAT) : open_new(full);
    if (!file)
        refuse(kind_, full, errno);
    // Tells other sessions that the file is in use. Without locks on this file system it only goes unmarked.
    if (::flock(file.get(), LOCK_SH | LOCK_NB) != 0)
        errno = 0;

    close();
    const std::lock_guard guard(lock_);
    name_ = name;
    full_name_ = full;
    line_open_ = gap_ = false;
    failing_ = false;
    removed_ = false;
    size_ = 0;
    fd_ = file.release();
}

void stream::close() {
    const std::lock_guard guard(lock_);
    if (fd_ < 0)
        return;
    drain(size_);
    size_ = 0;
    ::close(fd_.exchange(-1));
    name_.clear();
    full_name_.clear();
}

bool stream::is_same_file(const struct stat& status) const {
    const std::lock_guard guard(lock_);
    struct stat mine;
    return fd_ >= 0 && ::fstat(fd_, &mine) == 0 && mine.st_dev == status.st_dev &&
           mine.st_ino == status.st_ino;
}

void stream::write(std::string_view text) {
    const auto self = std::this_thread::get_id();
    const std::lock_guard guard(lock_);
    if (fd_ < 0 || text.empty())
        return;
    if (line_open_ && line_owner_ != self)
        add("\n");
    line_owner_ = self;
    line_open_ = text.back() != '\n';
    add(text);
}

// What can be added now; there is always a place for the mark of a gap behind it.
size_t stream::room() const {
    constexpr size_t most = sizeof buffer_ - gap_mark.size() - 1;
    return most - std::min<size_t>(size_, most);
}

void stream::append(std::string_view text) {
    std::memcpy(buffer_.data() + size_, text.data(), text.size());
    size_ += text.size();
}

void stream::add(std::string_view text) {
    if (text.size() > room())
        drain_whole_lines();
    if (text.size() > room())
        drain(size_);
    if (text.size() <= room()) {
        append(text);
        gap_ = false;
        return;
    }
    size_t written = 0;
    if (size_ == 0) {
        written = env_detail::write_all(fd_, text);
        if (written == text.size()) {
            failing_ = gap_ = false;
            return;
        }
        fail(errno);
    }
    mark_gap(size_ > 0 ? buffer_[size_ - 1] != '\n' : written > 0 && text[written - 1] != '\n');
}

// What comes next must not be glued to a line that was cut off.
void stream::mark_gap(bool in_line) {
    if (in_line)
        append("\n");
    if (in_line || !gap_)
        append(gap_mark);
    gap_ = true;
    line_open_ = false;
}

void stream::drain(size_t count) {
    if (count == 0)
        return;
    const size_t written = env_detail::write_all(fd_, {buffer_.data(), count});
    if (written < count)
        fail(errno);
    else
        failing_ = false;
    std::memmove(buffer_.data(), buffer_.data() + written, size_ - written);
    size_ -= written;
}

void stream::drain_whole_lines() {
    const size_t end = std::string_view(buffer_.data(), size_).rfind('\n');
    drain(end == std::string_view::npos ? 0 : end + 1);
}

void stream::fail(int code) {
    if (!failing_) {
        error_ = HUTLogFileMgr::WriteError{full_name_, std::error_code(code, std::generic_category())};
        has_error_ = true;
    }
    failing_ = true;
}

void stream::flush() {
    if (size_ == 0)
        return; // mostly so, since every command ends with a flush
    const std::lock_guard guard(lock_);
    if (fd_ < 0)
        return;
    drain(size_);
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    if (now.tv_sec != checked_) {
        checked_ = now.tv_sec;
        look_for_file();
    }
}

void stream::check() {
    const std::lock_guard guard(lock_);
    if (fd_ >= 0)
        look_for_file();
}

// Writing to a file that has been removed works, and all is lost when it is closed.
void stream::look_for_file() {
    struct stat status;
    if (removed_ || ::fstat(fd_, &status) != 0 || !S_ISREG(status.st_mode) || status.st_nlink > 0)
        return;
    removed_ = true;
    error_ =
        HUTLogFileMgr::WriteError{full_name_, std::make_error_code(std::errc::no_such_file_or_directory)};
    has_error_ = true;
}

void stream::flush_from_signal_handler() noexcept {
    bool locked = lock_.try_lock();
    for (int tries = 0; !locked && tries < 50; ++tries) {
        const timespec millisecond{0, 1000000};
        ::nanosleep(&millisecond, nullptr);
        locked = lock_.try_lock();
    }
    // The thread that was struck may hold the lock itself. Then the text is written as it stands: better some
    // of it twice than none.
    const int fd = fd_.load();
    const size_t size = std::min(size_.load(), buffer_.size());
    if (fd >= 0 && size > 0) {
        const size_t written = env_detail::write_all(fd, {buffer_.data(), size});
        if (locked) {
            std::memmove(buffer_.data(), buffer_.data() + written, size - written);
            size_ = size - written;
        }
    }
    if (locked)
        lock_.unlock();
}

std::optional<HUTLogFileMgr::WriteError> stream::take_error() {
    const std::lock_guard guard(lock_);
    has_error_ = false;
    return std::exchange(error_, std::nullopt);
}

std::string stream::name() const {
    const std::lock_guard guard(lock_);
    return name_;
}

std::string stream::full_name() const {
    const std::lock_guard guard(lock_);
    return full_name_;
}

// The path that a name means: that of the open file, since the working directory may have changed after it
// was opened.
std::string path_of(const std::string& name) {
    for (const stream* open : {&log_stream(), &journal_stream()}) {
        if (!name.empty() && open->name() == name)
            return open->full_name();
    }
    return HUTFile::getCanonicalName(name);
}

} // namespace

void HUTLogFileMgr::createLogFile(const std::string& name, bool append) {
    log_stream().open(name, append, journal_stream());
}

void HUTLogFileMgr::createJournalFile(const std::string& name, bool append) {
    journal_stream().open(name, append, log_stream());
}

void HUTLogFileMgr::RemoveOldBackups(const std::string& name) {
    const std::string full_name = path_of(name);
    if (full_name.empty())
        return;
    const backup_name backup(full_name);
    const auto numbers = backup.numbers();
    for (size_t i = 0; i + kept_backups < numbers.size(); ++i) {
        const std::string path = backup.path_of(numbers[i]);
        const file_descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
        struct stat status;
        if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
            continue;
        const bool in_use = ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (!in_use)
            ::unlink(path.c_str());
    }
}

std::string HUTLogFileMgr::getLogFileName() {
    return log_stream().name();
}

std::string HUTLogFileMgr::getLogFullName() {
    return log_stream().full_name();
}

std::string HUTLogFileMgr::getJournalFileName() {
    return journal_stream().name();
}

std::string HUTLogFileMgr::getJournalFullName() {
    return journal_stream().full_name();
}

void HUTLogFileMgr::writeLog(std::string_view text) {
    log_stream().write(text);
}

void HUTLogFileMgr::writeJournal(std::string_view text) {
    journal_stream().write(text);
}

void HUTLogFileMgr::flush() {
    log_stream().flush();
    journal_stream().flush();
}

void HUTLogFileMgr::checkFiles() {
    log_stream().check();
    journal_stream().check();
}

void HUTLogFileMgr::flushFromSignalHandler() noexcept {
    log_stream().flush_from_signal_handler();
    journal_stream().flush_from_signal_handler();
}

std::optional<HUTLogFileMgr::WriteError> HUTLogFileMgr::takeWriteError() {
    if (auto error = log_stream().take_error())
        return error;
    return journal_stream().take_error();
}

bool HUTLogFileMgr::hasWriteError() noexcept {
    return log_stream().has_error() || journal_stream().has_error();
}

void HUTLogFileMgr::closeLog() {
    log_stream().close();
}

void HUTLogFileMgr::closeJournal() {
    journal_stream().close();
}
