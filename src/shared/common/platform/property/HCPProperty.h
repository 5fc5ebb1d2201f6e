#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <tcl.h>
#include <typeinfo>
#include <utility>
#include <vector>

#include "platform/property/HATAttrSpec.h"
#include "platform/property/HATAttrUtils.h"
#include "tcltasks/core/tcl_collection.h"

class HDGUIStatus;

/// The registry of object classes: what is known of each native type that reaches Tcl, and above all its
/// properties. HCPPropertyTable.h is the short way to register a class: a table with one line for each
/// property.
///
/// Classes may be registered on any thread; all else belongs to the interpreter's thread.
namespace HCPProperty {

using vek::tcltasks::tclany;

class ObjectInfo;
class Spec;

/// The objects of one call.
using Objects = vek::tcltasks::tcl_collection<HSTVector<tclany>>;
/// Names and values, in the order given.
using Pairs = std::vector<std::pair<std::string, std::string>>;

/// The name of the property that stands for all that have no specification of their own, and for those that
/// users made.
inline const std::string defaultSpecName = "_default_";

/// A native type, known by the object that was registered for it. An object is passed by the address of its
/// T, which for a class of pointers is the address of the pointer.
class TypeInfo {
public:
    virtual ~TypeInfo() = default;
    virtual const std::type_info& type() const = 0;
    /// The T inside a value; null if it holds another type.
    virtual const void* address(const tclany& object) const = 0;
    /// The elements of a collection of T, one after the other, each `stride()` bytes; null for a collection
    /// of another type or without elements.
    virtual const void* elements(vek::tcltasks::detail::collection_wrapper_base& body) const = 0;
    virtual size_t stride() const = 0;
    virtual tclany value(const void* object) const = 0;
};

/// Changes one property, or several, of some objects. Lives with the command that made the change, and takes
/// it back and makes it again. What is refused is refused before anything is changed, by an exception or by
/// an ERROR message and the answer 1.
class Setter {
public:
    /// What the bulk operation answers if the class has none.
    static constexpr int not_supported = 9999;

    virtual ~Setter() = default;
    /// Sets one property on all objects. Returns 0, or 1 on failure.
    virtual int set(Tcl_Interp* interp, const Objects& objects, const std::string& name, HATAttr& value) = 0;
    /// Sets several properties at once on all objects.
    virtual int set(Tcl_Interp* interp, const Objects& objects, const Pairs& pairs);
    /// Gives the property its default again. Returns 0, or 1 on failure.
    virtual int reset(const Objects& objects, const std::string& name, HATAttr& value) = 0;
    virtual int undo(Tcl_Interp* interp) = 0;
    virtual int redo(Tcl_Interp* interp) = 0;
    /// Called after each of these that succeeded; tells others of the change.
    virtual void finish(const std::string& /*name*/) {}
};

/// Reads a property: fills `value` and answers true if the object has one. A null object asks for what all
/// objects of the class have in common. `name` is the property's, as canonical as the caller knows it.
using GetFcn = std::function<bool(const void* object, const std::string& name, HATAttrAny& value)>;
using SetterFcn = std::function<std::shared_ptr<Setter>()>;
/// Whether an object, never null, has the property; may put the canonical name into `outName`.
using ValidFcn = std::function<bool(const void* object, const std::string& name, std::string& outName)>;
/// Told of a property that a user makes (true) or removes (false); answers whether the class takes it.
using UserSpecFcn = std::function<bool(const std::shared_ptr<Spec>& spec, bool added)>;

/// One property of a class: what it is, and how it is read and set.
class Spec {
public:
    Spec(const ObjectInfo& info, const std::string& name) : m_info(&info), m_attrSpec(name) {}
    Spec(const Spec&) = delete;
    Spec& operator=(const Spec&) = delete;

    HATAttrSpec* getAttrSpec() { return &m_attrSpec; }
    const HATAttrSpec* getAttrSpec() const { return &m_attrSpec; }
    const std::string& getName() const { return m_attrSpec.getName(); }
    const ObjectInfo& getInfo() const { return *m_info; }

    /// Whether an object has this property; an object of another class has not. Both may put the property's
    /// canonical name into `outName`.
    bool isValid(const tclany& object, const std::string& name, std::string& outName) const;
    /// Throws HEXError that names property and class if it has not.
    void isValidOrError(const tclany& object, const std::string& name, std::string& outName) const;
    bool isValid(const void* object, const std::string& name, std::string& outName) const;

