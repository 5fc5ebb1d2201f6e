#pragma once

#include <string>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace env_detail {

/// Owns an open file of the system and closes it. -1 is none.
class file_descriptor {
public:
    file_descriptor() = default;
    explicit file_descriptor(int fd) : fd_(fd) {}
    file_descriptor(file_descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    file_descriptor& operator=(file_descriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~file_descriptor() {
        if (fd_ >= 0)
            ::close(fd_);
    }

    int get() const { return fd_; }
    int release() { return std::exchange(fd_, -1); }
    explicit operator bool() const { return fd_ >= 0; }

private:
    int fd_ = -1;
};

/// Writes all of `bytes` unless the system refuses; returns how much was written, with errno set when that is
/// not all. Safe in a signal handler.
size_t write_all(int fd, std::string_view bytes) noexcept;

/// Throws std::system_error for `code` that says what was tried with which path.
[[noreturn]] void throw_system_error(int code, const char* what, const std::string& path);

} // namespace env_detail
