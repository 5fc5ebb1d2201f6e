#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// The commands that a user typed, kept in a file over sessions and shared by those that run at the same
/// time: each adds its commands to the end, under a lock of the file, and none is lost. An entry may have
/// several lines. When the file holds many more than `limit` entries it is written anew with the newest ones.
/// What cannot be read as an entry is left out.
///
/// The file is text: one line for each entry, with "\n" for a line end and "\\" for a backslash within it.
/// Not for use by several threads at once.
class HUTHistoryFile {
public:
    static constexpr size_t defaultLimit = 10000;

    /// \param path empty for a history that is not kept
    explicit HUTHistoryFile(const std::string& path, size_t limit = defaultLimit);
    /// Tries a last time to write what add() could not.
    ~HUTHistoryFile();
    HUTHistoryFile(const HUTHistoryFile&) = delete;
    HUTHistoryFile& operator=(const HUTHistoryFile&) = delete;

    /// The file of this user: "history" in TANDREL_LOCAL_USER_DATA, or in the folder "corvane" of
    /// XDG_STATE_HOME, or of .local/state in his home; empty without a home.
    static std::string userPath();

    const std::string& path() const { return m_path; }

    /// The newest `count` entries, the newest at the end. A file that does not exist has none. Throws
    /// std::system_error if it cannot be read.
    std::vector<std::string> newest(size_t count) const;

    /// Adds an entry. An empty one, one with a NUL and one of more than a megabyte are not kept. What cannot
    /// be written now is written with the next entry; throws std::system_error then, once for a reason.
    void add(const std::string& entry);

private:
    void write();
    void compact(int fd) const;

    std::string m_path;
    size_t m_limit;
    std::string m_pending; ///< lines that are not in the file yet
    size_t m_added = 0;    ///< entries since the file was last counted
    int m_lastError = 0;   ///< the reason that was reported
    bool m_madeFolder = false;
};
