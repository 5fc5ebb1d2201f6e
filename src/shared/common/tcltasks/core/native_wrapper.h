#pragma once

#include <boost/core/demangle.hpp>
#include <span>
#include <string>
#include <tcl.h>
#include <typeinfo>
#include <vector>

#include "platform/env/HSTVector.h"
#include "platform/msg/HEX.h"
#include "platform/taskcore/HTCErrors.h"
#include "platform/taskcore/tcltypeinfo.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/HTCTclListCmds.h"
#include "tcltasks/core/native_cache.h"
#include "tcltasks/core/tclany.h"

namespace vek::tcltasks {

/// Finds an object by its name. Throws HTCErrors::type_error if there is none of that name, and
/// HEXAlgException if the type has no conversion from text.
template <class T>
struct HTCGetNativeFromString {
    static T get(const std::string& text) {
        if constexpr (findable_native_pointer<T>) {
            if (T found = native_object<T>::find(text)) {
                return found;
            }
            throw HTCErrors::type_error();
        } else {
            throw HEXAlgException("HTCGetNativeFromString<" + boost::core::demangle(typeid(T).name()) +
                                  "> not implemented");
        }
    }
};

namespace detail {

/// The compiler's name of a type, as the names of Tcl types carry it.
inline std::string compiler_name(const std::type_info& type) {
    const char* name = type.name();
    return *name == '*' ? name + 1 : name;
}

template <class T, class tcltype, class ext, class tuid>
class tcltypeinfo : public itcltypeinfo {
public:
    static const tcltypeinfo* instance() {
        static const tcltypeinfo singleton;
        return &singleton;
    }

    const std::type_info& get_type_info() const override { return typeid(T); }
    tclany convert_to_tclany(Tcl_Interp* interp, Tcl_Obj* obj) const override {
        return native_wrapper<T>::convert_to_tclany(interp, obj);
    }
    void remove_from_native_cache(Tcl_Obj* obj) const override {
        if constexpr (native_pointer<T>) {
            if (obj->refCount <= 0) {
                native_cache<T>::remove(obj);
            }
        } else {
            detail::remove_from_native_cache(obj);
        }
    }
    void shimmer(Tcl_Obj* obj) const override { detail::shimmer(obj); }
};

} // namespace detail

/// The Tcl type of values that carry a native object.
template <class T, class tcltype = tcltypes::tclobj>
struct native_wrapper_base {
    static const Tcl_ObjType* get_type_obj() {
        static const std::string& name = *new std::string("ormeau:" + detail::compiler_name(typeid(T)));
        static const Tcl_ObjType type = {name.c_str(), detail::FreeInternalRepProc, nullptr,
                                         detail::InvalidStringRepProc, nullptr};
        return &type;
    }
};

/// Objects behind pointers: one Tcl value for each, found again from either side.
template <class T, class tcltype, class ext, class tuid>
requires native_pointer<T>
struct native_wrapper<T, tcltype, ext, tuid> : native_wrapper_base<T, tcltype> {
    using native_wrapper_base<T, tcltype>::get_type_obj;

    /// Null for null.
    static Tcl_Obj* convert_to_tcl(const T& native) {
        tclobj_ref value;
        convert_to_tcl({&native, 1}, &value);
        return value.get(); // held by the cache
    }

    /// The values of many objects, for a fraction of what as many single calls take.
    static void convert_to_tcl(std::span<const T> natives, tclobj_ref* values) {
        if (!native_cache<T>::find_values(natives, values)) {
            for (size_t i = 0; i < natives.size(); ++i) {
                if (natives[i] && !values[i]) {
                    values[i] = HTCTclEncoding::tclNewStringObj(native_object<T>::name(natives[i]));
                }
            }
            native_cache<T>::insert(natives, values);
        }
        for (size_t i = 0; i < natives.size(); ++i) {
            if (natives[i]) {
                put_under_type(values[i].get());
            }
        }
    }

    /// Throws HTCErrors::type_error if neither the value nor an object of its name is a T.
    static T convert_to_native(Tcl_Interp*, Tcl_Obj* obj) {
        if (T native = native_cache<T>::find_native(obj)) {
            put_under_type(obj);
            return native;
        }
        try {
            return HTCGetNativeFromString<T>::get(HTCTclEncoding::tclGetString(obj));
        } catch (const HEXAlgException&) {
            throw HTCErrors::type_error();
        }
    }

