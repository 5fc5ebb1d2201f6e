#pragma once

#include <boost/thread/shared_mutex.hpp>
#include <cstdint>
#include <tcl.h>
#include <typeinfo>
#include <unordered_map>

#include "platform/taskcore/tcltypeinfo.h"

namespace vek::tcltasks {

/// The identity of native objects in Tcl: which Tcl value stands for an object, and which object for a value.
/// Held by the platform, so that all libraries of the process share one pair of maps for each native type.
class native_cache_base {
public:
    /// The hash of both maps: addresses are aligned, so the low bits carry nothing.
    struct pointer_hash {
        size_t operator()(const void* p) const {
            const auto address = reinterpret_cast<uintptr_t>(p);
            return (address >> 3) + address;
        }
    };

    using t2n_map = std::unordered_map<Tcl_Obj*, void*, pointer_hash>;
    using n2t_map = std::unordered_multimap<void*, Tcl_Obj*, pointer_hash>;

    struct store {
        const detail::itcltypeinfo* info; // of the native type
        t2n_map t2n;                      // guarded by t2nMutex
        n2t_map n2t;                      // guarded by n2tMutex
        boost::shared_mutex t2nMutex;     // the two are taken one after the other, never both at once
        boost::shared_mutex n2tMutex;
    };

    /// The store of a native type, made at the first call and never destroyed. Any thread.
    static store& store_of(const detail::itcltypeinfo& info);

    /// The native type behind a value, or null; also of a value that stands for an object and that Tcl has
    /// since given another form, as `llength $object` does.
    static const detail::itcltypeinfo* type_behind(Tcl_Obj* obj);

    /// True if a cached value may still be used: its text is there to stand for the object.
    static bool is_alive(Tcl_Obj* obj) { return obj && obj->refCount > 0 && obj->bytes; }

    /// The cache's own hold on a value; it lets go when the native object leaves.
    static void incr_refcount(Tcl_Obj* obj) { Tcl_IncrRefCount(obj); }
    static void decr_refcount(Tcl_Obj* obj) { Tcl_DecrRefCount(obj); }
};

} // namespace vek::tcltasks
