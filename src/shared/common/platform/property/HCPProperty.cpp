#include "platform/property/HCPProperty.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <strings.h>
#include <typeindex>
#include <unordered_map>

#include "platform/gui/HDGUIStatus.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"

namespace {

using HCPProperty::ObjectInfo;
using HCPProperty::Spec;
using vek::tcltasks::tclany;
namespace core = vek::tcltasks::detail;

struct class_registry {
    std::mutex mutex;
    std::unordered_map<std::type_index, std::shared_ptr<ObjectInfo>> byType; // guarded by mutex
    std::unordered_map<std::string, ObjectInfo*> byName;                     // guarded by mutex
    std::vector<std::shared_ptr<ObjectInfo>> all;                            // guarded by mutex
};

// Never destroyed: libraries look up their classes until the process ends.
class_registry& registry() {
    static class_registry& instance = *new class_registry;
    return instance;
}

char fold(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

struct caseless_hash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const {
        size_t hash = 14695981039346656037u;
        for (const char c : text) {
            hash = (hash ^ static_cast<unsigned char>(fold(c))) * 1099511628211u;
        }
        return hash;
    }
};

struct caseless_equal {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const {
        return a.size() == b.size() &&
               std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return fold(x) == fold(y); });
    }
};

template <class Value>
using caseless_map = std::unordered_map<std::string, Value, caseless_hash, caseless_equal>;

template <class... Args>
HEXError error(com_msg_mgr::Key<std::type_identity_t<Args>...> key, const Args&... args) {
    return HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, key, args...));
}

// The class of a type without a lock: classes are never taken out. The last one found is the next one asked
// for.
ObjectInfo* find_class(const std::type_info& type) {
    static thread_local const std::type_info* lastType = nullptr;
    static thread_local ObjectInfo* last = nullptr;
    if (&type != lastType) {
        std::lock_guard lock(registry().mutex);
        const auto at = registry().byType.find(type);
        if (at == registry().byType.end()) {
            return nullptr;
        }
        last = at->second.get();
        lastType = &type;
    }
    return last;
}

struct found_object {
    ObjectInfo* info;
    const void* object;
};

found_object find_or_error(const tclany& value) {
    ObjectInfo* info = find_class(value.type());
    if (!info) {
        throw error("@17-5350@%s\n", value.get_as_string());
    }
    const void* object = info->typeInfo().address(value);
    info->aliveOrError(object);
    return {info, object};
}

const Spec& require_spec(const ObjectInfo& info, const std::string& name) {
    if (const Spec* spec = info.findSpec(name)) {
        return *spec;
    }
    HCPProperty::Utils::noSuchProperty(name, HCPProperty::Get::getClass(info));
}

void set_result(Tcl_Interp* interp, const HATAttrAny& value) {
    if (interp) {
        Tcl_SetObjResult(interp, HATAttrUtils::getTclValue(value));
    }
}

} // namespace

