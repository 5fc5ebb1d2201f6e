#include "design/Netlist.h"

#include <charconv>

namespace design {

namespace {

template <class Items>
uint32_t find_in(const Items& items, Netlist::Range range, std::vector<uint32_t>& index, NameId name) {
    if (index.empty()) {
        size_t size = 4;
        while (size < size_t(range.count) * 3 / 2)
            size *= 2;
        index.assign(size, none);
        for (uint32_t i = range.first; i < range.first + range.count; ++i) {
            size_t slot = items[i].name * 0x9e3779b1u & (size - 1);
            while (index[slot] != none)
                slot = (slot + 1) & (size - 1);
            index[slot] = i;
        }
    }
    const size_t mask = index.size() - 1;
    for (size_t slot = name * 0x9e3779b1u & mask; index[slot] != none; slot = (slot + 1) & mask)
        if (items[index[slot]].name == name)
            return index[slot];
    return none;
}

} // namespace

uint32_t Netlist::find_cell(const Module& module, NameId name) const {
    return find_in(cells, module.cells, module.cell_index, name);
}

uint32_t Netlist::find_wire(const Module& module, NameId name) const {
    return find_in(wires, module.wires, module.wire_index, name);
}

uint32_t Netlist::find_port(const Module& module, NameId name) const {
    return find_in(ports, module.ports, module.port_index, name);
}

uint32_t Netlist::value_in_set(uint32_t set, NameId name) const {
    const uint32_t count = sets[set];
    for (uint32_t i = 0; i < count; ++i)
        if (sets[set + 1 + 2 * size_t(i)] == name)
            return sets[set + 2 + 2 * size_t(i)];
    return none;
}

void Netlist::append_bit_name(std::string& out, NameId name, uint32_t bit, uint32_t width, int32_t offset,
                              bool upto) const {
    out += names.text(name);
    if (width == 1)
        return;
    const int64_t index = int64_t(offset) + (upto ? width - 1 - bit : bit);
    char text[24];
    const auto end = std::to_chars(text, text + sizeof text, index).ptr;
    out += '[';
    out.append(text, end);
    out += ']';
}

size_t Netlist::memory() const {
    return names.memory() + cells.memory() + wires.memory() + nets.memory() + bits.memory() + pins.memory() +
           net_pins.memory() + sets.memory() + ports.capacity() * sizeof(Port);
}

BitName split_bit_name(std::string_view name) {
    const size_t open = name.rfind('[');
    if (open == std::string_view::npos || name.back() != ']')
        return {name};
    BitName result{name.substr(0, open)};
    const char* first = name.data() + open + 1;
    const char* last = name.data() + name.size() - 1;
    const auto parsed = std::from_chars(first, last, result.index);
    const bool padded = last - first > 1 && *first == '0';
    if (parsed.ec != std::errc() || parsed.ptr != last || padded)
        return {name};
    result.has_index = true;
    return result;
}

uint32_t bit_of_index(int64_t index, uint32_t width, int32_t offset, bool upto) {
    const int64_t bit = upto ? int64_t(offset) + width - 1 - index : index - offset;
    return bit >= 0 && bit < int64_t(width) ? static_cast<uint32_t>(bit) : none;
}

} // namespace design
