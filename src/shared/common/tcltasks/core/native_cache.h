#pragma once

#include <boost/thread/locks.hpp>
#include <span>

#include "platform/taskcore/native_cache_base.h"
#include "platform/tcl/tclobj_ref.h"
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

    /// Fills in the live values that stand for objects. False if one of these has none; null has none and
    /// needs none.
    static bool find_values(std::span<const T> natives, tclobj_ref* values) {
        boost::shared_lock lock(get_n2t_mutex());
        for (T native : natives) {
            get_n2t_cache().prefetch(key(native));
        }
        bool all = true;
        for (size_t i = 0; i < natives.size(); ++i) {
            values[i] = live_value(natives[i]);
            all = all && (values[i] || !natives[i]);
        }
        return all;
    }

    /// The object that a value stands for, or null.
    static T find_native(Tcl_Obj* obj) {
        boost::shared_lock lock(get_t2n_mutex());
        const auto at = get_t2n_cache().find(obj);
        return at == get_t2n_cache().end() ? nullptr : static_cast<T>(at->second);
    }

    /// Ties values to their objects and takes the cache's hold on them. An object that has a live value by
    /// now keeps it, and it takes the place of the given one.
    static void insert(std::span<const T> natives, tclobj_ref* values) {
        {
            boost::unique_lock lock(get_n2t_mutex());
            for (size_t i = 0; i < natives.size(); ++i) {
                if (Tcl_Obj* known = live_value(natives[i])) {
                    values[i] = known;
                } else if (natives[i]) {
                    get_n2t_cache().insert(key(natives[i]), values[i].get());
                }
            }
        }
        boost::unique_lock lock(get_t2n_mutex());
        for (size_t i = 0; i < natives.size(); ++i) {
            if (natives[i] && get_t2n_cache().emplace(values[i].get(), key(natives[i]))) {
                incr_refcount(values[i].get());
            }
        }
    }

    /// Takes a value out that Tcl has freed.
    static void remove(Tcl_Obj* obj) {
        count_removal();
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
        const auto at =
            get_n2t_cache().find_if(native, [&](const Tcl_Obj* standing) { return standing == obj; });
        if (at != get_n2t_cache().end()) {
            boost::upgrade_to_unique_lock unique(lock);
            get_n2t_cache().erase(at);
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

    static Tcl_Obj* live_value(T native) {
        const auto at = get_n2t_cache().find_if(key(native), is_alive);
        return at == get_n2t_cache().end() ? nullptr : at->second;
    }

    static Tcl_Obj* any_value(T native) {
        boost::shared_lock lock(get_n2t_mutex());
        const auto at = get_n2t_cache().find(key(native));
        return at == get_n2t_cache().end() ? nullptr : at->second;
    }
};

} // namespace vek::tcltasks
