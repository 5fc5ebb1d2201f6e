#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace isl::iostreams {

/// Where a filtering_stream takes its bytes from.
class byte_source {
public:
    virtual ~byte_source() = default;

    /// Reads up to `size` bytes; 0 only at the end. Throws for what cannot be read.
    virtual size_t read(char* buffer, size_t size) = 0;
};

/// A read-only stream of bytes over a file, before which a filter may be put. Not for use by several threads
/// at once.
class filtering_stream {
public:
    /// Opens the file. Throws std::system_error, whose text names the path.
    explicit filtering_stream(const std::string& path);
    ~filtering_stream();
    filtering_stream(const filtering_stream&) = delete;
    filtering_stream& operator=(const filtering_stream&) = delete;

    /// Reads up to `size` bytes, those put back first; 0 only at the end. Throws for what cannot be read.
    size_t read(char* buffer, size_t size);

    /// Gives a byte back, to be read again. Throws std::ios_base::failure when 4 bytes wait already.
    void putback(char byte);

    /// Always throw std::ios_base::failure.
    [[noreturn]] void write(const char* bytes, size_t size);
    [[noreturn]] void seek(long offset);

    /// Has all further bytes come from `filter`, which owns what it reads from.
    void push(std::unique_ptr<byte_source> filter) { m_source = std::move(filter); }

    /// The open file. The stream closes it, unless it was given away: then whoever took it does so, after the
    /// stream's end.
    int file_descriptor() const { return m_fd; }
    int release_file_descriptor();

private:
    int m_fd;
    bool m_owned = true;
    std::unique_ptr<byte_source> m_source;
    std::string m_putback; // the byte to read next stands last
};

} // namespace isl::iostreams
