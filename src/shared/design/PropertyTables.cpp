#include "design/PropertyTables.h"

#include "design/Design.h"
#include "design/Objects.h"

#include <type_traits>

namespace design {

namespace {

template <class T>
const T& object_at(const Design& design, uint32_t index) {
    if constexpr (std::is_same_v<T, Design>)
        return design;
    else
        return *design.object<T>(index);
}

/// A computed property; what `read` returns gives the type: bool, a number, a Direction, a Name, a text.
template <class T, auto read>
PropertySpec computed(const char* name, const char* description) {
    using Result = std::remove_cvref_t<std::invoke_result_t<decltype(read), const T&>>;
    PropertySpec spec;
    spec.name = name;
    spec.description = description;
    spec.read_only = true;
    if constexpr (std::is_same_v<Result, Name>) {
        spec.interned = [](const Design& d, uint32_t i) { return std::invoke(read, object_at<T>(d, i)).id; };
    } else if constexpr (std::is_integral_v<Result> || std::is_enum_v<Result>) {
        spec.type = std::is_same_v<Result, bool>        ? ValueType::boolean
                    : std::is_same_v<Result, Direction> ? ValueType::enumeration
                                                        : ValueType::integer;
        if (spec.type == ValueType::enumeration)
            spec.enum_values = {"unknown", "in", "out", "inout"};
        spec.number = [](const Design& d, uint32_t i) {
            return static_cast<int64_t>(std::invoke(read, object_at<T>(d, i)));
        };
    } else {
        spec.append = [](const Design& d, uint32_t i, std::string& out) {
            out += std::invoke(read, object_at<T>(d, i));
        };
    }
    return spec;
}

/// A computed text that is appended to a buffer, which spares an allocation for each object.
template <class T, auto append>
PropertySpec appended(const char* name, const char* description) {
    PropertySpec spec;
    spec.name = name;
    spec.description = description;
    spec.read_only = true;
    spec.append = [](const Design& d, uint32_t i, std::string& out) {
        std::invoke(append, object_at<T>(d, i), out);
    };
    return spec;
}

/// A property whose value is kept: set by the user, or an attribute of the same name in the file.
PropertySpec stored(const char* name, ValueType type, const char* description,
                    std::optional<std::string> default_value = {},
                    std::vector<std::string> enum_values = {}) {
    PropertySpec spec;
    spec.name = name;
    spec.type = type;
    spec.description = description;
    spec.default_value = std::move(default_value);
    spec.enum_values = std::move(enum_values);
    return spec;
}

/// What every class begins with.
template <class T>
PropertySpec class_property() {
    return computed<T, [](const T&) { return std::string(class_name(T::object_class)); }>(
        "class", "Class of the object");
}

template <class T>
std::string name_or_empty(const T* object) {
    return object ? object->name() : std::string();
}

} // namespace

std::vector<PropertySpec> built_in_properties(ObjectClass cls) {
    using enum ValueType;
    switch (cls) {
    case ObjectClass::design:
        return {
            computed<Design, &Design::name>("name", "Name of the design, which is that of its top module"),
            class_property<Design>(),
            computed<Design, &Design::name>("top", "Name of the top module"),
            computed<Design, &Design::file>("file_name", "File that the netlist was read from"),
            computed<Design, [](const Design& d) { return Name{d.netlist().creator}; }>(
                "creator", "Program that wrote the netlist"),
            computed<Design, &Design::count<Cell>>("cell_count", "Number of cells on all levels"),
            computed<Design, [](const Design& d) { return d.count<Cell>() + 1 - d.scopes().size(); }>(
                "leaf_cell_count", "Number of cells that have no inside"),
            computed<Design, &Design::count<Net>>("net_count", "Number of nets on all levels"),
            computed<Design, &Design::count<Pin>>("pin_count", "Number of pins of cells on all levels"),
            computed<Design, &Design::count<Port>>("port_count", "Number of ports, each bit counted"),
            computed<Design, [](const Design& d) { return d.netlist().modules.size(); }>(
                "module_count", "Number of modules in the file"),
            computed<Design, &Design::memory>("memory", "Bytes of memory that the netlist takes"),
            stored("part", string, "Device that the design is meant for", ""),
        };
    case ObjectClass::cell:
        return {
            appended<Cell, &Cell::append_name>("name", "Full hierarchical name"),
            class_property<Cell>(),
            computed<Cell, &Cell::ref_name>("ref_name", "Module or library cell that it is an instance of"),
            computed<Cell, &Cell::local_name>("local_name", "Last part of the name"),
            computed<Cell, [](const Cell& c) { return name_or_empty(c.parent()); }>(
                "parent", "Cell that holds it; empty at the top"),
            computed<Cell, &Cell::depth>("depth", "Level of hierarchy, 0 at the top"),
            computed<Cell, &Cell::is_leaf>("is_leaf", "True if it has no inside"),
            computed<Cell, [](const Cell& c) { return !c.is_leaf(); }>("is_hierarchical",
                                                                       "True if it has an inside"),
            computed<Cell, &Cell::is_blackbox>("is_blackbox",
                                               "True if its module is known by its ports only"),
            computed<Cell, [](const Cell& c) { return c.record().hidden; }>(
                "is_hidden", "True if a tool made up its name"),
            computed<Cell, &Cell::pin_count>("pin_count", "Number of pins, each bit counted"),
            computed<Cell, &Cell::fanout>("fanout", "Number of loads on the nets that its outputs drive"),
            stored("dont_touch", boolean, "Keeps the cell as it is in every optimization", "0"),
            stored("keep", boolean, "Keeps the cell even if nothing uses its outputs", "0"),
            stored("loc", string, "Site that the cell has to be placed on", ""),
            stored("bel", string, "Element within the site", ""),
            stored("is_fixed", boolean, "Keeps the cell where it is placed", "0"),
        };
    case ObjectClass::net:
        return {
            appended<Net, &Net::append_name>("name", "Full hierarchical name"),
            class_property<Net>(),
            appended<Net, &Net::append_local_name>("local_name", "Name within its module"),
            computed<Net, [](const Net& n) { return name_or_empty(n.parent()); }>(
                "parent", "Cell that holds it; empty at the top"),
            computed<Net, [](const Net& n) { return n.design().scopes()[n.scope()].depth; }>(
                "depth", "Level of hierarchy, 0 at the top"),
            computed<Net, &Net::bus_name>("bus_name", "Name without an index"),
            computed<Net,
                     [](const Net& n) { return n.is_bus() ? std::to_string(n.bus_index()) : std::string(); }>(
                "bus_index", "Index in its bus; empty if it is no bit of a bus"),
            computed<Net, &Net::bus_width>("bus_width", "Number of bits of its bus"),
            computed<Net, &Net::pin_count>("pin_count", "Number of pins of cells on it"),
            computed<Net, &Net::fanout>("fanout", "Number of loads on its level of hierarchy"),
            computed<Net, &Net::driver_count>("driver_count", "Number of drivers on its level of hierarchy"),
            computed<Net, &Net::is_constant>("is_constant", "True if it is tied to a constant"),
            computed<Net,
                     [](const Net& n) {
                         return std::string(n.is_constant() ? Netlist::constant_bits[n.record().bit] : "");
                     }>("constant_value", "0, 1, x or z; empty if it is no constant"),
            computed<Net, [](const Net& n) { return n.wire() && n.wire()->hidden; }>(
                "is_hidden", "True if a tool made up its name"),
            stored("dont_touch", boolean, "Keeps the net as it is in every optimization", "0"),
            stored("keep", boolean, "Keeps the net even if nothing uses it", "0"),
            stored("type", enumeration, "What the net carries", "signal",
                   {"signal", "clock", "reset", "power", "ground"}),
            stored("weight", integer, "Importance in placement", "1"),
        };
    case ObjectClass::pin:
        return {
            appended<Pin, &Pin::append_name>("name", "Full hierarchical name"),
            class_property<Pin>(),
            computed<Pin, &Pin::port_name>("ref_pin_name", "Port of the cell, without an index"),
            computed<Pin, [](const Pin& p) { return p.cell()->ref_name(); }>(
                "ref_name", "Module or library cell that its cell is an instance of"),
            computed<Pin, &Pin::direction>("direction", "Direction as seen by the cell"),
            computed<Pin, &Pin::bit>("bit", "Bit of the port, 0 the lowest"),
            computed<Pin, [](const Pin& p) { return p.cell()->name(); }>("cell", "Cell that it belongs to"),
            computed<Pin, [](const Pin& p) { return name_or_empty(p.net()); }>(
                "net", "Net that it is connected to; empty if none"),
            computed<Pin, [](const Pin& p) { return p.net() != nullptr; }>("is_connected",
                                                                           "True if it is connected"),
            computed<Pin, [](const Pin& p) { return p.cell()->is_leaf(); }>("is_leaf",
                                                                            "True if its cell has no inside"),
            stored("dont_touch", boolean, "Keeps the connection as it is in every optimization", "0"),
        };
    case ObjectClass::port:
        return {
            appended<Port, &Port::append_name>("name", "Name of the port"),
            class_property<Port>(),
            computed<Port, &Port::direction>("direction", "Direction as seen by the design"),
            computed<Port, &Port::bus_name>("bus_name", "Name without an index"),
            computed<Port, [](const Port&
                                  p) { return p.is_bus() ? std::to_string(p.bus_index()) : std::string(); }>(
                "bus_index", "Index in its bus; empty if it is no bit of a bus"),
            computed<Port, [](const Port& p) { return p.record().width; }>("bus_width",
                                                                           "Number of bits of its bus"),
            computed<Port, [](const Port& p) { return p.net()->name(); }>("net",
                                                                          "Net that it is connected to"),
            stored("loc", string, "Package pin that the port has to be placed on", ""),
            stored("io_standard", string, "Electrical standard", "DEFAULT"),
            stored("drive", integer, "Drive strength in mA", "12"),
            stored("slew", enumeration, "Slew rate", "slow", {"slow", "fast"}),
            stored("pull", enumeration, "Pull resistor", "none", {"none", "up", "down", "keeper"}),
        };
    }
    return {};
}

} // namespace design
