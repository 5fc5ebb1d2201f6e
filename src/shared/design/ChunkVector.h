#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace design {

/// A growing array in chunks of equal size: elements never move, and growth copies nothing, so filling one
/// with millions of small records needs no more memory than the records.
template <class T, size_t ChunkSize = 8192>
class ChunkVector {
    static_assert((ChunkSize & (ChunkSize - 1)) == 0, "chunk size is a power of two");

public:
    size_t size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }

    T& operator[](size_t i) noexcept { return chunks_[i / ChunkSize][i % ChunkSize]; }
    const T& operator[](size_t i) const noexcept { return chunks_[i / ChunkSize][i % ChunkSize]; }
    T& back() noexcept { return (*this)[size_ - 1]; }

    void push_back(const T& value) {
        if (size_ == chunks_.size() * ChunkSize)
            chunks_.push_back(std::unique_ptr<T[]>(new T[ChunkSize]));
        (*this)[size_++] = value;
    }

    /// Shortens to `size` elements; the memory is kept.
    void truncate(size_t size) noexcept { size_ = size; }

    void clear() noexcept {
        chunks_.clear();
        chunks_.shrink_to_fit();
        size_ = 0;
    }

    void swap(ChunkVector& other) noexcept {
        chunks_.swap(other.chunks_);
        std::swap(size_, other.size_);
    }

    // NOLINTNEXTLINE(bugprone-sizeof-expression): elements may be pointers, and their own size is meant.
    size_t memory() const noexcept { return chunks_.size() * ChunkSize * sizeof(T); }

private:
    std::vector<std::unique_ptr<T[]>> chunks_;
    size_t size_ = 0;
};

} // namespace design
