#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A file by its path, and whole-file operations. Failures are std::system_error whose text names the path.
class HUTFile {
public:
    explicit HUTFile(std::string path) : m_path(std::move(path)) {}

    const std::string& getPath() const { return m_path; }
    /// The last component of the path.
    std::string getName() const;
    /// True for a file that is no directory, device or pipe; symbolic links are followed.
    bool isFile() const;
    /// The entries of this directory, in no order. Throws std::system_error if it cannot be read.
    std::vector<HUTFile> createFileIter() const;

    /// What stands between the components of a path.
    static std::string_view getDirSeparator() { return "/"; }

    /// Absolute path without ".", ".." or doubled "/", symbolic links resolved as far as the path exists.
    /// Never throws; the empty name stays empty.
    static std::string getCanonicalName(const std::string& path);

    static bool exists(const std::string& path);

    /// True if the file can be written to, or made where it does not exist. False for a directory.
    static bool isWriteable(const std::string& path);

    /// The bytes of the file. Throws std::system_error.
    static std::string read(const std::string& path);

    /// Replaces the file by `bytes` so that a reader, also after a crash or power loss, finds either the old
    /// content or the new: writes a temporary beside, flushes, renames, flushes the directory. The mode of an
    /// existing file is kept; a symbolic link is followed, not replaced; a device or pipe is written
    /// directly. Throws std::system_error, and then the old content stands and no temporary is left.
    static void write_atomically(const std::string& path, std::string_view bytes);

    /// Adds `bytes` at the end of the file, which is made if it does not exist. Throws std::system_error, and
    /// then what the file held before stands alone again.
    static void append(const std::string& path, std::string_view bytes);

private:
    std::string m_path;
};
