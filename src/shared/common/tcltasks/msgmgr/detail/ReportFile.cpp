#include "tcltasks/msgmgr/detail/ReportFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/env/HUTFile.h"

HTCMsgmgr::ReportFile::ReportFile(std::string path) : m_path(std::move(path)) {
    if (!HUTFile::isWriteable(m_path)) {
        return;
    }
    struct stat old;
    const bool isThere = ::stat(m_path.c_str(), &old) == 0;
    if (!isThere || S_ISREG(old.st_mode)) {
        m_beside = m_path + ".new" + std::to_string(::getpid());
    }
    // A pipe that nobody reads cannot be opened; without O_NONBLOCK, that would wait for a reader.
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    const int descriptor = ::open((m_beside.empty() ? m_path : m_beside).c_str(), flags, 0666);
    if (descriptor < 0) {
        return;
    }
    ::fcntl(descriptor, F_SETFL, O_WRONLY);
    m_file = ::fdopen(descriptor, "wb");
    if (!m_file) {
        ::close(descriptor);
    } else if (isThere && !m_beside.empty()) {
        ::fchmod(descriptor, old.st_mode & 07777);
    }
}

HTCMsgmgr::ReportFile::~ReportFile() {
    if (m_file) {
        std::fclose(m_file);
        if (!m_beside.empty()) {
            std::remove(m_beside.c_str());
        }
    }
}

void HTCMsgmgr::ReportFile::write(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), m_file) != text.size() && m_error == 0) {
        m_error = errno;
    }
}

void HTCMsgmgr::ReportFile::close() {
    if (std::fflush(m_file) != 0 && m_error == 0) {
        m_error = errno;
    }
    if (m_error != 0) {
        fail(m_error);
    }
    std::fclose(std::exchange(m_file, nullptr));
    if (!m_beside.empty() && std::rename(m_beside.c_str(), m_path.c_str()) != 0) {
        const int code = errno;
        std::remove(m_beside.c_str());
        fail(code);
    }
}

void HTCMsgmgr::ReportFile::fail(int code) const {
    throw std::system_error(code, std::generic_category(), "cannot write \"" + m_path + '"');
}
