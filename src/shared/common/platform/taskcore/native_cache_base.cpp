#include "platform/taskcore/native_cache_base.h"

#include <memory>
#include <mutex>
#include <typeindex>

namespace vek::tcltasks {

native_cache_base::store& native_cache_base::store_of(const std::type_info& type) {
    // Values outlive their library at exit, so the stores are never destroyed.
    static std::mutex& mutex = *new std::mutex;
    static auto& stores = *new std::unordered_map<std::type_index, std::unique_ptr<store>>;
    std::lock_guard lock(mutex);
    auto& entry = stores[type];
    if (!entry) {
        entry = std::make_unique<store>();
    }
    return *entry;
}

} // namespace vek::tcltasks
