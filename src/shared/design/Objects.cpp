#include "design/Objects.h"

#include "design/Design.h"
#include "design/Error.h"

namespace design {

const char* class_name(ObjectClass cls) {
    static constexpr const char* names[] = {"design", "cell", "net", "pin", "port"};
    return names[static_cast<size_t>(cls)];
}

template <class T>
void Object<T>::throw_dead() {
    throw Error(Fault::dead_object, std::string("This ") + class_name(T::object_class) +
                                        " no longer exists: its design was closed or read again.");
}
template class Object<Cell>;
template class Object<Net>;
template class Object<Pin>;
template class Object<Port>;

const Netlist::Cell& Cell::record() const {
    const Design& d = design();
    const Design::Scope& s = d.scopes()[scope_];
    return d.netlist().cells[d.module_of(s).cells.first + (index() - s.first_cell)];
}

const Shape& Cell::shape() const {
    return design().netlist().shapes[record().shape];
}

void Cell::append_name(std::string& out) const {
    const Design& d = design();
    d.append_path(out, scope_);
    out += d.netlist().names.text(record().name);
}

Name Cell::local_name() const {
    return {record().name};
}
Name Cell::ref_name() const {
    return {shape().type};
}

bool Cell::is_leaf() const {
    design();
    return inner_ == none;
}

bool Cell::is_blackbox() const {
    const uint32_t module = shape().module;
    return module != none && design().netlist().modules[module].blackbox;
}

Cell* Cell::parent() const {
    const Design& d = design();
    const uint32_t cell = d.scopes()[scope_].cell;
    return cell == none ? nullptr : d.object<Cell>(cell);
}

uint32_t Cell::depth() const {
    return design().scopes()[scope_].depth;
}
uint32_t Cell::pin_count() const {
    return shape().pins;
}

Pin* Cell::pin(uint32_t i) const {
    const Design& d = design();
    const Design::Scope& s = d.scopes()[scope_];
    return d.object<Pin>(s.first_pin + (record().pins - d.module_of(s).pins.first) + i);
}

uint32_t Cell::fanout() const {
    const Design& d = design();
    const Netlist& n = d.netlist();
    const Netlist::Module& m = d.module_of(d.scopes()[scope_]);
    const Netlist::Cell& cell = record();
    uint64_t loads = 0;
    for (const Shape::Port& port : n.shapes[cell.shape].ports) {
        if (port.direction != Direction::output && port.direction != Direction::inout)
            continue;
        for (uint32_t i = 0; i < port.width; ++i)
            if (const uint32_t net = n.pins[cell.pins + port.first_pin + i]; net != none)
                loads += n.nets[m.nets.first + net].loads;
    }
    return static_cast<uint32_t>(std::min<uint64_t>(loads, UINT32_MAX));
}

uint32_t Net::local_index() const {
    return index() - design().scopes()[scope_].first_net;
}

const Netlist::Net& Net::record() const {
    const Design& d = design();
    const Design::Scope& s = d.scopes()[scope_];
    return d.netlist().nets[d.module_of(s).nets.first + (index() - s.first_net)];
}

const Netlist::Wire* Net::wire() const {
    const uint32_t wire = record().wire;
    return wire == none ? nullptr : &design().netlist().wires[wire];
}

void Net::append_local_name(std::string& out) const {
    const Netlist::Net& net = record();
    if (const Netlist::Wire* w = wire())
        design().netlist().append_bit_name(out, w->name, net.bit, w->width, w->offset, w->upto);
    else
        out += Netlist::constant_names[net.bit];
}

void Net::append_name(std::string& out) const {
    design().append_path(out, scope_);
    append_local_name(out);
}

Cell* Net::parent() const {
    const Design& d = design();
    const uint32_t cell = d.scopes()[scope_].cell;
    return cell == none ? nullptr : d.object<Cell>(cell);
}

uint32_t Net::pin_count() const {
    const Design& d = design();
    return d.netlist().pin_count(d.module_of(d.scopes()[scope_]), local_index());
}

Pin* Net::pin(uint32_t i) const {
    const Design& d = design();
    const Design::Scope& s = d.scopes()[scope_];
    const Netlist::Module& m = d.module_of(s);
    return d.object<Pin>(s.first_pin + d.netlist().net_pins[m.net_pins.first + record().first_pin + i]);
}

uint32_t Net::fanout() const {
    return record().loads;
}
uint32_t Net::driver_count() const {
    return record().drivers;
}
bool Net::is_constant() const {
    return record().wire == none;
}

Name Net::bus_name() const {
    const Netlist::Wire* w = wire();
    return {w ? w->name : none};
}

bool Net::is_bus() const {
    return bus_width() > 1;
}

uint32_t Net::bus_width() const {
    const Netlist::Wire* w = wire();
    return w ? w->width : 1;
}

int64_t Net::bus_index() const {
    const Netlist::Wire* w = wire();
    return w ? int64_t(w->offset) + (w->upto ? w->width - 1 - record().bit : record().bit) : 0;
}

const Shape::Port& Pin::shape_port() const {
    const Cell& c = *cell();
    const Shape& shape = c.shape();
    return shape.ports[shape.port_of_pin[index() - c.pin(0)->index()]];
}

void Pin::append_port_bit(std::string& out) const {
    const Shape::Port& port = shape_port();
    design().netlist().append_bit_name(out, port.name, bit(), port.width, port.offset, port.upto);
}

void Pin::append_name(std::string& out) const {
    cell()->append_name(out);
    out += '/';
    append_port_bit(out);
}

Cell* Pin::cell() const {
    return design().object<Cell>(cell_);
}

Net* Pin::net() const {
    const Design& d = design();
    const Design::Scope& s = d.scopes()[cell()->parent_scope()];
    const uint32_t net = d.netlist().pins[d.module_of(s).pins.first + (index() - s.first_pin)];
    return net == none ? nullptr : d.object<Net>(s.first_net + net);
}

Direction Pin::direction() const {
    return shape_port().direction;
}
Name Pin::port_name() const {
    return {shape_port().name};
}
uint32_t Pin::bit() const {
    return index() - cell()->pin(0)->index() - shape_port().first_pin;
}

const Netlist::Port& Port::record() const {
    return design().netlist().ports[port_];
}

void Port::append_name(std::string& out) const {
    const Netlist::Port& port = record();
    design().netlist().append_bit_name(out, port.name, bit_, port.width, port.offset, port.upto);
}

Net* Port::net() const {
    const Design& d = design();
    return d.object<Net>(d.scopes()[0].first_net + d.netlist().bits[record().bits + bit_]);
}

Direction Port::direction() const {
    return record().direction;
}
Name Port::bus_name() const {
    return {record().name};
}

int64_t Port::bus_index() const {
    const Netlist::Port& port = record();
    return int64_t(port.offset) + (port.upto ? port.width - 1 - bit_ : bit_);
}

Design& ObjectRef::design() const {
    if (!is_alive())
        throw Error(Fault::dead_object, std::string("This ") + class_name(cls_) +
                                            " no longer exists: its design was closed or read again.");
    return *design_;
}

bool ObjectRef::is_alive() const noexcept {
    return design_ && design_->is_open();
}

std::string ObjectRef::name() const {
    const Design& d = design();
    switch (cls_) {
    case ObjectClass::cell:
        return d.object<Cell>(index_)->name();
    case ObjectClass::net:
        return d.object<Net>(index_)->name();
    case ObjectClass::pin:
        return d.object<Pin>(index_)->name();
    case ObjectClass::port:
        return d.object<Port>(index_)->name();
    default:
        return d.name();
    }
}

} // namespace design
