#include "design/NetlistReader.h"

#include "design/Error.h"
#include "design/JsonReader.h"

#include <algorithm>
#include <stdexcept>

namespace design {

namespace {

/// Enters attribute sets, each distinct one once.
class SetPool {
public:
    explicit SetPool(ChunkVector<uint32_t>& sets) : sets_(sets), slots_(64, none) {
        sets_.push_back(0); // the empty set is at 0
    }

    /// The place of a set of names and values, which come in pairs.
    uint32_t enter(const std::vector<uint32_t>& pairs) {
        if (pairs.empty())
            return 0;
        size_t slot = hash(pairs) & (slots_.size() - 1);
        for (; slots_[slot] != none; slot = (slot + 1) & (slots_.size() - 1))
            if (equal(slots_[slot], pairs))
                return slots_[slot];
        const auto place = static_cast<uint32_t>(sets_.size());
        sets_.push_back(static_cast<uint32_t>(pairs.size() / 2));
        for (const uint32_t word : pairs)
            sets_.push_back(word);
        slots_[slot] = place;
        if (++count_ * 2 > slots_.size())
            grow();
        return place;
    }

private:
    static size_t step(size_t h, uint32_t word) {
        h = (h ^ word) * 0x9e3779b97f4a7c15ull;
        return h ^ (h >> 29);
    }

    static size_t hash(const std::vector<uint32_t>& pairs) {
        size_t h = pairs.size();
        for (const uint32_t word : pairs)
            h = step(h, word);
        return h;
    }

    size_t hash_at(uint32_t place) const {
        const size_t words = size_t(sets_[place]) * 2;
        size_t h = words;
        for (size_t i = 1; i <= words; ++i)
            h = step(h, sets_[place + i]);
        return h;
    }

    bool equal(uint32_t place, const std::vector<uint32_t>& pairs) const {
        if (size_t(sets_[place]) * 2 != pairs.size())
            return false;
        for (size_t i = 0; i < pairs.size(); ++i)
            if (sets_[place + 1 + i] != pairs[i])
                return false;
        return true;
    }

    void grow() {
        std::vector<uint32_t> slots(slots_.size() * 2, none);
        for (const uint32_t place : slots_) {
            if (place == none)
                continue;
            size_t slot = hash_at(place) & (slots.size() - 1);
            while (slots[slot] != none)
                slot = (slot + 1) & (slots.size() - 1);
            slots[slot] = place;
        }
        slots_.swap(slots);
    }

    ChunkVector<uint32_t>& sets_;
    std::vector<uint32_t> slots_;
    size_t count_ = 0;
};

/// Finds the net that a module gives to each bit number. Numbers are dense in what tools write; a few far
/// ones go into a map, so that no number can ask for more memory than the file is worth.
class BitMap {
public:
    uint32_t& operator[](uint32_t bit) {
        if (bit < dense_.size())
            return dense_[bit];
        if (bit / 4 <= count_ + 256) {
            dense_.resize(std::max<size_t>(size_t(bit) + 1, dense_.size() * 2), none);
            for (auto it = sparse_.begin(); it != sparse_.end();) {
                if (it->first >= dense_.size()) {
                    ++it;
                    continue;
                }
                dense_[it->first] = it->second;
                it = sparse_.erase(it);
            }
            return dense_[bit];
        }
        return sparse_.try_emplace(bit, none).first->second;
    }

    void added() { ++count_; }

    void clear() {
        dense_.clear();
        sparse_.clear();
        count_ = 0;
    }

private:
    std::vector<uint32_t> dense_;
    std::unordered_map<uint32_t, uint32_t> sparse_;
    size_t count_ = 0;
};

/// Tells whether a name stands for the first time in a module, without a set to fill and empty.
class FirstUse {
public:
    void start() { ++generation_; }

    bool first(NameId name) {
        if (name >= seen_.size())
            seen_.resize(std::max<size_t>(size_t(name) + 1, seen_.size() * 3 / 2), 0);
        return std::exchange(seen_[name], generation_) != generation_;
    }

    bool seen(NameId name) const { return name < seen_.size() && seen_[name] == generation_; }

private:
    std::vector<uint32_t> seen_;
    uint32_t generation_ = 0;
};

/// Shapes by content while cells stream in.
class ShapePool {
public:
    explicit ShapePool(std::vector<Shape>& shapes) : shapes_(shapes), slots_(64, none) {}

