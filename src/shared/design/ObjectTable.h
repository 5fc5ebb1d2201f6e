#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace design {

class Design;

/// What stands at the start of each chunk of objects. Chunks are aligned to their size, so an object finds
/// its design and its number from its own address, at no cost in memory.
struct ObjectChunk {
    static constexpr size_t bytes = size_t(1) << 20;
    static constexpr size_t header_bytes = 64;

    Design* design;
    uint32_t first; ///< number of the first object in the chunk

    static const ObjectChunk& of(const void* object) noexcept {
        return *reinterpret_cast<const ObjectChunk*>(reinterpret_cast<uintptr_t>(object) &
                                                     ~(uintptr_t(bytes) - 1));
    }
};

namespace chunks {
/// Address space for `count` chunks, aligned and zero. Throws std::bad_alloc.
char* map_chunks(size_t count);
/// Gives the memory back but keeps the addresses, which from now on read as zero.
void retire_chunks(char* first, size_t count) noexcept;
void unmap_chunks(char* first, size_t count) noexcept;
} // namespace chunks

/// The objects of one class of one design, at addresses that never change and are never used again.
///
/// After retire() the objects may still be looked at: their chunk names no design any more, which is how a
/// handle that outlived its design is told from a live one. Only address space is lost by that.
template <class T>
class ObjectTable {
public:
    ObjectTable() = default;
    ObjectTable(const ObjectTable&) = delete;
    ObjectTable& operator=(const ObjectTable&) = delete;
    ~ObjectTable() {
        if (first_)
            chunks::unmap_chunks(first_, chunk_count());
    }

    /// Makes `count` objects, all zero; once in the life of a table.
    void allocate(Design* design, uint32_t count) {
        size_ = count;
        if (count == 0)
            return;
        first_ = chunks::map_chunks(chunk_count());
        for (size_t i = 0; i < chunk_count(); ++i) {
            auto* chunk = reinterpret_cast<ObjectChunk*>(first_ + i * ObjectChunk::bytes);
            chunk->design = design;
            chunk->first = static_cast<uint32_t>(i * per_chunk);
        }
    }

    void retire() noexcept {
        if (first_)
            chunks::retire_chunks(first_, chunk_count());
        first_ = nullptr;
        size_ = 0;
    }

    uint32_t size() const noexcept { return size_; }

    T* operator[](uint32_t i) const noexcept {
        return reinterpret_cast<T*>(first_ + i / per_chunk * ObjectChunk::bytes + ObjectChunk::header_bytes) +
               i % per_chunk;
    }

    /// The number of an object in its design.
    static uint32_t index_of(const T* object) noexcept {
        const ObjectChunk& chunk = ObjectChunk::of(object);
        const auto* first =
            reinterpret_cast<const T*>(reinterpret_cast<const char*>(&chunk) + ObjectChunk::header_bytes);
        return chunk.first + static_cast<uint32_t>(object - first);
    }

private:
    static constexpr size_t per_chunk = (ObjectChunk::bytes - ObjectChunk::header_bytes) / sizeof(T);

    size_t chunk_count() const noexcept { return (size_ + per_chunk - 1) / per_chunk; }

    char* first_ = nullptr;
    uint32_t size_ = 0;
};

} // namespace design
