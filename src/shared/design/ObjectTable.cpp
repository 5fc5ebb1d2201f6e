#include "design/ObjectTable.h"

#include <new>
#include <sys/mman.h>

namespace design::chunks {

char* map_chunks(size_t count) {
    const size_t size = count * ObjectChunk::bytes;
    void* mapped = ::mmap(nullptr, size + ObjectChunk::bytes, PROT_READ | PROT_WRITE,
                          MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapped == MAP_FAILED)
        throw std::bad_alloc();
    char* begin = static_cast<char*>(mapped);
    const size_t lead = -reinterpret_cast<uintptr_t>(begin) & (ObjectChunk::bytes - 1);
    if (lead > 0)
        ::munmap(begin, lead);
    ::munmap(begin + lead + size, ObjectChunk::bytes - lead);
    return begin + lead;
}

void retire_chunks(char* first, size_t count) noexcept {
    ::madvise(first, count * ObjectChunk::bytes, MADV_DONTNEED);
}

void unmap_chunks(char* first, size_t count) noexcept {
    ::munmap(first, count * ObjectChunk::bytes);
}

} // namespace design::chunks
