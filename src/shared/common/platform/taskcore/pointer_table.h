#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace vek::tcltasks {

/// A table from pointers to pointers in one block of memory, where a key may stand more than once; a key is
/// never null. Objects that lie side by side in memory stay near each other in it, so that a walk over many
/// of them seldom waits for memory. Unguarded.
template <class Key, class Value>
class pointer_table {
public:
    struct entry {
        Key first = nullptr; // null in a free place
        Value second = nullptr;
    };

    class iterator {
    public:
        iterator(const entry* at, const entry* end) : m_at(at), m_end(end) { pass_free(); }
        const entry& operator*() const { return *m_at; }
        const entry* operator->() const { return m_at; }
        iterator& operator++() {
            ++m_at;
            pass_free();
            return *this;
        }
        bool operator==(const iterator& other) const { return m_at == other.m_at; }

    private:
        friend pointer_table;
        void pass_free() {
            while (m_at != m_end && !m_at->first) {
                ++m_at;
            }
        }
        const entry* m_at;
        const entry* m_end;
    };

    size_t size() const { return m_size; }
    iterator begin() const { return {m_entries.get(), limit()}; }
    iterator end() const { return {limit(), limit()}; }

    /// The first entry of a key that `accept(value)` takes, or end().
    template <class Accept>
    iterator find_if(Key key, const Accept& accept) const {
        if (m_size > 0) {
            for (size_t i = home(key); m_entries[i].first; i = next(i)) {
                if (m_entries[i].first == key && accept(m_entries[i].second)) {
                    return {&m_entries[i], limit()};
                }
            }
        }
        return end();
    }
    iterator find(Key key) const {
        return find_if(key, [](Value) { return true; });
    }

    /// Adds an entry, beside those that the key has already.
    void insert(Key key, Value value) {
        make_room();
        place(key, value);
        ++m_size;
    }

    /// Adds an entry unless the key has one. True if it was added.
    bool emplace(Key key, Value value) {
        make_room();
        size_t i = home(key);
        while (m_entries[i].first) {
            if (m_entries[i].first == key) {
                return false;
            }
            i = next(i);
        }
        m_entries[i] = {key, value};
        ++m_size;
        return true;
    }

    /// All iterators are void afterwards.
    void erase(iterator which) {
        // Entries that were pushed past this one move up, so that no search stops short of them.
        auto hole = static_cast<size_t>(which.m_at - m_entries.get());
        for (size_t i = next(hole); m_entries[i].first; i = next(i)) {
            if (((i - home(m_entries[i].first)) & m_mask) >= ((i - hole) & m_mask)) {
                m_entries[hole] = m_entries[i];
                hole = i;
            }
        }
        m_entries[hole] = {};
        --m_size;
    }

    /// Has the memory fetched that a search for the key will read.
    void prefetch(Key key) const {
        if (m_size > 0) {
            __builtin_prefetch(&m_entries[home(key)]);
        }
    }

private:
    static constexpr int smallest = 4; // bits

    size_t capacity() const { return m_entries ? m_mask + 1 : 0; }
    const entry* limit() const { return m_entries.get() + capacity(); }
    size_t next(size_t i) const { return (i + 1) & m_mask; }

    // Addresses are aligned, so their low bits carry nothing. The high ones are folded in, or else objects
    // that lie a large power of two apart would meet in one place.
    size_t home(Key key) const {
        const auto address = reinterpret_cast<uintptr_t>(key);
        const size_t hash = (address >> 3) + address;
        return (hash + (hash >> m_bits)) & m_mask;
    }

    void place(Key key, Value value) {
        size_t i = home(key);
        while (m_entries[i].first) {
            i = next(i);
        }
        m_entries[i] = {key, value};
    }

    void make_room() {
        if ((m_size + 1) * 3 <= capacity() * 2) {
            return;
        }
        const int bits = m_entries ? m_bits + 1 : smallest;
        auto bigger = std::make_unique<entry[]>(size_t(1) << bits);
        const size_t before = capacity();
        const auto old = std::exchange(m_entries, std::move(bigger));
        m_bits = bits;
        m_mask = (size_t(1) << bits) - 1;
        for (size_t i = 0; i < before; ++i) {
            if (old[i].first) {
                place(old[i].first, old[i].second);
            }
        }
    }

    std::unique_ptr<entry[]> m_entries;
    int m_bits = 0; // of the number of places
    size_t m_mask = 0;
    size_t m_size = 0;
};

} // namespace vek::tcltasks
