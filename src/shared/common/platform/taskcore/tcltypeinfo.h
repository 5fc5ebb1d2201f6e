#pragma once

#include <tcl.h>
#include <typeinfo>

namespace vek::tcltasks {

class tclany;

namespace detail {

/// What the task core knows of the native type behind a Tcl value. One stateless object per type, stored
/// beside the value's internal representation.
class itcltypeinfo {
public:
    virtual ~itcltypeinfo() = default;
    virtual const std::type_info& get_type_info() const = 0;
    virtual tclany convert_to_tclany(Tcl_Interp* interp, Tcl_Obj* obj) const = 0;
    virtual void remove_from_native_cache(Tcl_Obj* obj) const = 0;
    virtual void shimmer(Tcl_Obj* obj) const = 0;
};

/// Puts a value under a native type. Its text is made first if it has none and is no collection, so that it
/// goes on working as a string. A collection body held by the value stays held. Interpreter's thread, as all
/// below.
void SetTclObjTypeInfo(Tcl_Obj* obj, const Tcl_ObjType* type, const itcltypeinfo* info);

/// The native type behind a value, or null. Never converts the value.
inline const itcltypeinfo* GetTclTypeInfo(const Tcl_Obj* obj);

/// Turns a collection value, in place, into a plain Tcl list of all its elements. Others stay as they are.
void shimmer(Tcl_Obj* obj);

/// For a collection, nothing is cached: the body is given up with the value.
void remove_from_native_cache(Tcl_Obj* obj);

/// The procedures of the Tcl_ObjType of every native type.
void FreeInternalRepProc(Tcl_Obj* obj);
void InvalidStringRepProc(Tcl_Obj* obj);
void duplicate_collection_tclobj(Tcl_Obj* source, Tcl_Obj* copy);

inline const itcltypeinfo* GetTclTypeInfo(const Tcl_Obj* obj) {
    return obj->typePtr && obj->typePtr->freeIntRepProc == FreeInternalRepProc
               ? static_cast<const itcltypeinfo*>(obj->internalRep.twoPtrValue.ptr2)
               : nullptr;
}

} // namespace detail
} // namespace vek::tcltasks
