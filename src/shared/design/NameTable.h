#pragma once

#include "design/ChunkVector.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace design {

/// Number of an interned text; equal texts of one table have equal numbers, counted from 0.
using NameId = uint32_t;

/// "No index": no name, no net, no module, as the place tells.
constexpr uint32_t none = UINT32_MAX;

/// Interned texts: each distinct text is stored once and is known by a dense 32-bit number.
/// Not guarded against threads.
class NameTable {
public:
    NameTable();

    /// The number of `text`, entered if new. Throws std::length_error beyond 2^31 texts or 2^31 bytes in one.
    NameId intern(std::string_view text);

    /// The number of `text`, or `none` if it was never entered.
    NameId find(std::string_view text) const noexcept;

    /// The text of a number that this table gave; followed by a NUL and valid as long as the table.
    std::string_view text(NameId id) const noexcept;

    size_t size() const noexcept { return entries_.size(); }
    size_t memory() const noexcept;
    void clear();

private:
    struct Entry {
        uint32_t length;
        char text[1];
    };

    /// The hash stands beside the number, so that a search looks at few texts that are not the right one.
    struct Slot {
        uint32_t hash;
        NameId id = none;
    };

    size_t slot_of(std::string_view text, uint32_t hash) const noexcept;
    Entry* store(std::string_view text);
    void grow();

    std::vector<std::unique_ptr<char[]>> blocks_;
    char* free_ = nullptr;
    size_t left_ = 0;
    size_t block_bytes_ = 0;
    ChunkVector<const Entry*> entries_;
    std::vector<Slot> slots_;
};

} // namespace design