namespace HCPProperty {

int Setter::set(Tcl_Interp*, const Objects&, const Pairs&) {
    return not_supported;
}

bool Spec::isValid(const void* object, const std::string& name, std::string& outName) const {
    if (m_valid) {
        return m_valid(object, name, outName);
    }
    if (m_info->defaultSpec() != this) {
        outName = getName();
    }
    return true;
}

bool Spec::isValid(const tclany& object, const std::string& name, std::string& outName) const {
    const void* address = m_info->typeInfo().address(object);
    return address && m_info->isAlive(address) && isValid(address, name, outName);
}

void Spec::isValidOrError(const tclany& object, const std::string& name, std::string& outName) const {
    const auto [info, address] = find_or_error(object);
    if (info != m_info) {
        throw error("@17-5356@%s%s%s\n", name, Get::getClass(*m_info), Get::getClass(*info));
    }
    if (!isValid(address, name, outName)) {
        if (m_info->defaultSpec() == this || m_attrSpec.isDeleted()) {
            Utils::noSuchProperty(name, Get::getClass(*m_info));
        }
        throw error("@17-5357@%s%s%s\n", Get::getClass(*m_info), object.get_as_string(), getName());
    }
}

bool Spec::getProperty(const tclany& object, const std::string& name, HATAttrAny& value) const {
    return getProperty(m_info->typeInfo().address(object), name, value);
}

struct ObjectInfo::index {
    caseless_map<std::shared_ptr<Spec>> specs;
    caseless_map<deprecated> deprecatedNames;
};

ObjectInfo::ObjectInfo(std::unique_ptr<TypeInfo> type)
    : m_type(std::move(type)), m_index(std::make_unique<index>()) {}
ObjectInfo::~ObjectInfo() = default;

void ObjectInfo::setName(const std::string& name) {
    std::lock_guard lock(registry().mutex);
    m_name = name;
    registry().byName.emplace(name, this);
}

std::shared_ptr<Spec> ObjectInfo::getSpec(const std::string& name, bool orError) const {
    if (name == defaultSpecName) {
        return m_default;
    }
    auto at = m_index->specs.find(name);
    if (at == m_index->specs.end()) {
        if (const deprecated* old = findDeprecated(name)) {
            at = m_index->specs.find(old->current);
        }
    }
    if (at != m_index->specs.end()) {
        return at->second;
    }
    if (orError) {
        Utils::noSuchProperty(name, Get::getClass(*this));
    }
    return nullptr;
}

const Spec* ObjectInfo::findSpec(std::string_view name) const {
    auto at = m_index->specs.find(name);
    if (at == m_index->specs.end()) {
        const deprecated* old = findDeprecated(name);
        if (!old || (at = m_index->specs.find(old->current)) == m_index->specs.end()) {
            return nullptr;
        }
    }
    return at->second.get();
}

std::shared_ptr<Spec> ObjectInfo::createSpecNoRegister(const std::string& name) {
    auto spec = std::make_shared<Spec>(*this, name);
    spec->getAttrSpec()->setClassName(m_name);
    return spec;
}

std::shared_ptr<Spec> ObjectInfo::createSpec(const std::string& name) {
    if (auto known = getSpec(name)) {
        return known;
    }
    auto spec = createSpecNoRegister(name);
    if (name == defaultSpecName) {
        spec->getAttrSpec()->setVisible(false);
        m_default = spec;
    } else {
        m_index->specs.emplace(name, spec);
        m_specs.push_back(spec);
    }
    return spec;
}

std::shared_ptr<Spec> ObjectInfo::createSpecOrError(const std::string& name) {
    if (name.empty() || name == defaultSpecName) {
        throw error("@17-5359@%s\n", name);
    }
    if (const auto known = getSpec(name)) {
        throw error("@17-5360@%s%s%s%s\n", name, Get::getClass(*this), known->getName(),
                    HATAttrUtils::getStringType(known->getAttrSpec()->getAttrType()));
    }
    return createSpec(name);
}

void ObjectInfo::deleteSpec(const std::string& name) {
    const auto at = m_index->specs.find(name);
    if (at == m_index->specs.end()) {
        return;
    }
    const std::shared_ptr<Spec> spec = at->second;
    m_index->specs.erase(at);
    std::erase(m_specs, spec);
    spec->getAttrSpec()->setDeleted(true);
    m_deleted.push_back(spec);
}

void ObjectInfo::attr_spec_iterator::skip() {
    std::string out;
    while (m_object && m_at < m_specs->size() &&
           !(*m_specs)[m_at]->isValid(*m_object, (*m_specs)[m_at]->getName(), out)) {
        ++m_at;
    }
}

ObjectInfo::attr_spec_iterator ObjectInfo::beginAttrSpec(const tclany& object) const {
    return attr_spec_iterator(m_specs, 0, object.empty() ? nullptr : &object);
}

ObjectInfo::attr_spec_iterator ObjectInfo::endAttrSpec() const {
    return attr_spec_iterator(m_specs, m_specs.size(), nullptr);
}

HATAttrSpec* ObjectInfo::getAttrSpec(const tclany& object, const std::string& name) const {
    const auto spec = getSpec(name);
    std::string out;
    return spec && (object.empty() || spec->isValid(object, name, out)) ? spec->getAttrSpec() : nullptr;
}

void ObjectInfo::addDeprecatedName(const std::string& name, const std::string& current, ValueMap map) {
    m_index->deprecatedNames.insert_or_assign(name, deprecated{current, std::move(map)});
}

const ObjectInfo::deprecated* ObjectInfo::findDeprecated(std::string_view name) const {
    if (m_index->deprecatedNames.empty()) {
        return nullptr;
    }
    const auto at = m_index->deprecatedNames.find(name);
    return at == m_index->deprecatedNames.end() ? nullptr : &at->second;
}

void ObjectInfo::throwGone() const {
    throw error("@17-5351@%s\n", Get::getClass(*this));
}

std::shared_ptr<ObjectInfo> getObjectInfo(const std::type_info& type) {
    std::lock_guard lock(registry().mutex);
    const auto at = registry().byType.find(type);
    return at == registry().byType.end() ? nullptr : at->second;
}

std::shared_ptr<ObjectInfo> getObjectInfo(const tclany& object) {
    return getObjectInfo(object.type());
}

std::shared_ptr<ObjectInfo> getObjectInfo(const std::string& className) {
    std::lock_guard lock(registry().mutex);
    const auto at = registry().byName.find(className);
    return at == registry().byName.end() ? nullptr : registry().byType.at(at->second->getType());
}

std::shared_ptr<ObjectInfo> getObjectInfoOrError(const tclany& object) {
    find_or_error(object);
    return getObjectInfo(object.type());
}

std::shared_ptr<ObjectInfo> getObjectInfoOrError(const std::string& className) {
    if (auto info = getObjectInfo(className)) {
        return info;
    }
    std::vector<std::shared_ptr<ObjectInfo>> all;
    getAllObjectInfo(all);
    std::vector<std::string> names;
    for (const auto& info : all) {
        if (!info->getName().empty() && info->getSpec("class")) {
            names.push_back("'" + info->getName() + "'");
        }
    }
    std::sort(names.begin(), names.end());
    std::string known;
    for (const std::string& name : names) {
        known += (known.empty() ? "" : ", ") + name;
    }
    throw error("@17-5352@%s%s\n", className, known);
}

void getAllObjectInfo(std::vector<std::shared_ptr<ObjectInfo>>& list) {
    std::lock_guard lock(registry().mutex);
    list.insert(list.end(), registry().all.begin(), registry().all.end());
}

void detail::registerObjectInfo(std::shared_ptr<ObjectInfo> info) {
    std::lock_guard lock(registry().mutex);
    if (registry().byType.emplace(info->getType(), info).second) {
        registry().all.push_back(std::move(info));
    }
}

void Reader::bind(const ObjectInfo& info) {
    m_info = &info;
    m_spec = info.findSpec(m_name);
    m_canonical = m_spec ? &m_spec->getName() : &m_name;
    if (!m_spec) {
        m_spec = info.defaultSpec();
    }
}

bool Reader::known(const ObjectInfo& info, const void* object) {
    if (&info != m_info) {
        bind(info);
    }
    std::string out;
    return m_spec && (m_spec != info.defaultSpec() || m_spec->isValid(object, m_name, out));
}

ObjectRange::ObjectRange(Tcl_Interp* interp, Tcl_Obj* argument) : m_argument(argument) {
    if (auto* body = core::get_collection(argument)) {
        m_size = body->size();
        if (ObjectInfo* info = find_class(body->get_value_type_info())) {
            if ((m_elements = info->typeInfo().elements(*body)) || m_size == 0) {
                m_stride = info->typeInfo().stride();
                m_info = getObjectInfo(info->getType());
                return;
            }
        }
    } else if (const auto* type = core::GetTclTypeInfo(argument)) {
        m_one = type->convert_to_tclany(interp, argument);
        m_size = 1;
        return;
    }
    m_mixed = vek::tcltasks::native_wrapper<Objects>::convert_to_native(interp, argument);
    m_size = m_mixed.size();
}

ObjectRange::item ObjectRange::mixed(unsigned long index) const {
    const found_object found = find_or_error(m_one.empty() ? (*m_mixed)[index] : m_one);
    return {found.info, found.object};
}

tclany ObjectRange::value(unsigned long index) const {
    if (m_info) {
        return m_info->typeInfo().value(static_cast<const char*>(m_elements) + index * m_stride);
    }
    return m_one.empty() ? (*m_mixed)[index] : m_one;
}

namespace Get {

bool get(Tcl_Interp* interp, const tclany& object, const std::string& name, HATAttrAny& value,
         bool defaultOnly) {
    if (defaultOnly) {
        return getDefaultValue(interp, object, name, value);
    }
    const found_object found = find_or_error(object);
    Reader reader(name);
    value = HATAttrAny();
    const bool has = reader.get(*found.info, found.object, value);
    if (!has) {
        value = HATAttrAny();
        Utils::warnIfUnknown(reader, *found.info, found.object);
    }
    set_result(interp, value);
    return has;
}

std::string getClass(const ObjectInfo& info) {
    HATAttrAny value;
    if (const Spec* spec = info.findSpec("class"); spec && spec->getProperty(nullptr, "class", value)) {
        return HATAttrUtils::getStringValue(value);
    }
    return info.getName();
}

std::string getClass(const tclany& object) {
    const ObjectInfo* info = find_class(object.type());
    return info ? getClass(*info) : std::string();
}

bool report(const tclany& object, const Types::PNameAndProp& entry, HATAttrAny& value) {
    return entry.spec && entry.spec->getProperty(object, entry.name, value);
}

namespace {

bool default_of(Tcl_Interp* interp, const ObjectInfo& info, const std::string& name, HATAttrAny& value) {
    const HATAttrSpec* spec = require_spec(info, name).getAttrSpec();
    value = spec->getDefault();
    set_result(interp, value);
    return spec->hasDefault();
}

} // namespace

bool getDefaultValue(Tcl_Interp* interp, const tclany& object, const std::string& name, HATAttrAny& value) {
    return default_of(interp, *find_or_error(object).info, name, value);
}

bool getDefaultValue(Tcl_Interp* interp, const std::string& className, const std::string& name,
                     HATAttrAny& value) {
    return default_of(interp, *getObjectInfoOrError(className), name, value);
}

} // namespace Get

namespace Utils {

HDGUIStatus* getGuiStatus(HDGUIStatus* status) {
    static std::atomic<HDGUIStatus*> stored{nullptr};
    if (status) {
        stored = status;
    }
    return stored;
}

void atLeastOneObjectOrError(unsigned long count, const std::string& command) {
    if (count == 0) {
        throw error("@17-5353@%s\n", command);
    }
}

void atLeastOneObjectOrError(const Objects& objects, const std::string& command) {
    atLeastOneObjectOrError(objects.size(), command);
}

void oneObjectOrError(const Objects& objects, const std::string& command) {
    atLeastOneObjectOrError(objects, command);
    if (objects.size() > 1) {
        throw error("@17-5361@%s%d\n", command, static_cast<long>(objects.size()));
    }
}

void warnIfUnknown(Reader& reader, const ObjectInfo& info, const void* object) {
    if (!reader.known(info, object)) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-5363@%s%s\n", reader.name(),
                           Get::getClass(info));
    }
}

