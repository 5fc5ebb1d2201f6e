#pragma once

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/property/HCPProperty.h"

namespace HCPProperty {

/// Puts a value into an object; a null value takes it away, so that the default shows again.
using WriteFcn = std::function<void(const void* object, const HATAttrAny* value)>;

/// How a value_setter reaches one property.
struct Access {
    std::shared_ptr<Spec> spec;
    GetFcn read; ///< what was set on an object; false if nothing was
    WriteFcn write;
    bool keepsDefault = false; ///< true if taking a value away shows the default; else the default is written
};

/// The setter of a class whose values are read and written one by one. All objects change or none: values are
/// checked first, and when an object refuses its value those before it get theirs back. What stood there
/// before is kept for undo, equal values of neighbours once.
class ValueSetter : public Setter {
public:
    /// Finds a property by the name that the user gave. Throws HEXError if it cannot be set; an access
    /// without a specification stands for a property that only a setter of its own can set.
    using Resolve = std::function<Access(const std::string& name)>;

    ValueSetter(const ObjectInfo& info, Resolve resolve) : m_info(&info), m_resolve(std::move(resolve)) {}

    int set(Tcl_Interp* interp, const Objects& objects, const std::string& name, HATAttr& value) override;
    int set(Tcl_Interp* interp, const Objects& objects, const Pairs& pairs) override;
    int reset(const Objects& objects, const std::string& name, HATAttr& value) override;
    int undo(Tcl_Interp* interp) override;
    int redo(Tcl_Interp* interp) override;

    /// How a property of this setter is reached.
    Access accessOf(const std::string& name) const { return m_resolve(name); }

private:
    // A row of equal values; empty stands for no value.
    struct run {
        size_t count;
        HATAttrAny value;
    };
    struct change {
        std::string name; // by which the property is found again for undo and redo
        Access access;
        HATAttrAny after;          // empty: the value is taken away
        std::vector<bool> skipped; // objects without the property; empty if all have it
        std::vector<run> before;
    };

    change prepare(const std::string& name) const;
    void take(const Objects& objects);
    void apply(change& c);
    void revert(const change& c, size_t count);
    void apply_all();
    bool skips(const change& c, size_t i) const { return !c.skipped.empty() && c.skipped[i]; }
    const void* object(size_t i) const { return &m_objects[i * m_stride]; }

    const ObjectInfo* m_info;
    Resolve m_resolve;
    size_t m_stride = 0;
    std::vector<char> m_objects; // the T of each object, one after the other
    size_t m_count = 0;
    std::vector<change> m_changes;
};

/// A setter for one property of a class.
std::shared_ptr<Setter> makeSetter(const ObjectInfo& info, const Access& access);

/// Gives a class properties of the user's: a specification `_default_` under which create_property works, and
/// a store for the values. The objects are pointers; their values stay until the property is deleted or
/// forgetObject() is called.
void addUserProperties(ObjectInfo& info);

/// Drops the values that users gave to an object which is about to be deleted.
void forgetObject(const ObjectInfo& info, const void* pointer);

} // namespace HCPProperty
