#pragma once

#include "design/Netlist.h"
#include "design/ObjectTable.h"

#include <string>
#include <string_view>
#include <vector>

namespace design {

class Cell;
class Design;
class Net;
class Pin;
class Port;

enum class ObjectClass : uint8_t { design, cell, net, pin, port };
constexpr size_t object_class_count = 5;

/// "design", "cell", "net", "pin" or "port".
const char* class_name(ObjectClass cls);

/// An interned text together with nothing else; tells a NameId from a plain number.
struct Name {
    NameId id;
};

/// The part that cells, nets, pins and ports share. Objects are made by their Design only and are known by
/// address, which stays theirs for good. One that outlived its design is dead: is_alive() tells, and every
/// other operation throws Error(dead_object). Interpreter's thread only, as the whole database.
template <class T>
class Object {
public:
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    bool is_alive() const noexcept { return ObjectChunk::of(this).design != nullptr; }

    /// The design that the object belongs to.
    Design& design() const {
        Design* design = ObjectChunk::of(this).design;
        if (!design)
            throw_dead();
        return *design;
    }

    /// Its number in the design, from 0.
    uint32_t index() const noexcept { return ObjectTable<T>::index_of(static_cast<const T*>(this)); }

    /// The full hierarchical name, as "u0/u1/x".
    std::string name() const {
        std::string text;
        static_cast<const T*>(this)->append_name(text);
        return text;
    }

protected:
    Object() = default;

private:
    [[noreturn]] static void throw_dead();
};

/// An instance, in the design once for each path that leads to it.
class Cell : public Object<Cell> {
public:
    static constexpr ObjectClass object_class = ObjectClass::cell;

    void append_name(std::string& out) const;
    /// The last part of the name.
    Name local_name() const;
    /// Module or library cell that it is an instance of.
    Name ref_name() const;
    /// False if the file has a module to look into, other than a black box.
    bool is_leaf() const;
    /// True if its module is known by its ports only.
    bool is_blackbox() const;
    /// The cell that holds it, null at the top.
    Cell* parent() const;
    /// 0 at the top.
    uint32_t depth() const;
    uint32_t pin_count() const;
    Pin* pin(uint32_t i) const;
    /// Loads on all nets that its outputs drive.
    uint32_t fanout() const;
    /// The scope inside a hierarchical cell, or none.
    uint32_t scope() const { return inner_; }
    uint32_t parent_scope() const { return scope_; }
    const Netlist::Cell& record() const;
    const Shape& shape() const;

private:
    friend class Design;
    uint32_t scope_;
    uint32_t inner_;
};

/// One bit of connection within one level of hierarchy.
class Net : public Object<Net> {
public:
    static constexpr ObjectClass object_class = ObjectClass::net;

    void append_name(std::string& out) const;
    void append_local_name(std::string& out) const;
    Cell* parent() const;
    uint32_t pin_count() const;
    Pin* pin(uint32_t i) const;
    /// Inputs of cells, and outputs of the module around it, that it feeds. An inout counts on both sides.
    uint32_t fanout() const;
    uint32_t driver_count() const;
    bool is_constant() const;
    /// Name of the bus without an index, or the whole name.
    Name bus_name() const;
    /// Declared index in its bus; meaningless unless is_bus().
    int64_t bus_index() const;
    bool is_bus() const;
    /// Bits of the bus that gives it its name.
    uint32_t bus_width() const;
    uint32_t scope() const { return scope_; }
    /// Number within its module.
    uint32_t local_index() const;
    const Netlist::Net& record() const;
    const Netlist::Wire* wire() const;

private:
    friend class Design;
    uint32_t scope_;
};

/// One bit of one port of a cell.
class Pin : public Object<Pin> {
public:
    static constexpr ObjectClass object_class = ObjectClass::pin;

    void append_name(std::string& out) const;
    /// "A" or "A[3]".
    void append_port_bit(std::string& out) const;
    Cell* cell() const;
    /// Null if unconnected.
    Net* net() const;
    Direction direction() const;
    Name port_name() const;
    /// Bit of the port, from 0 at the lowest.
    uint32_t bit() const;
    const Shape::Port& shape_port() const;

private:
    friend class Design;
    uint32_t cell_;
};

/// One bit of one port of the design.
class Port : public Object<Port> {
public:
    static constexpr ObjectClass object_class = ObjectClass::port;

    void append_name(std::string& out) const;
    Net* net() const;
    Direction direction() const;
    Name bus_name() const;
    bool is_bus() const { return record().width > 1; }
    int64_t bus_index() const;
    const Netlist::Port& record() const;

private:
    friend class Design;
    uint32_t port_;
    uint32_t bit_;
};

/// Any object, by value. A reference to an object that died stays a reference to a dead object.
class ObjectRef {
public:
    ObjectRef() = default;
    ObjectRef(Design& design) : design_(&design) {}
    /// Throws Error(dead_object) for an object that is dead already.
    template <class T>
    ObjectRef(T* object) : cls_(T::object_class), index_(object->index()), design_(&object->design()) {}

    ObjectClass object_class() const { return cls_; }
    uint32_t index() const { return index_; }
    /// Throws Error(dead_object) when the design is gone.
    Design& design() const;
    bool is_alive() const noexcept;
    std::string name() const;

    /// The object as a T; null if it is of another class. Throws Error(dead_object) when the design is gone.
    template <class T>
    T* as() const;

    bool operator==(const ObjectRef& other) const = default;

private:
    ObjectClass cls_ = ObjectClass::design;
    uint32_t index_ = 0;
    Design* design_ = nullptr;
};

} // namespace design