    /// A new setter; null for a property that cannot be set.
    std::shared_ptr<Setter> getSetter() const { return m_setter ? m_setter() : nullptr; }
    /// Reads the property; an empty object asks for what all objects of the class have in common.
    bool getProperty(const tclany& object, const std::string& name, HATAttrAny& value) const;
    bool getProperty(const void* object, const std::string& name, HATAttrAny& value) const {
        return m_get && m_get(object, name, value);
    }

    void setGetFcn(GetFcn function) { m_get = std::move(function); }
    void setSetterFcn(SetterFcn function) { m_setter = std::move(function); }
    void setValidFcn(ValidFcn function) { m_valid = std::move(function); }
    /// For the spec `_default_` of a class that takes properties of the user's.
    void setUserSpecFcn(UserSpecFcn function) { m_userSpec = std::move(function); }

    /// On the spec `_default_`: gives a property that a user made its getter and its place to keep
    /// values, or takes these away. False if the class takes none.
    bool registerUserSpec(const std::shared_ptr<Spec>& spec) const {
        return m_userSpec && m_userSpec(spec, true);
    }
    void unregisterUserSpec(const std::shared_ptr<Spec>& spec) const {
        if (m_userSpec) {
            m_userSpec(spec, false);
        }
    }

    /// The login of the engineer, or "user" for a property that a user made.
    const std::string& getOwner() const { return m_owner; }
    void setOwner(const std::string& owner) { m_owner = owner; }

private:
    const ObjectInfo* m_info;
    HATAttrSpec m_attrSpec;
    GetFcn m_get;
    SetterFcn m_setter;
    ValidFcn m_valid;
    UserSpecFcn m_userSpec;
    std::string m_owner = "common";
};

/// Rewrites the value that went with a deprecated name.
using ValueMap = std::function<std::string(const std::string& value)>;

/// What is known of one object class. Property names are found whatever the case of their letters. A class is
/// never taken out of the registry; a property that is taken out of a class lives on, marked as deleted, so
/// that Tcl may hold its specification.
class ObjectInfo {
public:
    explicit ObjectInfo(std::unique_ptr<TypeInfo> type);
    ~ObjectInfo();
    ObjectInfo(const ObjectInfo&) = delete;
    ObjectInfo& operator=(const ObjectInfo&) = delete;

    const std::type_info& getType() const { return m_type->type(); }
    const TypeInfo& typeInfo() const { return *m_type; }
    /// The class's name, "cell"; empty for a type that only was made known. Setting it enters the class under
    /// the name; the first class of a name stays.
    const std::string& getName() const { return m_name; }
    void setName(const std::string& name);
    const std::string& getDescription() const { return m_description; }
    void setDescription(const std::string& text) { m_description = text; }

    /// The property of this name, or of this name but for case, or of the current name for a deprecated one.
    /// Null, or with `orError` an HEXError, if there is none.
    std::shared_ptr<Spec> getSpec(const std::string& name, bool orError = false) const;
    const Spec* findSpec(std::string_view name) const;
    const Spec* defaultSpec() const { return m_default.get(); }

    /// A new property at the end of the class's list; the one that is there if the name is taken.
    std::shared_ptr<Spec> createSpec(const std::string& name);
    /// The same; throws HEXError if the name is empty, reserved or taken.
    std::shared_ptr<Spec> createSpecOrError(const std::string& name);
    /// A new property of the class that is in no list.
    std::shared_ptr<Spec> createSpecNoRegister(const std::string& name);
    /// Takes a property out of the class; nothing if there is none.
    void deleteSpec(const std::string& name);

    /// The properties in their order, without `_default_`.
    const std::vector<std::shared_ptr<Spec>>& specs() const { return m_specs; }

    /// Walks over the specifications of the properties that an object has; of the class for an empty object.
    /// A property that is made or deleted ends the walk's validity.
    class attr_spec_iterator;
    attr_spec_iterator beginAttrSpec(const tclany& object) const;
    attr_spec_iterator endAttrSpec() const;

    /// The spec of a property that the object has; null if it has none of this name.
    HATAttrSpec* getAttrSpec(const tclany& object, const std::string& name) const;

    /// Lets an old name stand for a current one. The use of it is warned of; a value that is set under it
    /// goes through `map`.
    void addDeprecatedName(const std::string& name, const std::string& current, ValueMap map = {});
    struct deprecated {
        std::string current;
        ValueMap map;
    };
    const deprecated* findDeprecated(std::string_view name) const;

