#include "design/cmds/property_classes.h"

#include "design/Database.h"
#include "design/Property.h"
#include "design/cmds/objects.h"
#include "platform/property/HCPProperty.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/tclobj_ref.h"

#include <limits>

namespace design {

using HCPProperty::ObjectInfo;
using HCPProperty::Spec;

namespace {

struct Address {
    const Design* design;
    uint32_t index;
};

/// The object behind the address that the property layer passes, which is that of a pointer to it.
template <class T>
Address address_of(const void* object) {
    const T* native = *static_cast<T* const*>(object);
    if constexpr (std::is_same_v<T, Design>) {
        native->require_open();
        return {native, 0};
    } else {
        return {&native->design(), native->index()};
    }
}

template <class T>
bool is_alive(const void* object) {
    const T* native = *static_cast<T* const*>(object);
    if constexpr (std::is_same_v<T, Design>)
        return native->is_open();
    else
        return native->is_alive();
}

/// A PropertyReader that is made anew only when another design or property is asked for, or a value was set
/// under a name for the first time.
class CachedReader {
public:
    const PropertyReader& of(const Design& design, ObjectClass cls, const std::string& name) {
        const bool same = reader_ && design_ == &design && revision_ == design.revision() &&
                          generation_ == property_registry().generation() && name_ == name;
        if (!same) {
            reader_.emplace(design, cls, name);
            design_ = &design;
            revision_ = design.revision();
            generation_ = property_registry().generation();
            name_ = name;
        }
        return *reader_;
    }

    Value scratch;

private:
    std::optional<PropertyReader> reader_;
    const Design* design_ = nullptr;
    uint64_t revision_ = 0;
    uint64_t generation_ = 0;
    std::string name_;
};

void put_text(HATAttrAny& out, std::string_view text) {
    if (auto* held = std::get_if<std::string>(&out))
        held->assign(text);
    else
        out.emplace<std::string>(text);
}

bool read_value(const PropertyReader& reader, uint32_t index, Value& scratch, HATAttrAny& out) {
    if (!reader.read(index, scratch))
        return false;
    switch (scratch.type) {
    case ValueType::boolean:
        out = scratch.integer != 0;
        break;
    case ValueType::integer:
        if (scratch.integer >= std::numeric_limits<int>::min() &&
            scratch.integer <= std::numeric_limits<int>::max())
            out = static_cast<int>(scratch.integer);
        else
            out = static_cast<long>(scratch.integer);
        break;
    case ValueType::real:
        out = scratch.real;
        break;
    default:
        put_text(out, scratch.text);
    }
    return true;
}

template <class T>
HCPProperty::GetFcn getter() {
    return [cache = std::make_shared<CachedReader>()](const void* object, const std::string& name,
                                                      HATAttrAny& value) {
        if (!object)
            return false;
        const Address at = address_of<T>(object);
        return read_value(cache->of(*at.design, T::object_class, name), at.index, cache->scratch, value);
    };
}

/// An attribute is a property of those objects that have it, in the file or set.
template <class T>
HCPProperty::ValidFcn has_value() {
    return [cache = std::make_shared<CachedReader>()](const void* object, const std::string& name,
                                                      std::string& out) {
        const Address at = address_of<T>(object);
        out = name;
        return cache->of(*at.design, T::object_class, name).read(at.index, cache->scratch);
    };
}

/// Sets properties through the database, which checks and records the change.
class Setter : public HCPProperty::Setter {
public:
    int set(Tcl_Interp*, const HCPProperty::Objects& objects, const std::string& name,
            HATAttr& value) override {
        const std::string text = checked_text(objects, name, value.getValue());
        changes_.assign(1, set_property(refs(objects), name, text));
        return 0;
    }

    int set(Tcl_Interp*, const HCPProperty::Objects& objects, const HCPProperty::Pairs& pairs) override {
        const std::vector<ObjectRef> all = refs(objects);
        require_known(objects, pairs);
        changes_.clear();
        try {
            for (const auto& [name, value] : pairs)
                changes_.push_back(set_property(all, name, checked_text(objects, name, value)));
        } catch (...) {
            undo(nullptr);
            changes_.clear();
            throw;
        }
        return 0;
    }

    int reset(const HCPProperty::Objects& objects, const std::string& name, HATAttr&) override {
        changes_.assign(1, reset_property(refs(objects), name));
        return 0;
    }

    int undo(Tcl_Interp*) override {
        for (auto change = changes_.rbegin(); change != changes_.rend(); ++change)
            change->undo();
        return 0;
    }

    int redo(Tcl_Interp*) override {
        for (PropertyChange& change : changes_)
            change.redo();
        return 0;
    }

private:
    // One property alone is looked up before its setter is asked for; several are looked up here.
    static void require_known(const HCPProperty::Objects& objects, const HCPProperty::Pairs& pairs) {
        const auto info = HCPProperty::getObjectInfoOrError((*objects)[0]);
        std::string canonical;
        for (const auto& [name, value] : pairs)
            if (!info->findSpec(name) && !info->defaultSpec()->isValid((*objects)[0], name, canonical))
                HCPProperty::Utils::noSuchProperty(name, info->getName());
    }

    // The database knows fewer types than users can give their properties, and stores the others as the text
    // that they have in Tcl.
    static std::string checked_text(const HCPProperty::Objects& objects, const std::string& name,
                                    const HATAttrAny& value) {
        const Spec* spec = HCPProperty::getObjectInfoOrError((*objects)[0])->findSpec(name);
        if (!spec || !spec->getAttrSpec()->isUserDefined())
            return HATAttrUtils::getStringValue(value);
        const vek::tcltasks::tclobj_ref converted(
            HATAttrUtils::getTclValue(HATAttrUtils::convert(*spec->getAttrSpec(), value)));
        return HTCTclEncoding::tclGetString(converted.get());
    }

