#pragma once

#include "design/Objects.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace design {

class Design;

enum class ValueType : uint8_t { boolean, integer, real, string, enumeration };

/// "bool", "int", "double", "string" or "enum".
const char* value_type_name(ValueType type);
/// The type with that name, case ignored.
std::optional<ValueType> value_type_of(std::string_view name);

/// One property value. Enumerations are texts.
struct Value {
    ValueType type = ValueType::string;
    int64_t integer = 0; ///< of a boolean too: 0 or 1
    double real = 0;
    std::string text; ///< of a string or an enumeration

    /// As a user reads it: a boolean as "1" or "0".
    std::string to_text() const;
};

/// One property of one class of objects: a row of the class's table, or one that a user made.
///
/// A computed property reads the object through one of the three getters and is read-only. A stored one has
/// no getter: its value is what was set on the object, else the attribute of that name in the file, else the
/// default.
struct PropertySpec {
    std::string name;
    ValueType type = ValueType::string;
    std::string description;
    bool read_only = false;
    bool user_defined = false;
    std::optional<std::string> default_value;
    std::vector<std::string> enum_values;

    int64_t (*number)(const Design&, uint32_t index) = nullptr; ///< boolean, integer, position in enum_values
    NameId (*interned)(const Design&, uint32_t index) = nullptr; ///< a text of the design's table, or none
    void (*append)(const Design&, uint32_t index, std::string&) = nullptr; ///< a text made at each call

    bool is_stored() const { return !number && !interned && !append; }

    /// The form in which `text` is stored, as "1" for "true". Throws Error(bad_property_value), which names
    /// the property, the value and what is accepted.
    std::string checked(std::string_view text) const;
};

/// The properties that each class of objects has. There is one, property_registry(); user-defined properties
/// come and go. Interpreter's thread only.
class PropertyRegistry {
public:
    PropertyRegistry();

    /// The spec with that name, or with that name but for case; null if there is none.
    const PropertySpec* find(ObjectClass cls, std::string_view name) const;
    /// All specs of a class: its own in the order of its table, then the user's in the order of their making.
    std::vector<const PropertySpec*> list(ObjectClass cls) const;

    /// Adds a user-defined property. The very same again is no error. Throws Error(bad_property) for a name
    /// that is taken by another one or empty, an enum without values, a default that does not fit.
    const PropertySpec& create(ObjectClass cls, PropertySpec spec);
    /// Removes a user-defined property; false if there was none. Values set under it stay with their objects
    /// as plain attributes.
    bool remove(ObjectClass cls, std::string_view name);

    /// Moves up whenever a spec comes or goes, for those who keep pointers to specs.
    uint64_t generation() const { return generation_; }

private:
    std::vector<std::unique_ptr<PropertySpec>> specs_[object_class_count];
    uint64_t generation_ = 0;
};

PropertyRegistry& property_registry();

/// Reads one property of many objects of one class and one design: what can be looked up is looked up once.
/// Valid while the design stays open and no spec is created or removed.
class PropertyReader {
public:
    PropertyReader(const Design& design, ObjectClass cls, std::string_view name);

    /// True if objects of this class can have the property in this design.
    bool known() const { return spec_ || attribute_ || values_; }
    const PropertySpec* spec() const { return spec_; }
    /// The type of all values, or absent for an attribute from the file, where each value has its own.
    std::optional<ValueType> type() const;

    /// True if the object has a value.
    bool read(uint32_t index, Value& value) const;

    /// As text into `buffer`, or straight from the design's memory; valid until the next change of either.
    std::optional<std::string_view> read_text(uint32_t index, std::string& buffer) const;

    /// As a number; absent for a value that is none.
    std::optional<double> read_number(uint32_t index) const;

    /// True if values come from the design's table of texts, so that equal numbers mean equal values.
    bool has_interned() const { return !spec_ || spec_->interned || spec_->is_stored(); }
    /// The number of the value's text, with set_flag if it was set rather than read from the file; none for
    /// an object that has the default or no value.
    NameId read_interned(uint32_t index) const;
    /// What a number of read_interned stands for; for none the default, absent if there is none.
    std::optional<std::string_view> text_of(NameId id, std::string& buffer) const;

    static constexpr NameId set_flag = 0x80000000u;

private:
    const Design* design_;
    ObjectClass cls_;
    const PropertySpec* spec_;
    NameId name_ = none;
    NameId default_ = none;
    bool attribute_ = false;
    const std::unordered_map<uint32_t, NameId>* values_ = nullptr;
};

/// The value of a property of one object; absent if it has none.
/// Throws Error(no_such_property), with the nearest names, if no object of the class could have it.
std::optional<Value> get_property(const ObjectRef& object, std::string_view name);

/// The names of all properties that the object has a value for or a spec of, in alphabetical order.
std::vector<std::string> list_properties(const ObjectRef& object);

/// One change of a property on some objects, which can be taken back and made again exactly. On objects that
/// died meanwhile both do nothing.
class PropertyChange {
public:
    void undo();
    void redo();
    size_t size() const { return entries_.size(); }

private:
    friend PropertyChange set_property(std::span<const ObjectRef>, std::string_view, std::string_view);
    friend PropertyChange reset_property(std::span<const ObjectRef>, std::string_view);

    struct Entry {
        ObjectRef object;
        NameId property;
        NameId before;
        NameId after;
    };
    static PropertyChange change(std::span<const ObjectRef> objects, std::string_view name,
                                 const std::string* value);

    std::vector<Entry> entries_;
};

/// A whole number as the synthesis tool writes it, in 32 binary digits, and back; absent for what is none.
std::optional<int64_t> parse_file_integer(std::string_view text);
std::optional<std::string> file_integer(std::string_view decimal);

/// Sets a property on all objects, which may be of several classes, or on none of them: everything is
/// checked first. A name without spec becomes a string attribute. Throws Error(read_only_property),
/// Error(bad_property_value), Error(bad_property) for an empty name, Error(dead_object).
PropertyChange set_property(std::span<const ObjectRef> objects, std::string_view name,
                            std::string_view value);

/// Forgets what was set: the value of the file or the default shows again.
/// Throws Error(read_only_property), Error(dead_object).
PropertyChange reset_property(std::span<const ObjectRef> objects, std::string_view name);

/// "did you mean" for a name that is none of a class's properties: " Did you mean 'fanout'?" or nothing.
std::string nearest_property_hint(const Design& design, ObjectClass cls, std::string_view name);
[[noreturn]] void throw_no_such_property(const Design& design, ObjectClass cls, std::string_view name);

} // namespace design
