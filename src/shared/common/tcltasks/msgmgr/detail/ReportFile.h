#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace HTCMsgmgr {

/// A file of any length on its way to its place: it is written beside and takes the place of the old one when
/// it is complete. A device or pipe is written directly. One thread at a time.
class ReportFile {
public:
    /// Opens it, if that is possible.
    explicit ReportFile(std::string path);
    /// Gives up what was not closed; the old file stays.
    ~ReportFile();
    ReportFile(const ReportFile&) = delete;
    ReportFile& operator=(const ReportFile&) = delete;

    bool isOpen() const { return m_file != nullptr; }
    void write(std::string_view text);
    /// Throws std::system_error naming the file if something could not be written.
    void close();

private:
    [[noreturn]] void fail(int code) const;

    const std::string m_path;
    std::string m_beside; ///< empty for what is written directly
    std::FILE* m_file = nullptr;
    int m_error = 0; ///< of the first write that failed
};

} // namespace HTCMsgmgr