    /// How the class tells that an object lives; without it all do.
    void setAliveFcn(std::function<bool(const void*)> alive) { m_alive = std::move(alive); }
    bool isAlive(const void* object) const { return !m_alive || m_alive(object); }
    /// Throws HEXError that names the class if the object is gone.
    void aliveOrError(const void* object) const {
        if (m_alive && !m_alive(object)) {
            throwGone();
        }
    }

private:
    struct index;

    [[noreturn]] void throwGone() const;

    std::unique_ptr<TypeInfo> m_type;
    std::string m_name;
    std::string m_description;
    std::vector<std::shared_ptr<Spec>> m_specs;
    std::shared_ptr<Spec> m_default;
    std::vector<std::shared_ptr<Spec>> m_deleted;
    std::unique_ptr<index> m_index;
    std::function<bool(const void*)> m_alive;
};

class ObjectInfo::attr_spec_iterator {
public:
    HATAttrSpec* operator*() const { return (*m_specs)[m_at]->getAttrSpec(); }
    attr_spec_iterator& operator++() {
        ++m_at;
        skip();
        return *this;
    }
    bool operator==(const attr_spec_iterator& other) const { return m_at == other.m_at; }

private:
    friend class ObjectInfo;
    attr_spec_iterator(const std::vector<std::shared_ptr<Spec>>& specs, size_t at, const tclany* object)
        : m_specs(&specs), m_at(at), m_object(object) {
        skip();
    }
    void skip();

    const std::vector<std::shared_ptr<Spec>>* m_specs;
    size_t m_at;
    const tclany* m_object; // null: all; the caller's
};

/// The class of a native type, of an object, or of a name; null if there is none. Any thread.
std::shared_ptr<ObjectInfo> getObjectInfo(const std::type_info& type);
std::shared_ptr<ObjectInfo> getObjectInfo(const tclany& object);
std::shared_ptr<ObjectInfo> getObjectInfo(const std::string& className);
/// The same; throws HEXError for a value that is no object, an object that is gone, or an unknown class name.
std::shared_ptr<ObjectInfo> getObjectInfoOrError(const tclany& object);
std::shared_ptr<ObjectInfo> getObjectInfoOrError(const std::string& className);
/// Appends all classes, in the order of registration.
void getAllObjectInfo(std::vector<std::shared_ptr<ObjectInfo>>& list);

namespace Types {

/// One property in a report.
struct PNameAndProp {
    std::string name;
    HATAttrAny value;
    bool hasValue = false;
    bool visible = true;
    std::shared_ptr<Spec> spec;
    const HATAttrSpec* attrSpec() const { return spec ? spec->getAttrSpec() : nullptr; }
};

} // namespace Types

/// Reads one property of many objects: what can be looked up is looked up once for each class. Valid while no
/// property of a class comes or goes.
class Reader {
public:
    explicit Reader(std::string name) : m_name(std::move(name)) {}

    /// True if the object, which must live, has a value.
    bool get(const ObjectInfo& info, const void* object, HATAttrAny& value) {
        if (&info != m_info) {
            bind(info);
        }
        return m_spec && m_spec->getProperty(object, *m_canonical, value);
    }
    /// Whether an object could have the property: its class has it, or a `_default_` that knows the name.
    bool known(const ObjectInfo& info, const void* object);
    /// The spec that was read last; null if there is none.
    const Spec* spec() const { return m_spec; }
    const std::string& name() const { return m_name; }

private:
    void bind(const ObjectInfo& info);

    std::string m_name;
    const ObjectInfo* m_info = nullptr;
    const Spec* m_spec = nullptr;             // of m_info
    const std::string* m_canonical = nullptr; // the property's name, or the given one under _default_
};

/// The objects behind an argument, read where they lie: no element of a collection is copied.
class ObjectRange {
public:
    /// Takes a collection of any type, an object, or a list of these. Text is kept as text, which is no
    /// object. Throws HTCErrors::type_error for what cannot be read.
    ObjectRange(Tcl_Interp* interp, Tcl_Obj* argument);

    unsigned long size() const { return m_size; }
    struct item {
        const ObjectInfo* info;
        const void* object;
    };
    /// An object and its class. Throws as getObjectInfoOrError.
    item operator[](unsigned long index) const {
        if (m_info) {
            const void* object = static_cast<const char*>(m_elements) + index * m_stride;
            m_info->aliveOrError(object);
            return {m_info.get(), object};
        }
        return mixed(index);
    }
    tclany value(unsigned long index) const;

private:
    item mixed(unsigned long index) const;