    /// The number of the shape with this type and these ports; first_pin of the ports is filled in.
    uint32_t enter(NameId type, std::vector<Shape::Port>& ports) {
        size_t slot = hash(type, ports) & (slots_.size() - 1);
        for (; slots_[slot] != none; slot = (slot + 1) & (slots_.size() - 1))
            if (equal(shapes_[slots_[slot]], type, ports))
                return slots_[slot];
        const auto number = static_cast<uint32_t>(shapes_.size());
        shapes_.push_back(make(type, ports));
        slots_[slot] = number;
        if (shapes_.size() * 2 > slots_.size())
            grow();
        return number;
    }

private:
    static size_t hash(NameId type, const std::vector<Shape::Port>& ports) {
        size_t h = type;
        for (const Shape::Port& port : ports) {
            h = (h ^ port.name) * 0x9e3779b97f4a7c15ull;
            h = (h ^ (h >> 32) ^ (uint64_t(port.width) << 2) ^ uint64_t(port.direction)) *
                0x9e3779b97f4a7c15ull;
        }
        return h ^ (h >> 29);
    }

    static bool equal(const Shape& shape, NameId type, const std::vector<Shape::Port>& ports) {
        return shape.type == type &&
               std::equal(ports.begin(), ports.end(), shape.ports.begin(), shape.ports.end(),
                          [](const Shape::Port& a, const Shape::Port& b) {
                              return a.name == b.name && a.width == b.width && a.direction == b.direction &&
                                     a.offset == b.offset && a.upto == b.upto;
                          });
    }

    static Shape make(NameId type, std::vector<Shape::Port>& ports) {
        Shape shape{type, none, 0, false, {}, {}};
        for (Shape::Port& port : ports) {
            port.first_pin = shape.pins;
            shape.pins += port.width;
        }
        shape.ports.assign(ports.begin(), ports.end());
        shape.port_of_pin.reserve(shape.pins);
        for (uint32_t i = 0; i < ports.size(); ++i)
            shape.port_of_pin.insert(shape.port_of_pin.end(), ports[i].width, i);
        return shape;
    }

    void grow() {
        slots_.assign(slots_.size() * 2, none);
        for (uint32_t i = 0; i < shapes_.size(); ++i) {
            size_t slot = hash(shapes_[i].type, shapes_[i].ports) & (slots_.size() - 1);
            while (slots_[slot] != none)
                slot = (slot + 1) & (slots_.size() - 1);
            slots_[slot] = i;
        }
    }

    std::vector<Shape>& shapes_;
    std::vector<uint32_t> slots_;
};

/// A source that ends with an Error once `interrupted` says so.
class InterruptibleSource : public ByteSource {
public:
    InterruptibleSource(ByteSource& source, const std::string& path, const std::function<bool()>& interrupted)
        : source_(source), path_(path), interrupted_(interrupted) {}

    size_t read(char* buffer, size_t size) override {
        if (interrupted_())
            throw Error(Fault::interrupted, "Reading the netlist '" + path_ + "' was interrupted.");
        return source_.read(buffer, size);
    }

private:
    ByteSource& source_;
    const std::string& path_;
    const std::function<bool()>& interrupted_;
};

class NetlistParser {
public:
    NetlistParser(ByteSource& source, const std::string& name)
        : json_(source, name), netlist_(std::make_unique<Netlist>()), n_(*netlist_), sets_(n_.sets),
          shapes_(n_.shapes) {}

    std::unique_ptr<Netlist> read();

private:
    void read_file();
    void read_module(NameId name);
    void read_port(NameId name);
    void read_cell(NameId name);
    void read_directions();
    Direction read_direction(NameId port);
    void read_connections();
    void read_wire(NameId name);
    uint32_t read_set(std::string_view what);
    bool read_flag(std::string_view what);
    int32_t read_offset();
    uint32_t read_bits(ChunkVector<uint32_t>& out);
    uint32_t read_bit();
    uint32_t net_of_bit(uint32_t bit);
    uint32_t constant_net(std::string_view text);
    uint32_t new_net();
    void name_nets();
    NameId unused_name(uint32_t bit);

    void resolve_modules();
    bool completes(const Shape& shape, const Netlist::Module& module) const;
    void connect_missing_ports();
    void connect_nets();

