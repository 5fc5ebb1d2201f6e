#include "platform/xp/filtering_stream.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <ios>
#include <unistd.h>

#include "platform/env/detail/file_descriptor.h"
#include "platform/xp/detail/file_source.h"

namespace isl::iostreams {

namespace {

constexpr size_t putbackSize = 4;

} // namespace

size_t detail::file_source::read(char* buffer, size_t size) {
    for (;;) {
        const ssize_t count = ::read(m_fd, buffer, size);
        if (count >= 0) {
            return static_cast<size_t>(count);
        }
        if (errno != EINTR) {
            env_detail::throw_system_error(errno, "cannot read", m_path);
        }
    }
}

filtering_stream::filtering_stream(const std::string& path)
    : m_fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (m_fd < 0) {
        env_detail::throw_system_error(errno, "cannot read", path);
    }
    m_source = std::make_unique<detail::file_source>(m_fd, path);
}

filtering_stream::~filtering_stream() {
    if (m_owned) {
        ::close(m_fd);
    }
}

int filtering_stream::release_file_descriptor() {
    m_owned = false;
    return m_fd;
}

size_t filtering_stream::read(char* buffer, size_t size) {
    if (m_putback.empty()) {
        return m_source->read(buffer, size);
    }
    const size_t count = std::min(size, m_putback.size());
    std::reverse_copy(m_putback.end() - static_cast<std::ptrdiff_t>(count), m_putback.end(), buffer);
    m_putback.resize(m_putback.size() - count);
    return count;
}

void filtering_stream::putback(char byte) {
    if (m_putback.size() == putbackSize) {
        throw std::ios_base::failure("putback buffer full");
    }
    m_putback += byte;
}

void filtering_stream::write(const char*, size_t) {
    throw std::ios_base::failure("no write access");
}

void filtering_stream::seek(long) {
    throw std::ios_base::failure("no random access");
}

} // namespace isl::iostreams