void warnIfDeprecated(const ObjectInfo& info, const std::string& name) {
    if (const auto* old = info.findDeprecated(name)) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-5362@%s%s%s\n", name,
                           Get::getClass(info), old->current);
    }
}

void warnIfDeprecated(const tclany& object, const std::string& name) {
    if (const ObjectInfo* info = find_class(object.type())) {
        warnIfDeprecated(*info, name);
    }
}

void mapPropertyNameAndValue(const ObjectInfo& info, std::string& name, std::string& value) {
    if (const auto* old = info.findDeprecated(name)) {
        if (old->map) {
            value = old->map(value);
        }
        name = old->current;
    }
}

void mapPropertyNameAndValue(const tclany& object, std::string& name, std::string& value) {
    if (const ObjectInfo* info = find_class(object.type())) {
        mapPropertyNameAndValue(*info, name, value);
    }
}

void noSuchProperty(const std::string& name, const std::string& className, const char* key) {
    throw HEXError(ComMsgMgrInstance::fromKey("common", ComMsgMgr::MSGTYPE_ERROR, key, {name, className}));
}

void noSuchProperty(const std::string& name, const std::string& className) {
    throw error("@17-142@%s%s\n", name, className);
}

namespace {

void append_names(const ObjectInfo& info, const tclany* object, std::vector<Types::PNameAndProp>& list) {
    std::string out;
    for (const auto& spec : info.specs()) {
        if (!object || spec->isValid(*object, spec->getName(), out)) {
            list.push_back({spec->getName(), {}, false, spec->getAttrSpec()->isVisible(), spec});
        }
    }
}

} // namespace