    static tclany convert_to_tclany(Tcl_Interp* interp, Tcl_Obj* obj) {
        return tclany(convert_to_native(interp, obj));
    }

private:
    static void put_under_type(Tcl_Obj* obj) {
        if (obj->typePtr != get_type_obj()) {
            detail::SetTclObjTypeInfo(obj, get_type_obj(), detail::tcltypeinfo<T>::instance());
        }
    }
};

template <class tcltype, class ext, class tuid>
struct native_wrapper<std::string, tcltype, ext, tuid> {
    static Tcl_Obj* convert_to_tcl(const std::string& text) { return HTCTclEncoding::tclNewStringObj(text); }
    static std::string convert_to_native(Tcl_Interp*, Tcl_Obj* obj) {
        return HTCTclEncoding::tclGetString(obj);
    }
};

/// As a result, "1" or "0"; as input, what Tcl takes for a boolean and the words of ResolveBool.
template <class tcltype, class ext, class tuid>
struct native_wrapper<bool, tcltype, ext, tuid> {
    static Tcl_Obj* convert_to_tcl(const bool& value) { return Tcl_NewIntObj(value ? 1 : 0); }
    static bool convert_to_native(Tcl_Interp*, Tcl_Obj* obj);
};

template <class tcltype, class ext, class tuid>
struct native_wrapper<int, tcltype, ext, tuid> {
    static Tcl_Obj* convert_to_tcl(const int& value) { return Tcl_NewIntObj(value); }
    static int convert_to_native(Tcl_Interp*, Tcl_Obj* obj) {
        int value = 0;
        if (Tcl_GetIntFromObj(nullptr, obj, &value) != TCL_OK) {
            throw HTCErrors::type_error();
        }
        return value;
    }
};

template <class tcltype, class ext, class tuid>
struct native_wrapper<long, tcltype, ext, tuid> {
    static Tcl_Obj* convert_to_tcl(const long& value) { return Tcl_NewLongObj(value); }
    static long convert_to_native(Tcl_Interp*, Tcl_Obj* obj) {
        long value = 0;
        if (Tcl_GetLongFromObj(nullptr, obj, &value) != TCL_OK) {
            throw HTCErrors::type_error();
        }
        return value;
    }
};

/// A value below zero or beyond 32 bits is refused, not wrapped.
template <class tcltype, class ext, class tuid>
struct native_wrapper<unsigned, tcltype, ext, tuid> {
    static Tcl_Obj* convert_to_tcl(const unsigned& value) { return Tcl_NewLongObj(value); }
    static unsigned convert_to_native(Tcl_Interp* interp, Tcl_Obj* obj) {
        const long value = native_wrapper<long>::convert_to_native(interp, obj);
        if (value < 0 || value > 0xFFFFFFFFL) {
            throw HTCErrors::type_error();
        }
        return static_cast<unsigned>(value);
    }
};

template <class tcltype, class ext, class tuid>
struct native_wrapper<double, tcltype, ext, tuid> {
    static Tcl_Obj* convert_to_tcl(const double& value) { return Tcl_NewDoubleObj(value); }
    static double convert_to_native(Tcl_Interp*, Tcl_Obj* obj) {
        double value = 0;
        if (Tcl_GetDoubleFromObj(nullptr, obj, &value) != TCL_OK) {
            throw HTCErrors::type_error();
        }
        return value;
    }
};

/// The value itself; a task that keeps it beyond the call takes a reference.
template <class tcltype, class ext, class tuid>
struct native_wrapper<Tcl_Obj*, tcltype, ext, tuid> {
    static Tcl_Obj* convert_to_tcl(Tcl_Obj* const& value) { return value; }
    static Tcl_Obj* convert_to_native(Tcl_Interp*, Tcl_Obj* obj) { return obj; }
};

/// A native value as what it is, anything else as text.
template <class tcltype, class ext, class tuid>
struct native_wrapper<tclany, tcltype, ext, tuid> {
    static Tcl_Obj* convert_to_tcl(const tclany& value) { return value.get_as_tcl_obj(); }
    static tclany convert_to_native(Tcl_Interp* interp, Tcl_Obj* obj) {
        const detail::itcltypeinfo* info = native_cache_base::type_behind(obj);
        return info ? info->convert_to_tclany(interp, obj) : tclany(HTCTclEncoding::tclGetString(obj));
    }
};

namespace detail {

/// Lists of plain elements. A value that is no list gives an empty vector.
template <class Vector>
struct list_wrapper {
    using element = typename Vector::value_type;

    static Vector tcllist_to_native(Tcl_Interp* interp, Tcl_Obj* list) {
        Vector elements;
        int objc = 0;
        Tcl_Obj** objv = nullptr;
        if (HTCTclListCmds::tclListObjGetElements(nullptr, list, &objc, &objv) == TCL_OK) {
            elements.reserve(static_cast<size_t>(objc));
            for (int i = 0; i < objc; ++i) {
                elements.push_back(native_wrapper<element>::convert_to_native(interp, objv[i]));
            }
        }
        return elements;
    }

    static Tcl_Obj* native_to_tcllist(const Vector& elements) {
        Tcl_Obj* list = Tcl_NewListObj(static_cast<int>(elements.size()), nullptr);
        for (const element& e : elements) {
            Tcl_ListObjAppendElement(nullptr, list, native_wrapper<element>::convert_to_tcl(e));
        }
        return list;
    }

    static Tcl_Obj* convert_to_tcl(const Vector& elements) { return native_to_tcllist(elements); }
    static Vector convert_to_native(Tcl_Interp* interp, Tcl_Obj* obj) {
        return tcllist_to_native(interp, obj);
    }
};

bool boolean_from_tcl(Tcl_Obj* obj);

} // namespace detail

template <class tcltype, class ext, class tuid>
struct native_wrapper<std::vector<std::string>, tcltype, ext, tuid>
    : detail::list_wrapper<std::vector<std::string>> {};
template <class tcltype, class ext, class tuid>
struct native_wrapper<std::vector<Tcl_Obj*>, tcltype, ext, tuid>
    : detail::list_wrapper<std::vector<Tcl_Obj*>> {};
template <class tcltype, class ext, class tuid>
struct native_wrapper<HSTVector<std::string>, tcltype, ext, tuid>
    : detail::list_wrapper<HSTVector<std::string>> {};

template <class tcltype, class ext, class tuid>
bool native_wrapper<bool, tcltype, ext, tuid>::convert_to_native(Tcl_Interp*, Tcl_Obj* obj) {
    return detail::boolean_from_tcl(obj);
}

} // namespace vek::tcltasks
