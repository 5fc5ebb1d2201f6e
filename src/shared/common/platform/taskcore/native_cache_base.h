#pragma once

#include <boost/thread/shared_mutex.hpp>
#include <tcl.h>
#include <typeinfo>

#include "platform/taskcore/pointer_table.h"
#include "platform/taskcore/tcltypeinfo.h"

namespace vek::tcltasks {

/// The identity of native objects in Tcl: which Tcl value stands for an object, and which object for a value.
/// Held by the platform, so that all libraries of the process share one pair of maps for each native type.
class native_cache_base {
public:
    using t2n_map = pointer_table<Tcl_Obj*, void*>; ///< each value once
    using n2t_map = pointer_table<void*, Tcl_Obj*>;

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

    /// How many values have left all caches so far: while it stands still, a value that was an object's is it
    /// yet. Any thread.
    static unsigned long removals();

protected:
    static void count_removal();
};

} // namespace vek::tcltasks
