#pragma once

#include <boost/thread/locks.hpp>

#include "platform/taskcore/native_cache_base.h"
#include "tcltasks/core/tclany.h"

namespace vek::tcltasks {

/// The identity between native objects of pointer type `T` and the Tcl values that stand for them. Lookups
/// take the shared side of a map's lock, changes the exclusive one, one map at a time. The cache holds each
/// value, so a value stays itself whatever Tcl makes of it, until the object is forgotten.
template <class T>
class native_cache : public native_cache_base {
public:
    static t2n_map& get_t2n_cache() { return instance().t2n; }
    static n2t_map& get_n2t_cache() { return instance().n2t; }
    static boost::shared_mutex& get_t2n_mutex() { return instance().t2nMutex; }
    static boost::shared_mutex& get_n2t_mutex() { return instance().n2tMutex; }

    /// The live value that stands for an object, or null.
    static Tcl_Obj* find_value(T native) {
        boost::shared_lock lock(get_n2t_mutex());
        // Not equal_range: to find its end, it reads an entry that is seldom needed and never near.
        const n2t_map& values = get_n2t_cache();
        for (auto at = values.find(key(native)); at != values.end() && at->first == key(native); ++at) {
            if (is_alive(at->second)) {
                return at->second;
            }
        }
        return nullptr;
    }

    /// The object that a value stands for, or null.
    static T find_native(Tcl_Obj* obj) {
        boost::shared_lock lock(get_t2n_mutex());
        const auto at = get_t2n_cache().find(obj);
        return at == get_t2n_cache().end() ? nullptr : static_cast<T>(at->second);
    }

    /// Ties a value to an object and takes the cache's hold on it.
    static void insert(T native, Tcl_Obj* obj) {
        {
            boost::unique_lock lock(get_n2t_mutex());
            get_n2t_cache().emplace(key(native), obj);
        }
        {
            boost::unique_lock lock(get_t2n_mutex());
            get_t2n_cache().emplace(obj, key(native));
        }
        incr_refcount(obj);
    }

    /// Takes a value out that Tcl has freed.
    static void remove(Tcl_Obj* obj) {
        void* native = nullptr;
        {
            boost::upgrade_lock lock(get_t2n_mutex());
            const auto at = get_t2n_cache().find(obj);
            if (at == get_t2n_cache().end()) {
                return;
            }
            native = at->second;
            boost::upgrade_to_unique_lock unique(lock);
            get_t2n_cache().erase(at);
        }
        boost::upgrade_lock lock(get_n2t_mutex());
        const auto [first, last] = get_n2t_cache().equal_range(native);
        for (auto at = first; at != last; ++at) {
            if (at->second == obj) {
                boost::upgrade_to_unique_lock unique(lock);
                get_n2t_cache().erase(at);
                return;
            }
        }
    }

    /// To be called before an object is deleted: its values become plain text, and reading one as an object
    /// is then an error. Interpreter's thread.
    static void forget(T native) {
        while (Tcl_Obj* obj = any_value(native)) {
            remove(obj);
            decr_refcount(obj);
        }
    }

private:
    static void* key(T native) { return const_cast<void*>(static_cast<const volatile void*>(native)); }

    static store& instance() {
        static store& shared = store_of(*detail::tcltypeinfo<T>::instance());
        return shared;
    }

    static Tcl_Obj* any_value(T native) {
        boost::shared_lock lock(get_n2t_mutex());
        const auto at = get_n2t_cache().find(key(native));
        return at == get_n2t_cache().end() ? nullptr : at->second;
    }
};

} // namespace vek::tcltasks