void getPropertyNames(const tclany& object, std::vector<Types::PNameAndProp>& list) {
    append_names(*find_or_error(object).info, &object, list);
}

void getPropertyNames(const std::string& className, std::vector<Types::PNameAndProp>& list) {
    append_names(*getObjectInfoOrError(className), nullptr, list);
}

void getValues(const HATAttrSpec& spec, std::vector<std::string>& list, bool defaultOnly) {
    if (defaultOnly) {
        if (spec.hasDefault()) {
            list.push_back(HATAttrUtils::getStringValue(spec.getDefault()));
        }
        return;
    }
    list.insert(list.end(), spec.getEnumRange().begin(), spec.getEnumRange().end());
    if (spec.getAttrType() == HATAttrTypes::type_bool) {
        list.insert(list.end(), {"0", "1"});
    }
    if (const auto& range = spec.getRange()) {
        list.insert(list.end(),
                    {HATAttrUtils::numberText(range->first), HATAttrUtils::numberText(range->second)});
    }
}

void getValues(const tclany& object, const std::string& name, std::vector<std::string>& list,
               bool defaultOnly) {
    getValues(*require_spec(*find_or_error(object).info, name).getAttrSpec(), list, defaultOnly);
}

void getValues(const std::string& className, const std::string& name, std::vector<std::string>& list,
               bool defaultOnly) {
    getValues(*require_spec(*getObjectInfoOrError(className), name).getAttrSpec(), list, defaultOnly);
}

} // namespace Utils
} // namespace HCPProperty
