#pragma once

#include <string>

#include "platform/xp/filtering_stream.h"

namespace isl::iostreams::detail {

/// The bytes of an open file, which others own.
class file_source : public byte_source {
public:
    file_source(int fd, std::string path) : m_fd(fd), m_path(std::move(path)) {}
    size_t read(char* buffer, size_t size) override;

private:
    int m_fd;
    std::string m_path;
};

} // namespace isl::iostreams::detail