    std::string quoted(NameId name) const { return "'" + std::string(n_.names.text(name)) + "'"; }
    Netlist::Module& module() { return n_.modules.back(); }

    JsonReader json_;
    std::unique_ptr<Netlist> netlist_;
    Netlist& n_;
    SetPool sets_;
    ShapePool shapes_;
    BitMap net_of_bit_;
    uint32_t constants_[4] = {none, none, none, none};
    FirstUse cell_names_, wire_names_, port_names_, pin_names_, set_names_;

    // What is known of the cell being read; kept here so that the memory is used again.
    std::vector<uint32_t> pairs_;
    std::vector<Shape::Port> connected_;
    std::vector<std::pair<NameId, Direction>> directions_;
};

std::unique_ptr<Netlist> NetlistParser::read() {
    try {
        read_file();
    } catch (const std::length_error& error) {
        json_.fail(error.what());
    }
    resolve_modules();
    connect_missing_ports();
    connect_nets();
    return std::move(netlist_);
}

void NetlistParser::read_file() {
    std::string_view key;
    bool has_modules = false;
    if (json_.peek() == JsonReader::Kind::end)
        json_.fail("the file is empty");
    json_.begin_object("the netlist");
    while (json_.next_member(key)) {
        if (key == "creator") {
            n_.creator = n_.names.intern(json_.string("'creator'"));
        } else if (key == "modules") {
            has_modules = true;
            json_.begin_object("'modules'");
            while (json_.next_member(key)) {
                const NameId name = n_.names.intern(key);
                if (!n_.module_of_name.try_emplace(name, static_cast<uint32_t>(n_.modules.size())).second)
                    json_.fail("the module " + quoted(name) + " stands twice");
                read_module(name);
            }
        } else {
            json_.skip();
        }
    }
    if (!has_modules)
        json_.fail("this is no netlist: it has no member 'modules'");
    json_.finish();
}

void NetlistParser::read_module(NameId name) {
    n_.modules.emplace_back();
    module().name = name;
    module().ports.first = static_cast<uint32_t>(n_.ports.size());
    module().cells.first = static_cast<uint32_t>(n_.cells.size());
    module().wires.first = static_cast<uint32_t>(n_.wires.size());
    module().nets.first = static_cast<uint32_t>(n_.nets.size());
    module().pins.first = static_cast<uint32_t>(n_.pins.size());
    net_of_bit_.clear();
    std::fill(std::begin(constants_), std::end(constants_), none);
    cell_names_.start();
    wire_names_.start();
    port_names_.start();

    std::string_view key;
    json_.begin_object("the module " + quoted(name));
    while (json_.next_member(key)) {
        if (key == "attributes") {
            module().attributes = read_set("'attributes' of a module");
        } else if (key == "parameter_default_values") {
            module().parameters = read_set("'parameter_default_values'");
        } else if (key == "ports") {
            json_.begin_object("'ports'");
            while (json_.next_member(key))
                read_port(n_.names.intern(key));
        } else if (key == "cells") {
            json_.begin_object("'cells'");
            while (json_.next_member(key))
                read_cell(n_.names.intern(key));
        } else if (key == "netnames") {
            json_.begin_object("'netnames'");
            while (json_.next_member(key))
                read_wire(n_.names.intern(key));
        } else {
            json_.skip();
        }
    }
    module().ports.count = static_cast<uint32_t>(n_.ports.size()) - module().ports.first;
    module().cells.count = static_cast<uint32_t>(n_.cells.size()) - module().cells.first;
    module().pins.count = static_cast<uint32_t>(n_.pins.size()) - module().pins.first;
    module().nets.count = static_cast<uint32_t>(n_.nets.size()) - module().nets.first;
    name_nets();
    module().wires.count = static_cast<uint32_t>(n_.wires.size()) - module().wires.first;
}

void NetlistParser::read_port(NameId name) {
    if (!port_names_.first(name))
        json_.fail("the port " + quoted(name) + " stands twice in the module " + quoted(module().name));
    Netlist::Port port{name, static_cast<uint32_t>(n_.bits.size()), 0, 0, Direction::unknown, false, false};
    std::string_view key;
    json_.begin_object("the port " + quoted(name));
    while (json_.next_member(key)) {
        if (key == "direction") {
            port.direction = read_direction(name);
        } else if (key == "bits") {
            port.bits = static_cast<uint32_t>(n_.bits.size());
            port.width = read_bits(n_.bits);
        } else if (key == "offset") {
            port.offset = read_offset();
        } else if (key == "upto") {
            port.upto = read_flag("'upto'");
        } else if (key == "signed") {
            port.is_signed = read_flag("'signed'");
        } else {
            json_.skip();
        }
    }
    if (port.direction == Direction::unknown)
        json_.fail("the port " + quoted(name) + " has no 'direction'");
    n_.ports.push_back(port);
}

void NetlistParser::read_cell(NameId name) {
    if (!cell_names_.first(name))
        json_.fail("the cell " + quoted(name) + " stands twice in the module " + quoted(module().name));
    Netlist::Cell cell{name, 0, 0, static_cast<uint32_t>(n_.pins.size()), 0, 0};
    NameId type = none;
    connected_.clear();
    directions_.clear();
    pin_names_.start();
    std::string_view key;
    json_.begin_object("a cell");
    while (json_.next_member(key)) {
        if (key == "hide_name")
            cell.hidden = read_flag("'hide_name'");
        else if (key == "type")
            type = n_.names.intern(json_.string("the type of a cell"));
        else if (key == "parameters")
            cell.parameters = read_set("'parameters' of a cell");
        else if (key == "attributes")
            cell.attributes = read_set("'attributes' of a cell");
        else if (key == "port_directions")
            read_directions();
        else if (key == "connections")
            read_connections();
        else
            json_.skip();
    }
    if (type == none)
        json_.fail("the cell " + quoted(name) + " has no 'type'");
    if (directions_.size() == connected_.size() &&
        std::equal(
            directions_.begin(), directions_.end(), connected_.begin(),
            [](const auto& direction, const Shape::Port& port) { return direction.first == port.name; })) {
        for (size_t i = 0; i < connected_.size(); ++i)
            connected_[i].direction = directions_[i].second;
    } else {
        const std::unordered_map<NameId, Direction> by_name(directions_.begin(), directions_.end());
        for (Shape::Port& port : connected_)
            if (const auto it = by_name.find(port.name); it != by_name.end())
                port.direction = it->second;
    }
    cell.shape = shapes_.enter(type, connected_) & 0x7fffffffu;
    n_.cells.push_back(cell);
}

void NetlistParser::read_directions() {
    std::string_view key;
    json_.begin_object("'port_directions'");
    while (json_.next_member(key)) {
        const NameId port = n_.names.intern(key);
        directions_.emplace_back(port, read_direction(port));
    }
}

Direction NetlistParser::read_direction(NameId port) {
    const std::string_view text = json_.string("the direction of a port");
    if (text == "input")
        return Direction::input;
    if (text == "output")
        return Direction::output;
    if (text == "inout")
        return Direction::inout;
    json_.fail("the direction of the port " + quoted(port) + " must be 'input', 'output' or 'inout', not '" +
               std::string(text.substr(0, 40)) + "'");
}

void NetlistParser::read_connections() {
    std::string_view key;
    json_.begin_object("'connections'");
    while (json_.next_member(key)) {
        const NameId port = n_.names.intern(key);
        if (!pin_names_.first(port))
            json_.fail("the port " + quoted(port) + " is connected twice in one cell");
        const uint32_t width = read_bits(n_.pins);
        connected_.push_back({port, 0, width, 0, Direction::unknown, false});
    }
}

void NetlistParser::read_wire(NameId name) {
    if (!wire_names_.first(name))
        json_.fail("the net name " + quoted(name) + " stands twice in the module " + quoted(module().name));
    Netlist::Wire wire{name, 0, static_cast<uint32_t>(n_.bits.size()), 0, 0, 0, 0, 0};
    std::string_view key;
    json_.begin_object("a net name");
    while (json_.next_member(key)) {
        if (key == "hide_name") {
            wire.hidden = read_flag("'hide_name'");
        } else if (key == "bits") {
            wire.bits = static_cast<uint32_t>(n_.bits.size());
            wire.width = read_bits(n_.bits) & max_width;
        } else if (key == "attributes") {
            wire.attributes = read_set("'attributes' of a net name");
        } else if (key == "offset") {
            wire.offset = read_offset();
        } else if (key == "upto") {
            wire.upto = read_flag("'upto'");
        } else if (key == "signed") {
            wire.is_signed = read_flag("'signed'");
        } else {
            json_.skip();
        }
    }
    n_.wires.push_back(wire);
}

uint32_t NetlistParser::read_set(std::string_view what) {
    pairs_.clear();
    set_names_.start();
    std::string_view key;
    json_.begin_object(what);
    while (json_.next_member(key)) {
        const NameId name = n_.names.intern(key);
        uint32_t value;
        if (json_.peek() == JsonReader::Kind::string)
            value = n_.names.intern(json_.string("a value"));
        else
            value = n_.names.intern(json_.scalar_text("a value")) | Netlist::number_flag;
        if (set_names_.first(name)) {
            pairs_.insert(pairs_.end(), {name, value});
            continue;
        }
        // The last of equal names counts.
        size_t i = 0;
        while (pairs_[i] != name)
            i += 2;
        pairs_[i + 1] = value;
    }
    return sets_.enter(pairs_);
}

bool NetlistParser::read_flag(std::string_view what) {
    if (json_.peek() == JsonReader::Kind::boolean)
        return json_.scalar_text(what) == "true";
    return json_.integer(what) != 0;
}

int32_t NetlistParser::read_offset() {
    const int64_t value = json_.integer("'offset'");
    if (value < INT32_MIN || value > INT32_MAX)
        json_.fail("'offset' must fit 32 bits, " + std::to_string(value) + " does not");
    return static_cast<int32_t>(value);
}

uint32_t NetlistParser::read_bits(ChunkVector<uint32_t>& out) {
    const size_t first = out.size();
    json_.begin_array("the list of bits");
    while (json_.next_element())
        out.push_back(read_bit());
    if (out.size() > max_objects)
        json_.fail("the netlist connects more than " + std::to_string(max_objects) + " bits");
    return static_cast<uint32_t>(out.size() - first);
}

uint32_t NetlistParser::read_bit() {
    if (json_.peek() == JsonReader::Kind::string)
        return constant_net(json_.string("a bit"));
    const int64_t bit = json_.integer("a bit");
    if (bit < 0 || bit > INT32_MAX)
        json_.fail("the number of a bit must be from 0 to 2147483647, not " + std::to_string(bit));
    return net_of_bit(static_cast<uint32_t>(bit));
}

uint32_t NetlistParser::net_of_bit(uint32_t bit) {
    uint32_t& net = net_of_bit_[bit];
    if (net == none) {
        net = new_net();
        n_.nets.back().bit = bit;
        net_of_bit_.added();
    }
    return net;
}

uint32_t NetlistParser::constant_net(std::string_view text) {
    for (uint32_t i = 0; i < 4; ++i) {
        if (text != Netlist::constant_bits[i])
            continue;
        if (constants_[i] == none)
            constants_[i] = new_net();
        return constants_[i];
    }
    json_.fail("a bit must be a number or one of \"0\", \"1\", \"x\", \"z\", not \"" +
               std::string(text.substr(0, 40)) + "\"");
}

uint32_t NetlistParser::new_net() {
    const auto number = static_cast<uint32_t>(n_.nets.size() - module().nets.first);
    n_.nets.push_back({none, 0, 0, 0, 0});
    return number;
}

// Gives each net of the module the best of its names: a port's before another visible one before a hidden
// one, and among equals the first in the file.
void NetlistParser::name_nets() {
    Netlist::Module& m = module();
    m.wires.count = static_cast<uint32_t>(n_.wires.size()) - m.wires.first;
    for (uint32_t i = 0; i < 4; ++i)
        if (constants_[i] != none)
            n_.nets[m.nets.first + constants_[i]].bit = i;
    const auto name_all = [&](auto&& wanted) {
        for (uint32_t w = m.wires.first; w < m.wires.first + m.wires.count; ++w) {
            const Netlist::Wire& wire = n_.wires[w];
            if (!wanted(wire))
                continue;
            for (uint32_t b = 0; b < wire.width; ++b) {
                const uint32_t local = n_.bits[wire.bits + b];
                Netlist::Net& net = n_.nets[m.nets.first + local];
                const bool constant = std::find(constants_, constants_ + 4, local) != constants_ + 4;
                if (net.wire != none || constant)
                    continue;
                net.wire = w;
                net.bit = b;
            }
        }
    };
    port_names_.start();
    for (uint32_t p = m.ports.first; p < m.ports.first + m.ports.count; ++p)
        port_names_.first(n_.ports[p].name);
    if (m.ports.count > 0)
        name_all([&](const Netlist::Wire& wire) { return port_names_.seen(wire.name); });
    name_all([](const Netlist::Wire& wire) { return !wire.hidden; });
    name_all([](const Netlist::Wire& wire) { return wire.hidden; });
    for (uint32_t local = 0; local < m.nets.count; ++local) {
        Netlist::Net& net = n_.nets[m.nets.first + local];
        if (net.wire != none || std::find(constants_, constants_ + 4, local) != constants_ + 4)
            continue;
        // No name in the file: make one, as a hidden wire.
        const auto bits = static_cast<uint32_t>(n_.bits.size());
        n_.bits.push_back(local);
        n_.wires.push_back({unused_name(net.bit), 0, bits, 0, 1, 1, 0, 0});
        net.wire = static_cast<uint32_t>(n_.wires.size() - 1);
        net.bit = 0;
    }
}

NameId NetlistParser::unused_name(uint32_t bit) {
    std::string text = "$net" + std::to_string(bit);
    for (;;) {
        const NameId name = n_.names.intern(text);
        if (wire_names_.first(name))
            return name;
        text += '_';
    }
}

// Ties cells to the modules they refer to. Modules may come in any order, so this waits for the last one.
void NetlistParser::resolve_modules() {
    const NameId blackbox = n_.names.find("blackbox"), whitebox = n_.names.find("whitebox");
    for (Netlist::Module& m : n_.modules)
        for (const NameId name : {blackbox, whitebox})
            if (const uint32_t value = name == none ? none : n_.value_in_set(m.attributes, name);
                value != none)
                m.blackbox |= n_.names.text(value & ~Netlist::number_flag).find_first_not_of('0') !=
                              std::string_view::npos;
    for (Shape& shape : n_.shapes) {
        const auto it = n_.module_of_name.find(shape.type);
        if (it == n_.module_of_name.end())
            continue;
        const Netlist::Module& m = n_.modules[it->second];
        shape.module = it->second;
        shape.hierarchical = !m.blackbox;
        for (Shape::Port& port : shape.ports) {
            const uint32_t declared = n_.find_port(m, port.name);
            if (declared == none)
                continue;
            if (port.direction == Direction::unknown)
                port.direction = n_.ports[declared].direction;
            if (port.width <= n_.ports[declared].width) {
                port.offset = n_.ports[declared].offset;
                port.upto = n_.ports[declared].upto;
            }
        }
    }
}

// True if a cell of this shape has a pin for each bit of each port of its module.
bool NetlistParser::completes(const Shape& shape, const Netlist::Module& m) const {
    size_t found = 0;
    for (const Shape::Port& port : shape.ports) {
        const uint32_t declared = n_.find_port(m, port.name);
        if (declared == none)
            continue;
        ++found;
        if (port.width < n_.ports[declared].width)
            return false;
    }
    return found == m.ports.count;
}

// A port that a cell leaves out still is a port: gives it unconnected pins.
void NetlistParser::connect_missing_ports() {
    const auto old_shapes = static_cast<uint32_t>(n_.shapes.size());
    std::vector<uint32_t> replaced(old_shapes, none);
    bool any = false;
    for (uint32_t s = 0; s < old_shapes; ++s) {
        if (n_.shapes[s].module == none)
            continue;
        const Netlist::Module& m = n_.modules[n_.shapes[s].module];
        if (completes(n_.shapes[s], m))
            continue;
        std::vector<Shape::Port> ports = n_.shapes[s].ports;
        for (uint32_t p = m.ports.first; p < m.ports.first + m.ports.count; ++p) {
            const Netlist::Port& declared = n_.ports[p];
            const auto it = std::find_if(ports.begin(), ports.end(),
                                         [&](const Shape::Port& port) { return port.name == declared.name; });
            Shape::Port& port =
                it != ports.end()
                    ? *it
                    : ports.emplace_back(Shape::Port{declared.name, 0, 0, 0, Direction::unknown, false});
            if (port.direction == Direction::unknown)
                port.direction = declared.direction;
            port.width = std::max(port.width, declared.width);
            port.offset = declared.offset;
            port.upto = declared.upto;
        }
        const uint32_t module_number = n_.shapes[s].module;
        const bool hierarchical = n_.shapes[s].hierarchical;
        replaced[s] = shapes_.enter(n_.shapes[s].type, ports);
        n_.shapes[replaced[s]].module = module_number;
        n_.shapes[replaced[s]].hierarchical = hierarchical;
        any = true;
    }
    if (!any)
        return;
    ChunkVector<uint32_t> pins;
    for (Netlist::Module& m : n_.modules) {
        const auto first = static_cast<uint32_t>(pins.size());
        for (uint32_t c = m.cells.first; c < m.cells.first + m.cells.count; ++c) {
            Netlist::Cell& cell = n_.cells[c];
            const uint32_t old_pins = std::exchange(cell.pins, static_cast<uint32_t>(pins.size()));
            const Shape& before = n_.shapes[cell.shape];
            if (replaced[cell.shape] == none) {
                for (uint32_t i = 0; i < before.pins; ++i)
                    pins.push_back(n_.pins[old_pins + i]);
                continue;
            }
            const Shape& after = n_.shapes[replaced[cell.shape]];
            if (pins.size() + after.pins > max_objects)
                json_.fail("the netlist has more than " + std::to_string(max_objects) + " pins");
            for (size_t p = 0; p < after.ports.size(); ++p) {
                const uint32_t connected = p < before.ports.size() ? before.ports[p].width : 0;
                for (uint32_t i = 0; i < after.ports[p].width; ++i)
                    pins.push_back(i < connected ? n_.pins[old_pins + before.ports[p].first_pin + i] : none);
            }
            cell.shape = replaced[cell.shape] & 0x7fffffffu;
        }
        m.pins = {first, static_cast<uint32_t>(pins.size()) - first};
    }
    n_.pins.swap(pins);
}

// Lists the pins of each net and counts what drives and what loads it.
void NetlistParser::connect_nets() {
    for (Netlist::Module& m : n_.modules) {
        m.net_pins.first = static_cast<uint32_t>(n_.net_pins.size());
        std::vector<uint32_t> place(size_t(m.nets.count) + 1, 0);
        for (uint32_t i = 0; i < m.pins.count; ++i)
            if (const uint32_t net = n_.pins[m.pins.first + i]; net != none)
                ++place[net + 1];
        for (uint32_t net = 0; net < m.nets.count; ++net)
            place[net + 1] += place[net];
        m.net_pins.count = place[m.nets.count];
        for (uint32_t net = 0; net < m.nets.count; ++net)
            n_.nets[m.nets.first + net].first_pin = place[net];
        for (uint32_t i = 0; i < m.net_pins.count; ++i)
            n_.net_pins.push_back(0);
        for (uint32_t i = 0; i < m.pins.count; ++i)
            if (const uint32_t net = n_.pins[m.pins.first + i]; net != none)
                n_.net_pins[m.net_pins.first + place[net]++] = i;
        for (uint32_t c = m.cells.first; c < m.cells.first + m.cells.count; ++c) {
            const Netlist::Cell& cell = n_.cells[c];
            const Shape& shape = n_.shapes[cell.shape];
            for (const Shape::Port& port : shape.ports)
                for (uint32_t i = port.first_pin; i < port.first_pin + port.width; ++i)
                    if (const uint32_t net = n_.pins[cell.pins + i]; net != none) {
                        n_.nets[m.nets.first + net].loads += port.direction != Direction::output;
                        n_.nets[m.nets.first + net].drivers +=
                            port.direction == Direction::output || port.direction == Direction::inout;
                    }
            if (shape.module != none)
                ++n_.modules[shape.module].instances;
        }
        for (uint32_t p = m.ports.first; p < m.ports.first + m.ports.count; ++p)
            for (uint32_t i = 0; i < n_.ports[p].width; ++i) {
                Netlist::Net& net = n_.nets[m.nets.first + n_.bits[n_.ports[p].bits + i]];
                net.loads += n_.ports[p].direction != Direction::input;
                net.drivers += n_.ports[p].direction != Direction::output;
            }
    }
}

} // namespace

std::unique_ptr<Netlist> read_netlist(ByteSource& source, const std::string& name) {
    NetlistParser parser(source, name);
    return parser.read();
}

std::unique_ptr<Netlist> read_netlist_file(const std::string& path,
                                           const std::function<bool()>& interrupted) {
    const std::unique_ptr<ByteSource> source = open_byte_source(path);
    if (!interrupted)
        return read_netlist(*source, path);
    InterruptibleSource polled(*source, path, interrupted);
    return read_netlist(polled, path);
}

} // namespace design
