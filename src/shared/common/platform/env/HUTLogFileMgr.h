#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

/// A log or journal that could not be opened. what() is a full sentence with path and reason.
class HUTLogFileError : public std::runtime_error {
public:
    HUTLogFileError(const std::string& text, std::string path, std::error_code code)
        : std::runtime_error(text), path_(std::move(path)), code_(code) {}
    const std::string& path() const { return path_; }
    /// The system's reason, as std::errc::no_space_on_device or std::errc::permission_denied.
    const std::error_code& code() const { return code_; }

private:
    std::string path_;
    std::error_code code_;
};

/// The session's log and journal.
///
/// Text is collected in memory and handed to the system by flush(), which the session calls after each
/// command, or when 64 KiB have come together. All functions are safe from any thread. Lines of different
/// threads never mix: a line that one thread has left open is ended when another thread writes.
class HUTLogFileMgr {
public:
    /// Opens the log. An existing file is added to with `append`; otherwise it is kept as a backup beside, as
    /// "corvane_12.backup.log" of "corvane.log" with the next free number. A file that another session is
    /// still writing is not cut off either: that session goes on in the renamed file. Devices and pipes are
    /// written as they are. A log that was open is closed. Throws HUTLogFileError, and then what was open
    /// stays open.
    static void createLogFile(const std::string& name, bool append);
    static void createJournalFile(const std::string& name, bool append);

    /// Removes the backups of this log or journal beyond the ten newest, but none that a session still
    /// writes.
    static void RemoveOldBackups(const std::string& name);

    /// The name as given to create..., and the absolute path. Empty when none is open.
    static std::string getLogFileName();
    static std::string getLogFullName();
    static std::string getJournalFileName();
    static std::string getJournalFullName();

    /// Adds text, which may hold several lines, or end within one. Without an open file it is dropped.
    static void writeLog(std::string_view text);
    static void writeJournal(std::string_view text);

    /// Hands what was written to the system. What could not be written, as on a full disk, is kept and tried
    /// again as long as it fits in memory; where text had to be given up, a comment line tells so. Looks once
    /// a second whether the files are still there.
    static void flush();

    /// Looks whether the open files are still there, which writing to them does not tell.
    static void checkFiles();

    /// The same for use in a signal handler: takes no lock that it might wait for without end, and allocates
    /// nothing.
    static void flushFromSignalHandler() noexcept;

    struct WriteError {
        std::string path;
        std::error_code code; ///< std::errc::no_such_file_or_directory for a file that was removed
    };
    /// A write that failed since the last call, or a file that was removed. Each failure is told once; the
    /// next one only after writing had worked again, and for a file that was removed never.
    static std::optional<WriteError> takeWriteError();
    /// Whether there is one to be taken. One atomic read.
    static bool hasWriteError() noexcept;

    static void closeLog();
    static void closeJournal();
};