    vek::tcltasks::tclobj_ref m_argument; // holds the body that m_elements points into
    unsigned long m_size = 0;
    std::shared_ptr<ObjectInfo> m_info; // of all elements; null if they are mixed
    const void* m_elements = nullptr;
    size_t m_stride = 0;
    tclany m_one;
    Objects m_mixed;
};

namespace Get {

/// Leaves the value of a property as the interpreter's result, unless that is null, and in `value`; true when
/// the object has one. Without one the result is empty. With `defaultOnly` the property's default is read.
bool get(Tcl_Interp* interp, const tclany& object, const std::string& name, HATAttrAny& value,
         bool defaultOnly);
/// The name of a class.
std::string getClass(const tclany& object);
std::string getClass(const ObjectInfo& info);
/// Reads the value that a report shows; true if there is one.
bool report(const tclany& object, const Types::PNameAndProp& entry, HATAttrAny& value);
/// Leaves the default of a property as the result; false and an empty result if it has none. Throws HEXError
/// for a property that the class does not have.
bool getDefaultValue(Tcl_Interp* interp, const tclany& object, const std::string& name, HATAttrAny& value);
bool getDefaultValue(Tcl_Interp* interp, const std::string& className, const std::string& name,
                     HATAttrAny& value);

} // namespace Get

namespace Utils {

/// Stores the status of the run for the property layer; with null, tells the stored one, null at the start.
HDGUIStatus* getGuiStatus(HDGUIStatus* status);

/// Throw HEXError that names the command unless there is at least one object, exactly one.
void atLeastOneObjectOrError(const Objects& objects, const std::string& command);
void oneObjectOrError(const Objects& objects, const std::string& command);
void atLeastOneObjectOrError(unsigned long count, const std::string& command);

/// Sends a WARNING if the object's class does not know a property of this name. Reading it is no error: it
/// has no value.
void warnIfUnknown(Reader& reader, const ObjectInfo& info, const void* object);

/// Sends a WARNING that names the current property if the name is deprecated for the object.
void warnIfDeprecated(const tclany& object, const std::string& name);
void warnIfDeprecated(const ObjectInfo& info, const std::string& name);
/// Rewrites a deprecated name and its value to the current ones.
void mapPropertyNameAndValue(const tclany& object, std::string& name, std::string& value);
void mapPropertyNameAndValue(const ObjectInfo& info, std::string& name, std::string& value);
/// Throws the error of the message key, whose arguments are the name and the class.
[[noreturn]] void noSuchProperty(const std::string& name, const std::string& className, const char* key);
[[noreturn]] void noSuchProperty(const std::string& name, const std::string& className);

/// Appends the properties that an object has, or those of a class, in the registry's order. Throws HEXError
/// as getObjectInfoOrError.
void getPropertyNames(const tclany& object, std::vector<Types::PNameAndProp>& list);
void getPropertyNames(const std::string& className, std::vector<Types::PNameAndProp>& list);

/// Appends the legal values of a property: the words of an enumeration, both values of a bool, the ends of a
/// range; none for any other. With `defaultOnly` the default alone. Throws HEXError for a property that the
/// class does not have.
void getValues(const tclany& object, const std::string& name, std::vector<std::string>& list,
               bool defaultOnly);
void getValues(const std::string& className, const std::string& name, std::vector<std::string>& list,
               bool defaultOnly);
void getValues(const HATAttrSpec& spec, std::vector<std::string>& list, bool defaultOnly);

} // namespace Utils

namespace detail {

/// Enters a class; the first one registered for a type stays. Any thread.
void registerObjectInfo(std::shared_ptr<ObjectInfo> info);

template <class T>
class type_info_of : public TypeInfo {
public:
    const std::type_info& type() const override { return typeid(T); }
    const void* address(const tclany& object) const override { return object.get_if<T>(); }
    const void* elements(vek::tcltasks::detail::collection_wrapper_base& body) const override {
        using wrapper = typename vek::tcltasks::tcl_collection<HSTVector<T>>::wrapper;
        auto* same = dynamic_cast<wrapper*>(&body);
        return same ? same->elements().data() : nullptr;
    }
    size_t stride() const override { return sizeof(std::array<T, 1>); }
    tclany value(const void* object) const override { return tclany(*static_cast<const T*>(object)); }
};

} // namespace detail

/// Makes a native type an object class. A second call does nothing. Returns the class.
template <class T>
std::shared_ptr<ObjectInfo> registerObjectType() {
    if (auto known = getObjectInfo(typeid(T))) {
        return known;
    }
    detail::registerObjectInfo(std::make_shared<ObjectInfo>(std::make_unique<detail::type_info_of<T>>()));
    return getObjectInfo(typeid(T));
}

} // namespace HCPProperty
