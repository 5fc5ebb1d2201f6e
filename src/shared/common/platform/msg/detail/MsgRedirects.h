#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace com_msg_mgr {

/// The messages that go to files of their own instead of the log, by their ids. Any thread; while there are
/// none, asking costs an atomic load.
class MsgRedirects {
public:
    static MsgRedirects& get();

    /// Sends the messages of an id to the end of a file, which is made if it does not exist. Ids may share a
    /// file. False if the file cannot be opened, is a pipe, a directory, the log or the journal, or if the
    /// messages go to another file already.
    bool add(std::string_view id, const std::string& file);
    /// False if they are not redirected.
    bool remove(std::string_view id);
    void removeAll();
    /// The ids and the absolute paths of their files; of one id alone unless it is empty.
    std::vector<std::pair<std::string, std::string>> list(std::string_view id) const;
    /// Takes whole lines of the id. False if they have to go to the log: the id is not redirected, or its
    /// file does not take them.
    bool write(std::string_view id, std::string_view lines) {
        return m_any.load(std::memory_order_relaxed) && writeToFile(id, lines);
    }

private:
    class File;

    bool writeToFile(std::string_view id, std::string_view lines);

    std::atomic<bool> m_any{false};
    mutable std::mutex m_mutex;
    std::map<std::string, std::shared_ptr<File>, std::less<>> m_files; // by id; guarded by m_mutex
};

} // namespace com_msg_mgr
