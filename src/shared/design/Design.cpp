#include "design/Design.h"

#include "design/Error.h"

#include <algorithm>

namespace design {

namespace {

constexpr uint32_t max_hierarchy_depth = 10000;

bool is_true(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0 ") != std::string_view::npos;
}

} // namespace

Design::Design(std::unique_ptr<Netlist> netlist, std::string_view top, std::string file)
    : file_(std::move(file)), netlist_(std::move(netlist)) {
    const uint32_t module = choose_top(top);
    name_ = netlist_->names.text(netlist_->modules[module].name);
    unfold(module);
    take_object_values();
}

Design::~Design() = default;

void Design::close() noexcept {
    netlist_.reset();
    std::vector<Scope>().swap(scopes_);
    values_.clear();
    attribute_names_.clear();
    ports_by_net_.clear();
    cells_.retire();
    nets_.retire();
    pins_.retire();
    ports_.retire();
}

void Design::require_open() const {
    if (!is_open())
        throw Error(Fault::dead_object, "The design '" + name_ + "' was closed or read again.");
}

uint32_t Design::choose_top(std::string_view top) const {
    const Netlist& n = *netlist_;
    if (n.modules.empty())
        throw Error(Fault::no_top, "The netlist holds no module, so there is no top module to choose.");
    if (!top.empty()) {
        const NameId name = n.names.find(top);
        if (const auto it = n.module_of_name.find(name); name != none && it != n.module_of_name.end())
            return it->second;
    }
    std::vector<uint32_t> roots;
    const NameId top_attribute = n.names.find("top");
    for (uint32_t i = 0; i < n.modules.size(); ++i) {
        const Netlist::Module& m = n.modules[i];
        if (top.empty() && top_attribute != none)
            if (const uint32_t value = n.value_in_set(m.attributes, top_attribute);
                value != none && is_true(n.names.text(value & ~Netlist::number_flag)))
                return i;
        if (m.instances == 0 && !m.blackbox)
            roots.push_back(i);
    }
    if (top.empty() && roots.size() == 1)
        return roots[0];
    if (roots.empty())
        for (uint32_t i = 0; i < n.modules.size(); ++i)
            roots.push_back(i);
    std::string text = top.empty() ? "The netlist has no single top module" : "The netlist has no module '";
    if (!top.empty())
        text += std::string(top) + "'";
    text += "; candidates are ";
    constexpr size_t most_listed = 10;
    for (size_t i = 0; i < roots.size() && i < most_listed; ++i)
        text += (i ? ", '" : "'") + std::string(n.names.text(n.modules[roots[i]].name).substr(0, 200)) + "'";
    text += roots.size() > most_listed ? ", ... ." : ".";
    if (top.empty())
        text += " Name one with -top.";
    throw Error(Fault::no_top, text);
}

// Counts what unfolding will make, module by module from the leaves up, so that a loop or an endless
// hierarchy is refused before any memory is asked for.
void Design::count_objects(uint32_t top, uint64_t (&totals)[3], uint64_t& scopes) const {
    const Netlist& n = *netlist_;
    struct Count {
        uint64_t cells = 0, nets = 0, pins = 0, scopes = 0;
        uint32_t height = 0;
        bool open = false, done = false;
    };
    std::vector<Count> counts(n.modules.size());
    std::vector<std::pair<uint32_t, uint32_t>> path{{top, 0}}; // module, next cell
    counts[top].open = true;
    const auto add = [](uint64_t& sum, uint64_t more) { sum = std::min<uint64_t>(sum + more, 1ull << 60); };
    while (!path.empty()) {
        auto& [number, next] = path.back();
        const Netlist::Module& m = n.modules[number];
        Count& count = counts[number];
        bool descended = false;
        while (next < m.cells.count) {
            const Shape& shape = n.shapes[n.cells[m.cells.first + next].shape];
            if (!shape.hierarchical) {
                ++next;
                continue;
            }
            const Count& inner = counts[shape.module];
            if (inner.open) {
                std::string text = "The hierarchy has a loop: ";
                bool in_loop = false;
                for (const auto& [step, cell] : path)
                    if (in_loop = in_loop || step == shape.module; in_loop)
                        text +=
                            "'" + std::string(n.names.text(n.modules[step].name).substr(0, 200)) + "' holds ";
                throw Error(Fault::bad_hierarchy,
                            text + "'" + std::string(n.names.text(shape.type).substr(0, 200)) + "'.");
            }
            if (!inner.done) {
                path.emplace_back(shape.module, 0);
                counts[shape.module].open = true;
                descended = true;
                break;
            }
            add(count.cells, inner.cells);
            add(count.nets, inner.nets);
            add(count.pins, inner.pins);
            add(count.scopes, inner.scopes);
            count.height = std::max(count.height, inner.height + 1);
            ++next;
        }
        if (descended)
            continue;
        add(count.cells, m.cells.count);
        add(count.nets, m.nets.count);
        add(count.pins, m.pins.count);
        add(count.scopes, 1);
        count.open = false;
        count.done = true;
        path.pop_back();
    }
    if (counts[top].height >= max_hierarchy_depth)
        throw Error(Fault::bad_hierarchy, "The hierarchy under '" + name_ + "' is " +
                                              std::to_string(counts[top].height) + " levels deep; at most " +
                                              std::to_string(max_hierarchy_depth) + " are supported.");
    totals[0] = counts[top].cells;
    totals[1] = counts[top].nets;
    totals[2] = counts[top].pins;
    scopes = counts[top].scopes;
    for (const uint64_t total : {totals[0], totals[1], totals[2], scopes})
        if (total > max_objects)
            throw Error(Fault::bad_hierarchy, "The design '" + name_ + "' unfolds into more than " +
                                                  std::to_string(max_objects) +
                                                  " cells, nets or pins, which is not supported.");
}

void Design::unfold(uint32_t top) {
    const Netlist& n = *netlist_;
    uint64_t totals[3];
    uint64_t scope_count;
    count_objects(top, totals, scope_count);
    cells_.allocate(this, static_cast<uint32_t>(totals[0]));
    nets_.allocate(this, static_cast<uint32_t>(totals[1]));
    pins_.allocate(this, static_cast<uint32_t>(totals[2]));
    scopes_.reserve(scope_count);
    scopes_.push_back({none, top, 0, 0, 0, 0});
    uint32_t cell = 0, net = 0, pin = 0;
    for (uint32_t s = 0; s < scopes_.size(); ++s) {
        Scope& scope = scopes_[s];
        scope.first_cell = cell;
        scope.first_net = net;
        scope.first_pin = pin;
        const Netlist::Module& m = n.modules[scope.module];
        for (uint32_t i = 0; i < m.nets.count; ++i)
            nets_[net++]->scope_ = s;
        for (uint32_t c = m.cells.first; c < m.cells.first + m.cells.count; ++c, ++cell) {
            const Shape& shape = n.shapes[n.cells[c].shape];
            Cell& object = *cells_[cell];
            object.scope_ = s;
            object.inner_ = none;
            if (shape.hierarchical) {
                object.inner_ = static_cast<uint32_t>(scopes_.size());
                scopes_.push_back({cell, shape.module, 0, 0, 0, scope.depth + 1});
                longest_scope_name_ = std::max(longest_scope_name_, n.names.text(n.cells[c].name).size());
            }
            for (uint32_t i = 0; i < shape.pins; ++i)
                pins_[pin++]->cell_ = cell;
        }
    }
    const Netlist::Module& m = n.modules[top];
    uint32_t port_count = 0;
    for (uint32_t p = m.ports.first; p < m.ports.first + m.ports.count; ++p)
        port_count += n.ports[p].width;
    ports_.allocate(this, port_count);
    uint32_t port = 0;
    for (uint32_t p = m.ports.first; p < m.ports.first + m.ports.count; ++p)
        for (uint32_t bit = 0; bit < n.ports[p].width; ++bit, ++port) {
            ports_[port]->port_ = p;
            ports_[port]->bit_ = bit;
        }
}

template <>
Netlist::Range Design::range<Cell>(const Scope& scope) const {
    return {scope.first_cell, module_of(scope).cells.count};
}
template <>
Netlist::Range Design::range<Net>(const Scope& scope) const {
    return {scope.first_net, module_of(scope).nets.count};
}
template <>
Netlist::Range Design::range<Pin>(const Scope& scope) const {
    return {scope.first_pin, module_of(scope).pins.count};
}
template <>
Netlist::Range Design::range<Port>(const Scope& scope) const {
    return {0, scope.cell == none ? ports_.size() : 0};
}

// Values that a design was written with, besides the attributes that are in their own places.
void Design::take_object_values() {
    Netlist& n = *netlist_;
    Netlist::Module& top = n.modules[scopes_[0].module];
    const NameId attribute = n.names.find(object_values_attribute);
    const uint32_t value = attribute == none ? none : n.value_in_set(top.attributes, attribute);
    if (value == none)
        return;
    const auto set = static_cast<uint32_t>(n.sets.size());
    n.sets.push_back(n.sets[top.attributes] - 1);
    for (uint32_t i = 0; i < n.sets[top.attributes]; ++i)
        if (const uint32_t name = n.sets[top.attributes + 1 + 2 * size_t(i)]; name != attribute) {
            n.sets.push_back(name);
            n.sets.push_back(n.sets[top.attributes + 2 + 2 * size_t(i)]);
        }
    top.attributes = set;
    std::string_view lines = n.names.text(value & ~Netlist::number_flag);
    while (!lines.empty()) {
        const size_t end = std::min(lines.find('\n'), lines.size());
        take_object_value(lines.substr(0, end));
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
}

// A line about an object that is no longer there is passed over: other tools may have changed the netlist.
void Design::take_object_value(std::string_view line) {
    std::string fields[4];
    size_t field = 0;
    for (size_t i = 0; i < line.size(); ++i) {
        char c = line[i];
        if (c == '\t') {
            if (++field == std::size(fields))
                return;
            continue;
        }
        if (c == '\\' && i + 1 < line.size()) {
            c = line[++i];
            c = c == 't' ? '\t' : c == 'n' ? '\n' : c;
        }
        fields[field] += c;
    }
    if (field != 3 || fields[1].empty())
        return;
    const auto set = [&](auto* object) {
        if (object->name() == fields[2])
            values_[{object->object_class, netlist_->names.intern(fields[1])}][object->index()] =
                netlist_->names.intern(fields[3]);
    };
    if (fields[0] == class_name(ObjectClass::cell))
        find<Cell>(fields[2], set);
    else if (fields[0] == class_name(ObjectClass::net))
        find<Net>(fields[2], set);
    else if (fields[0] == class_name(ObjectClass::pin))
        find<Pin>(fields[2], set);
    else if (fields[0] == class_name(ObjectClass::port))
        find<Port>(fields[2], set);
}

void Design::append_path(std::string& out, uint32_t scope) const {
    // Written from the innermost part backwards, into room made first.
    size_t length = 0;
    for (uint32_t s = scope; scopes_[s].cell != none; s = cells_[scopes_[s].cell]->scope_)
        length += netlist_->names.text(cells_[scopes_[s].cell]->record().name).size() + 1;
    if (length == 0)
        return;
    out.resize(out.size() + length);
    char* end = out.data() + out.size();
    for (uint32_t s = scope; scopes_[s].cell != none; s = cells_[scopes_[s].cell]->scope_) {
        const std::string_view part = netlist_->names.text(cells_[scopes_[s].cell]->record().name);
        *--end = '/';
        end -= part.size();
        part.copy(end, part.size());
    }
}

// Visits each way to read `name` as the path of a scope and a rest, the whole name in the top scope first.
// Names may hold a '/' themselves, so every '/' may or may not be a separator.
void Design::for_each_split(std::string_view name,
                            const std::function<void(uint32_t, std::string_view)>& visit) const {
    std::vector<std::pair<uint32_t, std::string_view>> open{{0, name}};
    while (!open.empty()) {
        const auto [scope, rest] = open.back();
        open.pop_back();
        visit(scope, rest);
        const Netlist::Module& m = module_of(scopes_[scope]);
        for (size_t slash = rest.find('/'); slash != std::string_view::npos && slash <= longest_scope_name_;
             slash = rest.find('/', slash + 1)) {
            const NameId id = netlist_->names.find(rest.substr(0, slash));
            const uint32_t position = id == none ? none : netlist_->find_cell(m, id);
            if (position == none)
                continue;
            const uint32_t inner = cells_[scopes_[scope].first_cell + (position - m.cells.first)]->inner_;
            if (inner != none)
                open.emplace_back(inner, rest.substr(slash + 1));
        }
    }
}

namespace {

// Bits of a wire or port that `name` stands for: all of them by its bare name, one by "name[index]".
// Calls found(item, bit) for each.
template <class Find, class Items, class Found>
void find_bits(const NameTable& names, std::string_view name, const Find& find, const Items& items,
               const Found& found) {
    if (const NameId id = names.find(name); id != none)
        if (const uint32_t at = find(id); at != none)
            for (uint32_t bit = 0; bit < items[at].width; ++bit)
                found(at, bit);
    const BitName split = split_bit_name(name);
    if (!split.has_index)
        return;
    if (const NameId id = names.find(split.base); id != none)
        if (const uint32_t at = find(id); at != none && items[at].width > 1)
            if (const uint32_t bit =
                    bit_of_index(split.index, items[at].width, items[at].offset, items[at].upto);
                bit != none)
                found(at, bit);
}

} // namespace

template <>
void Design::find_in_scope<Cell>(uint32_t scope, std::string_view name,
                                 const std::function<void(Cell*)>& found) const {
    const Netlist::Module& m = module_of(scopes_[scope]);
    const NameId id = netlist_->names.find(name);
    const uint32_t at = id == none ? none : netlist_->find_cell(m, id);
    if (at != none)
        found(cells_[scopes_[scope].first_cell + (at - m.cells.first)]);
}

template <>
void Design::find_in_scope<Net>(uint32_t scope, std::string_view name,
                                const std::function<void(Net*)>& found) const {
    const Netlist& n = *netlist_;
    const Scope& s = scopes_[scope];
    const Netlist::Module& m = module_of(s);
    find_bits(
        n.names, name, [&](NameId id) { return n.find_wire(m, id); }, n.wires,
        [&](uint32_t wire, uint32_t bit) { found(nets_[s.first_net + n.bits[n.wires[wire].bits + bit]]); });
    if (!name.starts_with("<const"))
        return;
    for (uint32_t i = 0; i < m.nets.count; ++i)
        if (const Netlist::Net& net = n.nets[m.nets.first + i];
            net.wire == none && name == Netlist::constant_names[net.bit])
            found(nets_[s.first_net + i]);
}

template <>
void Design::find_in_scope<Pin>(uint32_t scope, std::string_view name,
                                const std::function<void(Pin*)>& found) const {
    const Netlist& n = *netlist_;
    for (size_t slash = name.find('/'); slash != std::string_view::npos; slash = name.find('/', slash + 1))
        find_in_scope<Cell>(scope, name.substr(0, slash), [&](Cell* cell) {
            const Shape& shape = cell->shape();
            const auto find_port = [&](NameId id) {
                for (uint32_t p = 0; p < shape.ports.size(); ++p)
                    if (shape.ports[p].name == id)
                        return p;
                return none;
            };
            find_bits(
                n.names, name.substr(slash + 1), find_port, shape.ports,
                [&](uint32_t port, uint32_t bit) { found(cell->pin(shape.ports[port].first_pin + bit)); });
        });
}

template <>
void Design::find_in_scope<Port>(uint32_t scope, std::string_view name,
                                 const std::function<void(Port*)>& found) const {
    if (scope != 0)
        return;
    const Netlist& n = *netlist_;
    const Netlist::Module& m = module_of(scopes_[0]);
    find_bits(
        n.names, name, [&](NameId id) { return n.find_port(m, id); }, n.ports,
        [&](uint32_t port, uint32_t bit) {
            uint32_t number = 0;
            for (uint32_t p = m.ports.first; p < port; ++p)
                number += n.ports[p].width;
            found(ports_[number + bit]);
        });
}

template <class T>
void Design::find(std::string_view name, const std::function<void(T*)>& found) const {
    require_open();
    for_each_split(name,
                   [&](uint32_t scope, std::string_view rest) { find_in_scope<T>(scope, rest, found); });
}
template void Design::find(std::string_view, const std::function<void(Cell*)>&) const;
template void Design::find(std::string_view, const std::function<void(Net*)>&) const;
template void Design::find(std::string_view, const std::function<void(Pin*)>&) const;
template void Design::find(std::string_view, const std::function<void(Port*)>&) const;

std::vector<Port*> Design::ports_of_net(const Net& net) const {
    std::vector<Port*> result;
    if (net.scope() != 0)
        return result;
    if (!ports_sorted_) {
        for (uint32_t i = 0; i < ports_.size(); ++i)
            ports_by_net_.emplace_back(ports_[i]->net()->index(), i);
        std::sort(ports_by_net_.begin(), ports_by_net_.end());
        ports_sorted_ = true;
    }
    const uint32_t wanted = net.index();
    for (auto it = std::lower_bound(ports_by_net_.begin(), ports_by_net_.end(), std::pair{wanted, 0u});
         it != ports_by_net_.end() && it->first == wanted; ++it)
        result.push_back(ports_[it->second]);
    return result;
}

const Design::Values* Design::values(ObjectClass cls, NameId property) const {
    const auto it = values_.find({cls, property});
    return it == values_.end() ? nullptr : &it->second;
}

Design::Values& Design::values_for_change(ObjectClass cls, NameId property) {
    return values_[{cls, property}];
}

Design::Sets Design::sets_of(ObjectClass cls, uint32_t index) const {
    const Netlist& n = *netlist_;
    switch (cls) {
    case ObjectClass::design: {
        const Netlist::Module& m = module_of(scopes_[0]);
        return {m.attributes, m.parameters};
    }
    case ObjectClass::cell: {
        const Netlist::Cell& cell = cells_[index]->record();
        return {cell.attributes, cell.parameters};
    }
    case ObjectClass::net: {
        const Netlist::Wire* wire = nets_[index]->wire();
        return {wire ? wire->attributes : 0, 0};
    }
    case ObjectClass::port: {
        const uint32_t wire = n.find_wire(module_of(scopes_[0]), ports_[index]->record().name);
        return {wire == none ? 0 : n.wires[wire].attributes, 0};
    }
    default:
        return {0, 0};
    }
}

// Walks the distinct sets only, as a million cells have few of them that differ in names.
void Design::collect_attribute_names() const {
    const Netlist& n = *netlist_;
    attribute_names_.assign(object_class_count, {});
    std::vector<bool> seen_sets(n.sets.size());
    for (size_t c = 0; c < object_class_count; ++c) {
        seen_sets.assign(seen_sets.size(), false);
        std::vector<NameId>& names = attribute_names_[c];
        std::vector<bool> seen_names(n.names.size());
        const auto add = [&](uint32_t set) {
            if (seen_sets[set])
                return;
            seen_sets[set] = true;
            for (uint32_t i = 0; i < n.sets[set]; ++i)
                if (const NameId name = n.sets[set + 1 + 2 * size_t(i)]; !seen_names[name]) {
                    seen_names[name] = true;
                    names.push_back(name);
                }
        };
        switch (static_cast<ObjectClass>(c)) {
        case ObjectClass::design:
            add(module_of(scopes_[0]).attributes);
            add(module_of(scopes_[0]).parameters);
            break;
        case ObjectClass::cell:
            for (size_t i = 0; i < n.cells.size(); ++i) {
                add(n.cells[i].attributes);
                add(n.cells[i].parameters);
            }
            break;
        case ObjectClass::net:
        case ObjectClass::port:
            for (size_t i = 0; i < n.wires.size(); ++i)
                add(n.wires[i].attributes);
            break;
        default:
            break;
        }
        std::sort(names.begin(), names.end());
    }
}

const std::vector<NameId>& Design::attribute_names(ObjectClass cls) const {
    if (attribute_names_.empty())
        collect_attribute_names();
    return attribute_names_[static_cast<size_t>(cls)];
}

bool Design::has_attribute(ObjectClass cls, NameId name) const {
    const std::vector<NameId>& names = attribute_names(cls);
    return std::binary_search(names.begin(), names.end(), name);
}

size_t Design::memory() const {
    return netlist().memory() + scopes_.capacity() * sizeof(Scope) + size_t(cells_.size()) * sizeof(Cell) +
           size_t(nets_.size()) * sizeof(Net) + size_t(pins_.size()) * sizeof(Pin) +
           size_t(ports_.size()) * sizeof(Port);
}

} // namespace design
