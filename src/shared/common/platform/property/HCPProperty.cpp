#include "platform/property/HCPProperty.h"

#include <mutex>
#include <typeindex>
#include <unordered_map>

namespace {

struct class_registry {
    std::mutex mutex;
    std::unordered_map<std::type_index, std::shared_ptr<HCPProperty::ObjectInfo>> classes; // guarded by mutex
};

// Never destroyed: libraries look up their classes until the process ends.
class_registry& registry() {
    static class_registry& instance = *new class_registry;
    return instance;
}

} // namespace

std::shared_ptr<HCPProperty::ObjectInfo> HCPProperty::getObjectInfo(const std::type_info& type) {
    std::lock_guard lock(registry().mutex);
    const auto at = registry().classes.find(type);
    return at == registry().classes.end() ? nullptr : at->second;
}

void HCPProperty::detail::registerObjectInfo(std::shared_ptr<ObjectInfo> info) {
    std::lock_guard lock(registry().mutex);
    registry().classes.emplace(info->getType(), std::move(info));
}
