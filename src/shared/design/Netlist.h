#pragma once

#include "design/ChunkVector.h"
#include "design/NameTable.h"

#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace design {

/// Most objects of one class that one design may have. The bound turns a small file that unfolds into an
/// endless hierarchy into an error instead of the end of memory.
constexpr uint32_t max_objects = 1u << 28;
constexpr uint32_t max_width = (1u << 29) - 1;

enum class Direction : uint8_t { unknown, input, output, inout };

/// One kind of cell: the module or library cell it refers to, and its ports. Cells that agree in these share
/// one Shape. A pin of the cell is one bit of one port; pins count through the ports in order.
struct Shape {
    struct Port {
        NameId name;
        uint32_t first_pin;
        uint32_t width;
        int32_t offset; ///< index of the lowest bit, as the module declares it
        Direction direction;
        bool upto; ///< declared as [0:n]
    };
    NameId type;
    uint32_t module; ///< the module of that name in the same file, or none
    uint32_t pins;
    bool hierarchical; ///< the module has an inside to look into
    std::vector<Port> ports;
    std::vector<uint32_t> port_of_pin;
};

/// A netlist file as it was read: each module once, all of them in the same flat arrays, each module a range
/// of each. A net is local to its module and stands for one bit; net numbers count from 0 in the module.
struct Netlist {
    struct Cell {
        NameId name;
        uint32_t attributes;
        uint32_t parameters;
        uint32_t pins; ///< where its pins start in `pins`
        uint32_t shape : 31;
        uint32_t hidden : 1;
    };
    /// A declared name of one or more bits: a wire or a bus. Several may share a bit.
    struct Wire {
        NameId name;
        uint32_t attributes;
        uint32_t bits; ///< where its nets start in `bits`
        int32_t offset;
        uint32_t width : 29;
        uint32_t hidden : 1;
        uint32_t upto : 1;
        uint32_t is_signed : 1;
    };
    struct Port {
        NameId name;
        uint32_t bits;
        uint32_t width;
        int32_t offset;
        Direction direction;
        bool upto;
        bool is_signed;
    };
    struct Net {
        uint32_t wire;      ///< the wire that names it, or none for a constant
        uint32_t bit;       ///< its bit in that wire; for a constant which: index into constant_names
        uint32_t first_pin; ///< where its pins start, counted from the first of the module's `net_pins`
        uint32_t loads;
        uint32_t drivers;
    };
    /// A range of one of the arrays below.
    struct Range {
        uint32_t first = 0;
        uint32_t count = 0;
    };
    struct Module {
        NameId name;
        uint32_t attributes = 0;
        uint32_t parameters = 0;
        Range ports, cells, wires, nets, pins, net_pins;
        bool blackbox = false;
        uint32_t instances = 0; ///< cells that refer to it
        /// Position of a cell, wire or port by name; filled at the first look-up.
        mutable std::vector<uint32_t> cell_index, wire_index, port_index;
    };

    NameTable names;
    NameId creator = none;
    std::vector<Module> modules;
    std::unordered_map<NameId, uint32_t> module_of_name;
    std::vector<Shape> shapes;
    ChunkVector<Cell> cells;
    ChunkVector<Wire> wires;
    std::vector<Port> ports;
    ChunkVector<Net> nets;
    ChunkVector<uint32_t> bits;     ///< net of each bit of each wire and port
    ChunkVector<uint32_t> pins;     ///< net of each pin of each cell, or none if unconnected
    ChunkVector<uint32_t> net_pins; ///< the pins of each net, as numbers within the module
    ChunkVector<uint32_t> sets;     ///< attribute and parameter sets: count, then names and values

    /// A value in a set is the NameId of its text, with this bit if the file gives it as a number.
    static constexpr uint32_t number_flag = 0x80000000u;
    static constexpr const char* constant_names[4] = {"<const0>", "<const1>", "<constx>", "<constz>"};
    static constexpr const char* constant_bits[4] = {"0", "1", "x", "z"};

    const Shape& shape_of(const Cell& cell) const { return shapes[cell.shape]; }
    size_t memory() const;

    /// How many pins of cells are on net `net` of the module; they start at first_pin.
    uint32_t pin_count(const Module& module, uint32_t net) const {
        const uint32_t end =
            net + 1 < module.nets.count ? nets[module.nets.first + net + 1].first_pin : module.net_pins.count;
        return end - nets[module.nets.first + net].first_pin;
    }

    /// The value of `name` in the set at `set`, or none.
    uint32_t value_in_set(uint32_t set, NameId name) const;

    /// Position of a cell or wire of that name in the netlist, or none. No scan: an index is made at the
    /// first call for a module.
    uint32_t find_cell(const Module& module, NameId name) const;
    uint32_t find_wire(const Module& module, NameId name) const;
    /// Position of a port of the module, or none.
    uint32_t find_port(const Module& module, NameId name) const;

    /// Appends the name of bit `bit` of a wire or port: the bare name if it has one bit only.
    void append_bit_name(std::string& out, NameId name, uint32_t bit, uint32_t width, int32_t offset,
                         bool upto) const;
};

/// "data[3]" taken apart: base "data", index 3. `has_index` is false when there is none.
struct BitName {
    std::string_view base;
    int64_t index = 0;
    bool has_index = false;
};
BitName split_bit_name(std::string_view name);

/// The bit with the declared index, or none when the range has no such bit.
uint32_t bit_of_index(int64_t index, uint32_t width, int32_t offset, bool upto);

} // namespace design
