#include "design/ByteSource.h"

#include "design/Error.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

namespace design {

namespace {

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw Error(Fault::unreadable_file, "Cannot read the netlist file '" + path + "': " + reason + ".");
}

size_t read_some(int fd, const std::string& path, char* buffer, size_t size) {
    for (;;) {
        const ssize_t n = ::read(fd, buffer, size);
        if (n >= 0)
            return static_cast<size_t>(n);
        if (errno != EINTR)
            refuse(path, std::strerror(errno));
    }
}

class PlainFile : public ByteSource {
public:
    PlainFile(int fd, std::string path) : fd_(fd), path_(std::move(path)) {}
    PlainFile(const PlainFile&) = delete;
    PlainFile& operator=(const PlainFile&) = delete;
    ~PlainFile() override { ::close(fd_); }

    size_t read(char* buffer, size_t size) override { return read_some(fd_, path_, buffer, size); }

private:
    int fd_;
    std::string path_;
};

class GzipFile : public ByteSource {
public:
    GzipFile(int fd, std::string path) : file_(gzdopen(fd, "rb")), path_(std::move(path)) {
        if (!file_) {
            ::close(fd);
            refuse(path_, "not enough memory to decompress it");
        }
        gzbuffer(file_, 256 * 1024);
    }
    GzipFile(const GzipFile&) = delete;
    GzipFile& operator=(const GzipFile&) = delete;
    ~GzipFile() override { gzclose(file_); }

    size_t read(char* buffer, size_t size) override {
        const int n = gzread(file_, buffer, static_cast<unsigned>(std::min<size_t>(size, 1u << 30)));
        if (n > 0)
            return static_cast<size_t>(n);
        int code = Z_OK;
        const char* text = gzerror(file_, &code);
        if (code == Z_BUF_ERROR)
            refuse(path_, "the compressed data end early");
        if (code == Z_ERRNO)
            refuse(path_, std::strerror(errno));
        if (code != Z_OK && code != Z_STREAM_END)
            refuse(path_, std::string("the compressed data are damaged (") + text + ")");
        return 0;
    }

private:
    gzFile file_;
    std::string path_;
};

} // namespace

std::unique_ptr<ByteSource> open_byte_source(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        refuse(path, std::strerror(errno));
    auto plain = std::make_unique<PlainFile>(fd, path);
    struct stat status {};
    if (::fstat(fd, &status) == 0 && S_ISDIR(status.st_mode))
        refuse(path, "it is a directory");
    // A pipe cannot be looked at and rewound; it is taken as plain text.
    unsigned char magic[2] = {0, 0};
    if (::pread(fd, magic, 2, 0) == 2 && magic[0] == 0x1f && magic[1] == 0x8b) {
        const int copy = ::fcntl(fd, F_DUPFD_CLOEXEC, 0);
        if (copy < 0)
            refuse(path, std::strerror(errno));
        return std::make_unique<GzipFile>(copy, path);
    }
    return plain;
}

} // namespace design
