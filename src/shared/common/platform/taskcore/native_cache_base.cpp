#include "platform/taskcore/native_cache_base.h"

#include <atomic>
#include <boost/thread/locks.hpp>
#include <memory>
#include <mutex>
#include <typeindex>
#include <unordered_map>

namespace vek::tcltasks {

namespace {

struct store_table {
    std::mutex mutex;
    std::unordered_map<std::type_index, std::unique_ptr<native_cache_base::store>> stores; // guarded by mutex
};

// Values outlive their library at exit, so the stores are never destroyed.
store_table& table() {
    static store_table& instance = *new store_table;
    return instance;
}

std::atomic<unsigned long> removalCount{0};

} // namespace

native_cache_base::store& native_cache_base::store_of(const detail::itcltypeinfo& info) {
    std::lock_guard lock(table().mutex);
    auto& entry = table().stores[info.get_type_info()];
    if (!entry) {
        entry = std::make_unique<store>();
        entry->info = &info;
    }
    return *entry;
}

const detail::itcltypeinfo* native_cache_base::type_behind(Tcl_Obj* obj) {
    if (const detail::itcltypeinfo* info = detail::GetTclTypeInfo(obj)) {
        return info;
    }
    if (obj->refCount < 2) {
        return nullptr; // the cache would hold it beside whoever asks
    }
    std::lock_guard lock(table().mutex);
    for (const auto& [type, store] : table().stores) {
        boost::shared_lock shared(store->t2nMutex);
        if (store->t2n.find(obj) != store->t2n.end()) {
            return store->info;
        }
    }
    return nullptr;
}

unsigned long native_cache_base::removals() {
    return removalCount.load(std::memory_order_acquire);
}

void native_cache_base::count_removal() {
    removalCount.fetch_add(1, std::memory_order_acq_rel);
}

} // namespace vek::tcltasks