    static std::vector<ObjectRef> refs(const HCPProperty::Objects& objects) {
        std::vector<ObjectRef> result;
        result.reserve(objects.size());
        for (const auto& object : *objects)
            result.push_back(object_from_any(object));
        return result;
    }

    std::vector<PropertyChange> changes_;
};

std::shared_ptr<HCPProperty::Setter> make_setter() {
    return std::make_shared<Setter>();
}

HATAttrTypes::AttrType attr_type(ValueType type) {
    switch (type) {
    case ValueType::boolean:
        return HATAttrTypes::type_bool;
    case ValueType::integer:
        return HATAttrTypes::type_int;
    case ValueType::real:
        return HATAttrTypes::type_double;
    case ValueType::enumeration:
        return HATAttrTypes::type_enum;
    default:
        return HATAttrTypes::type_string;
    }
}

ValueType value_type(HATAttrTypes::AttrType type) {
    switch (type) {
    case HATAttrTypes::type_bool:
        return ValueType::boolean;
    case HATAttrTypes::type_int:
    case HATAttrTypes::type_long:
        return ValueType::integer;
    case HATAttrTypes::type_double:
        return ValueType::real;
    case HATAttrTypes::type_enum:
        return ValueType::enumeration;
    default:
        return ValueType::string;
    }
}

HATAttrAny attr_value(const PropertySpec& spec, const std::string& text) {
    switch (spec.type) {
    case ValueType::boolean:
        return text == "1";
    case ValueType::integer:
        return std::stoi(text);
    case ValueType::real:
        return std::stod(text);
    default:
        return text;
    }
}

template <class T>
void add_property(ObjectInfo& info, const PropertySpec& property) {
    const auto spec = info.createSpecOrError(property.name);
    HATAttrSpec& attr = *spec->getAttrSpec();
    attr.setDescription(property.description);
    attr.setAttrType(attr_type(property.type));
    attr.setReadOnly(property.read_only);
    attr.addEnumRange(property.enum_values);
    if (property.default_value)
        attr.setDefault(attr_value(property, *property.default_value));
    if (property.name == "class")
        spec->setGetFcn([](const void*, const std::string&, HATAttrAny& value) {
            put_text(value, class_name(T::object_class));
            return true;
        });
    else
        spec->setGetFcn(getter<T>());
    if (!property.read_only)
        spec->setSetterFcn(make_setter);
}

void forget_values(ObjectClass cls, const std::string& name) {
    for (Design* design : Database::instance().designs()) {
        const NameId id = design->netlist().names.find(name);
        if (id != none && design->values(cls, id))
            design->values_for_change(cls, id).clear();
    }
}

/// Takes over a property that a user made, or lets go of it and of the values that objects have of it.
template <class T>
bool take_user_property(const std::shared_ptr<Spec>& made, bool added) {
    if (!added) {
        forget_values(T::object_class, made->getName());
        return property_registry().remove(T::object_class, made->getName());
    }
    const HATAttrSpec& attr = *made->getAttrSpec();
    PropertySpec property;
    property.name = made->getName();
    property.type = value_type(attr.getAttrType());
    property.description = attr.getDescription();
    property.enum_values = attr.getEnumRange();
    if (attr.hasDefault())
        property.default_value = HATAttrUtils::getStringValue(attr.getDefault());
    property_registry().create(T::object_class, std::move(property));
    made->setGetFcn(getter<T>());
    made->setSetterFcn(make_setter);
    return true;
}

template <class T>
void register_class(const char* description) {
    ObjectInfo& info = *HCPProperty::registerObjectType<T*>();
    if (!info.getName().empty())
        return;
    info.setName(class_name(T::object_class));
    info.setDescription(description);
    info.setAliveFcn(is_alive<T>);
    for (const PropertySpec* property : property_registry().list(T::object_class))
        add_property<T>(info, *property);
    const auto others = info.createSpec(HCPProperty::defaultSpecName);
    others->getAttrSpec()->setReadOnly(false);
    others->setGetFcn(getter<T>());
    others->setSetterFcn(make_setter);
    others->setUserSpecFcn(take_user_property<T>);
    others->setValidFcn([](const void*, const std::string& name, std::string& out) {
        const PropertySpec* property = property_registry().find(T::object_class, name);
        out = property ? property->name : name;
        return property != nullptr;
    });
}

template <class T>
void register_attributes(const Design& design) {
    const auto info = HCPProperty::getObjectInfo(typeid(T*));
    for (const NameId id : design.attribute_names(T::object_class)) {
        const std::string name(design.netlist().names.text(id));
        if (name.empty() || name == HCPProperty::defaultSpecName || info->findSpec(name))
            continue;
        const auto spec = info->createSpec(name);
        spec->getAttrSpec()->setDescription("Attribute or parameter of the netlist");
        spec->getAttrSpec()->setReadOnly(false);
        spec->setGetFcn(getter<T>());
        spec->setValidFcn(has_value<T>());
        spec->setSetterFcn(make_setter);
    }
}

} // namespace

void register_property_classes() {
    register_class<Design>("A netlist in memory, unfolded from its top module");
    register_class<Cell>("An instance of a module or library cell");
    register_class<Net>("One bit of connection on one level of hierarchy");
    register_class<Pin>("One bit of one port of a cell");
    register_class<Port>("One bit of one port of the design");
}

void register_attributes_of(const Design& design) {
    register_attributes<Design>(design);
    register_attributes<Cell>(design);
    register_attributes<Net>(design);
    register_attributes<Port>(design);
}

} // namespace design
