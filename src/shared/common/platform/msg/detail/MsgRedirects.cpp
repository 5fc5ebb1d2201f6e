#include "platform/msg/detail/MsgRedirects.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

#include "platform/env/HUTFile.h"
#include "platform/env/HUTLogFileMgr.h"
#include "platform/env/detail/file_descriptor.h"
#include "platform/msg/detail/RuleText.h"

namespace com_msg_mgr {

/// A file at whose end lines are put as soon as they come.
class MsgRedirects::File {
public:
    explicit File(std::string path) : m_path(std::move(path)), m_file(::open(m_path.c_str(), flags, 0666)) {}

    const std::string& path() const { return m_path; }
    /// Also false for a file that was removed: nobody could read what is written to it.
    bool isOpen() const {
        struct stat status {};
        return m_file && ::fstat(m_file.get(), &status) == 0 && status.st_nlink > 0 &&
               (S_ISREG(status.st_mode) || S_ISCHR(status.st_mode));
    }
    bool write(std::string_view lines) {
        return isOpen() && env_detail::write_all(m_file.get(), lines) == lines.size();
    }

private:
    // Without O_NONBLOCK, opening a pipe that nobody reads would wait.
    static constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

    std::string m_path;
    env_detail::file_descriptor m_file;
};

MsgRedirects& MsgRedirects::get() {
    static MsgRedirects& redirects = *new MsgRedirects; // messages are sent up to the very end of the process
    return redirects;
}

bool MsgRedirects::add(std::string_view given, const std::string& file) {
    const std::string_view id = without_brackets(given);
    const std::string path = HUTFile::getCanonicalName(file);
    if (path.empty() || path.find('\0') != std::string::npos ||
        path == HUTFile::getCanonicalName(HUTLogFileMgr::getLogFullName()) ||
        path == HUTFile::getCanonicalName(HUTLogFileMgr::getJournalFullName()))
        return false;
    std::lock_guard lock(m_mutex);
    if (const auto found = m_files.find(id); found != m_files.end() && found->second->path() != path)
        return false;
    std::shared_ptr<File> target;
    for (const auto& [other, open] : m_files)
        if (open->path() == path && open->isOpen())
            target = open;
    if (!target)
        target = std::make_shared<File>(path);
    if (!target->isOpen())
        return false;
    m_files.insert_or_assign(std::string(id), std::move(target));
    m_any = true;
    return true;
}

bool MsgRedirects::remove(std::string_view id) {
    std::lock_guard lock(m_mutex);
    const auto found = m_files.find(without_brackets(id));
    if (found == m_files.end())
        return false;
    m_files.erase(found);
    m_any = !m_files.empty();
    return true;
}

void MsgRedirects::removeAll() {
    std::lock_guard lock(m_mutex);
    m_files.clear();
    m_any = false;
}

std::vector<std::pair<std::string, std::string>> MsgRedirects::list(std::string_view given) const {
    const std::string_view id = without_brackets(given);
    std::lock_guard lock(m_mutex);
    std::vector<std::pair<std::string, std::string>> result;
    for (const auto& [one, file] : m_files)
        if (id.empty() || id == one)
            result.emplace_back(one, file->path());
    return result;
}

bool MsgRedirects::writeToFile(std::string_view id, std::string_view lines) {
    if (id.empty())
        return false;
    std::lock_guard lock(m_mutex);
    const auto found = m_files.find(id);
    return found != m_files.end() && found->second->write(lines);
}

} // namespace com_msg_mgr
