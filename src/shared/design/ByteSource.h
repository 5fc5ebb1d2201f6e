#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace design {

/// Where the bytes of a netlist come from.
class ByteSource {
public:
    virtual ~ByteSource() = default;

    /// Fills up to `size` bytes and returns how many; 0 only at the end. Throws Error(unreadable_file).
    virtual size_t read(char* buffer, size_t size) = 0;
};

/// A text in memory, which must outlive the source.
class MemorySource : public ByteSource {
public:
    explicit MemorySource(std::string_view text) : text_(text) {}

    size_t read(char* buffer, size_t size) override {
        const size_t n = size < text_.size() ? size : text_.size();
        std::memcpy(buffer, text_.data(), n);
        text_.remove_prefix(n);
        return n;
    }

private:
    std::string_view text_;
};

/// Opens a file; one in gzip form, told by its first bytes, is decompressed on the way.
/// Throws Error(unreadable_file) that names the file and the system's reason.
std::unique_ptr<ByteSource> open_byte_source(const std::string& path);

} // namespace design
