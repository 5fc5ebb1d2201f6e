#include "design/cmds/objects.h"

namespace design {

using namespace vek::tcltasks;

namespace {

constexpr int deepest_list = 100;

/// Calls `visit` with a null pointer of each object class until one call returns true.
template <class Visit>
bool any_class(const Visit& visit) {
    return visit(static_cast<Cell*>(nullptr)) || visit(static_cast<Net*>(nullptr)) ||
           visit(static_cast<Pin*>(nullptr)) || visit(static_cast<Port*>(nullptr)) ||
           visit(static_cast<Design*>(nullptr));
}

template <class T>
ObjectRef ref_of(T* object) {
    if constexpr (std::is_same_v<T, Design>) {
        object->require_open();
        return ObjectRef(*object);
    } else {
        return ObjectRef(object);
    }
}

[[noreturn]] void refuse(const std::string& text) {
    throw Error(Fault::no_such_object, "'" + text.substr(0, 200) + "' is no object and names none.");
}

void append_named(const std::string& text, std::vector<ObjectRef>& out) {
    if (!any_class([&]<class T>(T*) {
            T* found = native_object<T*>::find(text);
            if (found)
                out.push_back(ref_of(found));
            return found != nullptr;
        }))
        refuse(text);
}

void append_any(const tclany& value, std::vector<ObjectRef>& out) {
    const bool native = any_class([&]<class T>(T*) {
        T* const* held = value.get_if<T*>();
        if (held)
            out.push_back(ref_of(*held));
        return held != nullptr;
    });
    if (native)
        return;
    const std::string* text = value.get_if<std::string>();
    text ? append_named(*text, out) : refuse(value.get_as_string());
}

void append_collection(const detail::collection_wrapper_base& body, std::vector<ObjectRef>& out) {
    out.reserve(out.size() + body.size());
    const bool typed = any_class([&]<class T>(T*) {
        const auto* same = dynamic_cast<const typename Collection<T>::wrapper*>(&body);
        if (same)
            for (T* object : same->elements())
                out.push_back(ref_of(object));
        return same != nullptr;
    });
    for (unsigned long i = 0; !typed && i < body.size(); ++i)
        append_any(body.get_element_as_tclany(i), out);
}

// A value may stand for an object although Tcl has given it another form meanwhile.
bool append_cached(Tcl_Obj* obj, std::vector<ObjectRef>& out) {
    return any_class([&]<class T>(T*) {
        T* object = native_cache<T*>::find_native(obj);
        if (object)
            out.push_back(ref_of(object));
        return object != nullptr;
    });
}

void append_value(Tcl_Interp* interp, Tcl_Obj* obj, int depth, std::vector<ObjectRef>& out) {
    if (const detail::collection_wrapper_base* body = detail::get_collection(obj))
        return append_collection(*body, out);
    if (append_cached(obj, out))
        return;
    if (const detail::itcltypeinfo* info = detail::GetTclTypeInfo(obj))
        return append_any(info->convert_to_tclany(interp, obj), out);
    const bool list = detail::is_list_type(obj);
    const std::string text = list ? std::string() : HTCTclEncoding::tclGetString(obj);
    if (!list && any_class([&]<class T>(T*) { return native_object<T*>::find(text) != nullptr; }))
        return append_named(text, out);
    // Held, as finding the objects behind its elements may give the value another form.
    const tclobj_ref copy(Tcl_DuplicateObj(obj));
    int count = 0;
    Tcl_Obj** elements = nullptr;
    if (Tcl_ListObjGetElements(nullptr, copy.get(), &count, &elements) != TCL_OK || depth >= deepest_list ||
        (count == 1 && !list))
        refuse(HTCTclEncoding::tclGetString(obj));
    for (int i = 0; i < count; ++i)
        append_value(interp, elements[i], depth + 1, out);
}

template <class T>
Tcl_Obj* typed_collection(const std::vector<ObjectRef>& objects) {
    Collection<T> result;
    result->reserve(objects.size());
    for (const ObjectRef& object : objects)
        if constexpr (std::is_same_v<T, Design>)
            result->push_back(&object.design());
        else
            result->push_back(object.as<T>());
    return native_wrapper<Collection<T>>::convert_to_tcl(result);
}

tclany to_any(const ObjectRef& object) {
    switch (object.object_class()) {
    case ObjectClass::cell:
        return tclany(object.as<Cell>());
    case ObjectClass::net:
        return tclany(object.as<Net>());
    case ObjectClass::pin:
        return tclany(object.as<Pin>());
    case ObjectClass::port:
        return tclany(object.as<Port>());
    default:
        return tclany(&object.design());
    }
}

template <class T>
void forget_values(const Design& design) {
    std::vector<Tcl_Obj*> idle;
    {
        boost::shared_lock lock(native_cache<T*>::get_n2t_mutex());
        for (const auto& [object, value] : native_cache<T*>::get_n2t_cache()) {
            const Design* owner = ObjectChunk::of(object).design;
            if ((owner == &design || !owner) && value->refCount == 1)
                idle.push_back(value);
        }
    }
    for (Tcl_Obj* value : idle) {
        native_cache<T*>::remove(value);
        native_cache<T*>::decr_refcount(value);
    }
}

} // namespace

ObjectList objects_from_tcl(Tcl_Interp* interp, Tcl_Obj* obj) {
    ObjectList list;
    append_value(interp, obj, 0, list.objects);
    return list;
}

ObjectRef object_from_any(const tclany& value) {
    std::vector<ObjectRef> one;
    append_any(value, one);
    return one.front();
}

Tcl_Obj* to_tcl(const std::vector<ObjectRef>& objects) {
    const ObjectClass cls = objects.empty() ? ObjectClass::cell : objects.front().object_class();
    bool mixed = false;
    for (const ObjectRef& object : objects)
        mixed = mixed || object.object_class() != cls;
    if (mixed) {
        tcl_collection<HSTVector<tclany>> result;
        for (const ObjectRef& object : objects)
            result->push_back(to_any(object));
        return native_wrapper<tcl_collection<HSTVector<tclany>>>::convert_to_tcl(result);
    }
    switch (cls) {
    case ObjectClass::cell:
        return typed_collection<Cell>(objects);
    case ObjectClass::net:
        return typed_collection<Net>(objects);
    case ObjectClass::pin:
        return typed_collection<Pin>(objects);
    case ObjectClass::port:
        return typed_collection<Port>(objects);
    default:
        return typed_collection<Design>(objects);
    }
}

void forget_values_of(const Design& design) {
    forget_values<Cell>(design);
    forget_values<Net>(design);
    forget_values<Pin>(design);
    forget_values<Port>(design);
}

} // namespace design
