#pragma once

/// The object classes of the netlist database as values of Tcl.

#include "design/Database.h"
#include "design/Error.h"
#include "tcltasks/core/task.h"

#include <string>
#include <vector>

namespace design {

/// The only object of class T in the current design with that name; null if there is none, or more than one.
template <class T>
T* find_by_name(const std::string& name) {
    T* result = nullptr;
    bool several = false;
    if (const Design* current = Database::instance().current())
        current->find<T>(name, [&](T* object) {
            several = several || result;
            result = object;
        });
    return several ? nullptr : result;
}

template <class T>
struct native_object_by_name {
    static std::string name(const T* object) { return object->name(); }
    static T* find(const std::string& name) { return find_by_name<T>(name); }
};

template <class T>
using Collection = vek::tcltasks::tcl_collection<HSTVector<T*>>;

template <class T>
Collection<T> collection_of(std::vector<T*> objects) {
    return Collection<T>(HSTVector<T*>(std::move(objects)));
}

/// The objects that an argument stands for, of any classes: a collection, one object, a list of either, or
/// names in the current design.
struct ObjectList {
    std::vector<ObjectRef> objects;
};

/// The object that a value holds or names. Throws Error(no_such_object).
ObjectRef object_from_any(const vek::tcltasks::tclany& value);

/// Objects as a collection, of their class if they have one in common.
Tcl_Obj* to_tcl(const std::vector<ObjectRef>& objects);

/// Lets go of the Tcl values that stand for objects of a design that closes and that no script holds. Those
/// that a script holds stay what they are: handles of dead objects.
void forget_values_of(const Design& design);

} // namespace design

namespace vek::tcltasks {

template <>
struct native_object<design::Cell*> : design::native_object_by_name<design::Cell> {};
template <>
struct native_object<design::Net*> : design::native_object_by_name<design::Net> {};
template <>
struct native_object<design::Pin*> : design::native_object_by_name<design::Pin> {};
template <>
struct native_object<design::Port*> : design::native_object_by_name<design::Port> {};
template <>
struct native_object<design::Design*> {
    static std::string name(const design::Design* d) { return d->name(); }
    static design::Design* find(const std::string& name) { return design::Database::instance().find(name); }
};

template <class tcltype, class ext, class tuid>
struct native_wrapper<design::ObjectList, tcltype, ext, tuid> {
    static Tcl_Obj* convert_to_tcl(const design::ObjectList& list) { return design::to_tcl(list.objects); }
    /// Throws design::Error(no_such_object) for a name that no object has.
    static design::ObjectList convert_to_native(Tcl_Interp* interp, Tcl_Obj* obj);
};

namespace detail {
template <>
constexpr const char* value_kind<design::ObjectList>() {
    return "objects or their names";
}
} // namespace detail

} // namespace vek::tcltasks

namespace design {
/// Reads an argument as objects; see ObjectList.
ObjectList objects_from_tcl(Tcl_Interp* interp, Tcl_Obj* obj);
} // namespace design

template <class tcltype, class ext, class tuid>
design::ObjectList
vek::tcltasks::native_wrapper<design::ObjectList, tcltype, ext, tuid>::convert_to_native(Tcl_Interp* interp,
                                                                                         Tcl_Obj* obj) {
    return design::objects_from_tcl(interp, obj);
}
