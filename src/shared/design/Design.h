#pragma once

#include "design/Objects.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

namespace design {

/// The attribute of a top module that holds values set on objects which have no place of their own in the
/// file: lines of class, property, object name and value, separated by tabs; backslash escapes \t, \n, \\.
constexpr const char* object_values_attribute = "object_values";

/// A netlist unfolded from its top module: one object for each cell, net, pin and port that exists in the
/// finished circuit. What is common to all instances of a module is in the Netlist; an object itself holds
/// no more than where it belongs, four or eight bytes.
///
/// A closed design keeps its address and tells that it is closed; its objects are dead.
class Design {
public:
    static constexpr ObjectClass object_class = ObjectClass::design;

    /// One instance of a module. The top has number 0; cells, nets and pins of a scope are consecutive.
    struct Scope {
        uint32_t cell; ///< the cell whose inside it is; none for the top
        uint32_t module;
        uint32_t first_cell;
        uint32_t first_net;
        uint32_t first_pin;
        uint32_t depth;
    };

    /// Property values set on single objects: by property, then by object number.
    using Values = std::unordered_map<uint32_t, NameId>;

    /// Unfolds `netlist` from the module `top`; if that is empty, from the module with the attribute "top",
    /// or else from the only one that no other instantiates. Throws Error(no_top), which lists candidates,
    /// or Error(bad_hierarchy).
    Design(std::unique_ptr<Netlist> netlist, std::string_view top, std::string file = {});
    ~Design();
    Design(const Design&) = delete;
    Design& operator=(const Design&) = delete;

    /// The name of the top module; kept when the design is closed.
    const std::string& name() const { return name_; }
    /// The file that it was read from.
    const std::string& file() const { return file_; }

    bool is_open() const noexcept { return netlist_ != nullptr; }
    /// Frees all but the addresses of the objects.
    void close() noexcept;

    /// Throws Error(dead_object) once closed.
    const Netlist& netlist() const {
        require_open();
        return *netlist_;
    }
    Netlist& netlist() {
        require_open();
        return *netlist_;
    }
    void require_open() const;

    template <class T>
    uint32_t count() const {
        return table<T>().size();
    }
    template <class T>
    T* object(uint32_t index) const {
        return table<T>()[index];
    }

    const std::vector<Scope>& scopes() const { return scopes_; }
    const Netlist::Module& module_of(const Scope& scope) const { return netlist_->modules[scope.module]; }

    /// Objects of a scope as a range of numbers; ports are those of the design in scope 0.
    template <class T>
    Netlist::Range range(const Scope& scope) const;

    /// Appends "u0/u1/" for the inside of u0/u1, nothing for the top.
    void append_path(std::string& out, uint32_t scope) const;

    /// Calls `found` for each object whose full name is `name`; more than one when a bus is named without an
    /// index, or when names themselves hold a '/'. No scan.
    template <class T>
    void find(std::string_view name, const std::function<void(T*)>& found) const;
    /// The same within one scope; the name is local to it.
    template <class T>
    void find_in_scope(uint32_t scope, std::string_view name, const std::function<void(T*)>& found) const;

    /// The ports of the design that a net of the top level is connected to.
    std::vector<Port*> ports_of_net(const Net& net) const;

    /// Values set on objects of a class under a property name; null if there never was one.
    const Values* values(ObjectClass cls, NameId property) const;
    Values& values_for_change(ObjectClass cls, NameId property);
    /// Moves up when values are set under a name for the first time, for those who keep a PropertyReader.
    uint64_t revision() const { return values_.size(); }
    const std::map<std::pair<ObjectClass, NameId>, Values>& all_values() const { return values_; }

    /// True if an object of the class may have a property of that name from the file.
    bool has_attribute(ObjectClass cls, NameId name) const;
    /// All names for which has_attribute holds.
    const std::vector<NameId>& attribute_names(ObjectClass cls) const;

    /// The attribute and parameter sets of an object in the netlist, 0 (the empty set) where it has none.
    struct Sets {
        uint32_t attributes;
        uint32_t parameters;
    };
    Sets sets_of(ObjectClass cls, uint32_t index) const;

    /// Bytes that the design holds.
    size_t memory() const;

private:
    template <class T>
    const ObjectTable<T>& table() const {
        if constexpr (std::is_same_v<T, Cell>)
            return cells_;
        else if constexpr (std::is_same_v<T, Net>)
            return nets_;
        else if constexpr (std::is_same_v<T, Pin>)
            return pins_;
        else
            return ports_;
    }

    uint32_t choose_top(std::string_view top) const;
    void count_objects(uint32_t top, uint64_t (&totals)[3], uint64_t& scopes) const;
    void unfold(uint32_t top);
    void take_object_values();
    void take_object_value(std::string_view line);
    void collect_attribute_names() const;
    void for_each_split(std::string_view name,
                        const std::function<void(uint32_t scope, std::string_view rest)>& visit) const;

    std::string name_;
    std::string file_;
    std::unique_ptr<Netlist> netlist_;
    std::vector<Scope> scopes_;
    ObjectTable<Cell> cells_;
    ObjectTable<Net> nets_;
    ObjectTable<Pin> pins_;
    ObjectTable<Port> ports_;
    size_t longest_scope_name_ = 0;
    std::map<std::pair<ObjectClass, NameId>, Values> values_;
    mutable std::vector<std::vector<NameId>> attribute_names_;
    mutable std::vector<std::pair<uint32_t, uint32_t>> ports_by_net_;
    mutable bool ports_sorted_ = false;
};

template <class T>
T* ObjectRef::as() const {
    return cls_ == T::object_class ? design().object<T>(index_) : nullptr;
}

template <>
Netlist::Range Design::range<Cell>(const Scope& scope) const;
template <>
Netlist::Range Design::range<Net>(const Scope& scope) const;
template <>
Netlist::Range Design::range<Pin>(const Scope& scope) const;
template <>
Netlist::Range Design::range<Port>(const Scope& scope) const;
template <>
void Design::find_in_scope(uint32_t scope, std::string_view name,
                           const std::function<void(Cell*)>& found) const;
template <>
void Design::find_in_scope(uint32_t scope, std::string_view name,
                           const std::function<void(Net*)>& found) const;
template <>
void Design::find_in_scope(uint32_t scope, std::string_view name,
                           const std::function<void(Pin*)>& found) const;
template <>
void Design::find_in_scope(uint32_t scope, std::string_view name,
                           const std::function<void(Port*)>& found) const;

} // namespace design
