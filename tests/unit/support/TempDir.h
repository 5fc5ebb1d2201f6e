#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

/// A directory that lives as long as the object.
class TempDir {
public:
    TempDir() {
        std::string path = (std::filesystem::temp_directory_path() / "corvane_test_XXXXXX").string();
        if (!::mkdtemp(path.data()))
            throw std::runtime_error("no temporary directory");
        m_path = std::filesystem::canonical(path);
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    std::string path(const std::string& name) const { return (m_path / name).string(); }
    const std::filesystem::path& root() const { return m_path; }

private:
    std::filesystem::path m_path;
};
