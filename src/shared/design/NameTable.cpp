#include "design/NameTable.h"

#include <cstddef>
#include <cstring>
#include <stdexcept>

namespace design {

namespace {

constexpr size_t block_size = 256 * 1024;
constexpr size_t first_slots = 1024;
constexpr size_t longest_text = size_t(1) << 31;

uint64_t mix(uint64_t h, uint64_t word) {
    const unsigned __int128 product = static_cast<unsigned __int128>(h ^ word) * 0x9e3779b97f4a7c15ull;
    return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}

uint32_t hash_of(std::string_view text) {
    uint64_t h = 0xa0761d6478bd642full ^ text.size();
    const char* p = text.data();
    size_t n = text.size();
    for (; n >= 8; n -= 8, p += 8) {
        uint64_t word;
        std::memcpy(&word, p, 8);
        h = mix(h, word);
    }
    uint64_t tail = 0;
    std::memcpy(&tail, p, n);
    h = mix(h, tail ^ 0xe7037ed1a0b428dbull);
    return static_cast<uint32_t>(h ^ (h >> 32));
}

} // namespace

NameTable::NameTable() : slots_(first_slots) {}

size_t NameTable::slot_of(std::string_view text, uint32_t hash) const noexcept {
    const size_t mask = slots_.size() - 1;
    size_t slot = hash & mask;
    for (; slots_[slot].id != none; slot = (slot + 1) & mask) {
        if (slots_[slot].hash != hash)
            continue;
        const Entry* entry = entries_[slots_[slot].id];
        if (entry->length == text.size() && std::memcmp(entry->text, text.data(), text.size()) == 0)
            break;
    }
    return slot;
}

NameId NameTable::intern(std::string_view text) {
    const uint32_t hash = hash_of(text);
    const size_t slot = slot_of(text, hash);
    if (slots_[slot].id != none)
        return slots_[slot].id;
    if (text.size() >= longest_text || entries_.size() >= (size_t(1) << 31) - 1)
        throw std::length_error("too many names, or a name is too long");
    const NameId id = static_cast<NameId>(entries_.size());
    entries_.push_back(store(text));
    slots_[slot] = {hash, id};
    if (entries_.size() * 3 > slots_.size() * 2)
        grow();
    return id;
}

NameId NameTable::find(std::string_view text) const noexcept {
    return slots_[slot_of(text, hash_of(text))].id;
}

std::string_view NameTable::text(NameId id) const noexcept {
    const Entry* entry = entries_[id];
    return {entry->text, entry->length};
}

NameTable::Entry* NameTable::store(std::string_view text) {
    const size_t bytes = (offsetof(Entry, text) + text.size() + 1 + 3) & ~size_t(3);
    char* place;
    if (bytes > block_size / 4) {
        // A long text gets a block of its own, so that the rest of the open block is not lost.
        blocks_.push_back(std::unique_ptr<char[]>(new char[bytes]));
        block_bytes_ += bytes;
        place = blocks_.back().get();
    } else {
        if (bytes > left_) {
            blocks_.push_back(std::unique_ptr<char[]>(new char[block_size]));
            block_bytes_ += block_size;
            free_ = blocks_.back().get();
            left_ = block_size;
        }
        place = free_;
        free_ += bytes;
        left_ -= bytes;
    }
    auto* entry = reinterpret_cast<Entry*>(place);
    entry->length = static_cast<uint32_t>(text.size());
    char* chars = place + offsetof(Entry, text);
    std::memcpy(chars, text.data(), text.size());
    chars[text.size()] = '\0';
    return entry;
}

void NameTable::grow() {
    std::vector<Slot> slots(slots_.size() * 2);
    const size_t mask = slots.size() - 1;
    for (const Slot& old : slots_) {
        if (old.id == none)
            continue;
        size_t slot = old.hash & mask;
        while (slots[slot].id != none)
            slot = (slot + 1) & mask;
        slots[slot] = old;
    }
    slots_.swap(slots);
}

size_t NameTable::memory() const noexcept {
    return block_bytes_ + entries_.memory() + slots_.capacity() * sizeof(Slot);
}

void NameTable::clear() {
    blocks_.clear();
    free_ = nullptr;
    left_ = block_bytes_ = 0;
    entries_.clear();
    slots_.assign(first_slots, {});
    slots_.shrink_to_fit();
}

} // namespace design
