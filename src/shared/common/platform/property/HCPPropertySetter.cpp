#include "platform/property/HCPPropertySetter.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"

namespace HCPProperty {

namespace {

// The values that users gave to the objects of one class.
struct user_store {
    struct property {
        std::shared_ptr<Spec> spec;
        std::unordered_map<const void*, HATAttrAny> values;
    };
    std::map<std::string, std::shared_ptr<property>> properties;

    std::shared_ptr<property> find(const std::string& name) const {
        const auto at = properties.find(name);
        return at == properties.end() ? nullptr : at->second;
    }
};

const void* pointer_in(const void* object) {
    return *static_cast<const void* const*>(object);
}

// The stores by class. Interpreter's thread; never destroyed, as the classes are not.
std::unordered_map<const ObjectInfo*, std::shared_ptr<user_store>>& stores() {
    static auto& instance = *new std::unordered_map<const ObjectInfo*, std::shared_ptr<user_store>>;
    return instance;
}

GetFcn reader_of_set_values(const std::shared_ptr<user_store::property>& property) {
    return [property](const void* object, const std::string&, HATAttrAny& value) {
        const auto at = property->values.find(pointer_in(object));
        if (at == property->values.end()) {
            return false;
        }
        value = at->second;
        return true;
    };
}

GetFcn reader_with_default(const Spec* spec, const GetFcn& setValues) {
    return [spec, setValues](const void* object, const std::string& name, HATAttrAny& value) {
        if (object && setValues(object, name, value)) {
            return true;
        }
        value = spec->getAttrSpec()->getDefault();
        return spec->getAttrSpec()->hasDefault();
    };
}

Access access_to(const std::shared_ptr<user_store::property>& property) {
    return {property->spec, reader_of_set_values(property),
            [property](const void* object, const HATAttrAny* value) {
                if (value) {
                    property->values[pointer_in(object)] = *value;
                } else {
                    property->values.erase(pointer_in(object));
                }
            },
            true};
}

} // namespace

void ValueSetter::take(const Objects& objects) {
    const TypeInfo& type = m_info->typeInfo();
    m_stride = type.stride();
    m_count = objects.size();
    m_objects.resize(m_stride * m_count);
    for (size_t i = 0; i < m_count; ++i) {
        const void* address = type.address((*objects)[i]);
        if (!address) {
            // An object of another class cannot be changed here; nothing was changed yet.
            throw HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5350@%s\n",
                                             (*objects)[i].get_as_string()));
        }
        m_info->aliveOrError(address);
        std::memcpy(&m_objects[i * m_stride], address, m_stride);
    }
}

ValueSetter::change ValueSetter::prepare(const std::string& name) const {
    change c;
    c.access = m_resolve(name);
    if (c.access.spec) {
        c.name = c.access.spec->getName();
    }
    return c;
}

int ValueSetter::set(Tcl_Interp*, const Objects& objects, const std::string& name, HATAttr& value) {
    change c = prepare(name);
    if (!c.access.spec) {
        return 1;
    }
    c.after = HATAttrUtils::convert(*c.access.spec->getAttrSpec(), value.getValue());
    take(objects);
    m_changes.push_back(std::move(c));
    apply_all();
    return 0;
}

int ValueSetter::set(Tcl_Interp*, const Objects& objects, const Pairs& pairs) {
    std::vector<change> changes;
    for (auto [name, value] : pairs) {
        Utils::warnIfDeprecated(*m_info, name);
        Utils::mapPropertyNameAndValue(*m_info, name, value);
        change c = prepare(name);
        if (!c.access.spec) {
            return not_supported;
        }
        c.after = HATAttrUtils::convert(*c.access.spec->getAttrSpec(), value);
        changes.push_back(std::move(c));
    }
    take(objects);
    m_changes = std::move(changes);
    apply_all();
    return 0;
}

int ValueSetter::reset(const Objects& objects, const std::string& name, HATAttr&) {
    change c = prepare(name);
    if (!c.access.spec) {
        return 1;
    }
    const HATAttrSpec& spec = *c.access.spec->getAttrSpec();
    if (!c.access.keepsDefault && !spec.hasDefault()) {
        throw HEXError(
            ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5364@%s\n", spec.getName()));
    }
    c.after = c.access.keepsDefault ? HATAttrAny() : spec.getDefault();
    take(objects);
    m_changes.push_back(std::move(c));
    apply_all();
    return 0;
}

int ValueSetter::undo(Tcl_Interp*) {
    for (auto at = m_changes.rbegin(); at != m_changes.rend(); ++at) {
        at->access = m_resolve(at->name);
        revert(*at, m_count);
    }
    return 0;
}

int ValueSetter::redo(Tcl_Interp*) {
    for (change& c : m_changes) {
        c.access = m_resolve(c.name);
    }
    apply_all();
    return 0;
}

void ValueSetter::apply_all() {
    for (size_t done = 0; done < m_changes.size(); ++done) {
        try {
            apply(m_changes[done]);
        } catch (...) {
            while (done-- > 0) {
                revert(m_changes[done], m_count);
            }
            throw;
        }
    }
}

void ValueSetter::apply(change& c) {
    c.before.clear();
    c.skipped.clear();
    size_t i = 0;
    std::string out;
    try {
        for (; i < m_count; ++i) {
            HATAttrAny before;
            if (!m_info->isAlive(object(i)) ||
                !c.access.spec->isValid(object(i), c.access.spec->getName(), out)) {
                c.skipped.resize(m_count);
                c.skipped[i] = true;
            } else {
                if (!c.access.read(object(i), c.access.spec->getName(), before)) {
                    before = HATAttrAny();
                }
                c.access.write(object(i), c.after.index() ? &c.after : nullptr);
            }
            if (c.before.empty() || c.before.back().value != before) {
                c.before.push_back({0, std::move(before)});
            }
            ++c.before.back().count;
        }
    } catch (...) {
        revert(c, i); // the values before the object that refused
        throw;
    }
}

void ValueSetter::revert(const change& c, size_t count) {
    // Backwards, so that an object which stands in the list twice ends with what it had at first.
    size_t i = count;
    for (auto r = c.before.rbegin(); r != c.before.rend(); ++r) {
        const HATAttrAny* value = r->value.index() ? &r->value : nullptr;
        for (size_t k = 0; k < r->count; ++k) {
            --i;
            if (!skips(c, i) && m_info->isAlive(object(i))) {
                c.access.write(object(i), value);
            }
        }
    }
}

std::shared_ptr<Setter> makeSetter(const ObjectInfo& info, const Access& access) {
    return std::make_shared<ValueSetter>(info, [access](const std::string&) { return access; });
}

void addUserProperties(ObjectInfo& info) {
    auto store = std::make_shared<user_store>();
    if (!stores().emplace(&info, store).second) {
        return;
    }
    const auto spec = info.createSpec(defaultSpecName);
    spec->getAttrSpec()->setReadOnly(false);
    const ObjectInfo* const cls = &info;
    spec->setUserSpecFcn([store](const std::shared_ptr<Spec>& made, bool added) {
        if (!added) {
            if (const auto gone = store->find(made->getName())) {
                gone->values.clear();
                store->properties.erase(made->getName());
            }
            return true;
        }
        auto property = std::make_shared<user_store::property>();
        property->spec = made;
        made->setGetFcn(reader_with_default(made.get(), reader_of_set_values(property)));
        store->properties[made->getName()] = std::move(property);
        return true;
    });
    spec->setValidFcn([store, cls](const void*, const std::string& name, std::string& out) {
        const Spec* known = cls->findSpec(name);
        out = known ? known->getName() : name;
        return store->find(out) != nullptr;
    });
    spec->setGetFcn([store](const void* object, const std::string& name, HATAttrAny& value) {
        const auto property = store->find(name);
        return property && property->spec->getProperty(object, name, value);
    });
    spec->setSetterFcn([store, cls]() -> std::shared_ptr<Setter> {
        return std::make_shared<ValueSetter>(*cls, [store, cls](const std::string& name) {
            const auto known = cls->getSpec(name);
            if (const auto property = store->find(known ? known->getName() : name)) {
                return access_to(property);
            }
            if (!known) {
                Utils::noSuchProperty(name, Get::getClass(*cls));
            }
            HATAttrUtils::writableOrError(known->getAttrSpec(), known->getName());
            const auto setter = std::dynamic_pointer_cast<ValueSetter>(known->getSetter());
            return setter ? setter->accessOf(name) : Access{};
        });
    });
}

void forgetObject(const ObjectInfo& info, const void* pointer) {
    const auto at = stores().find(&info);
    if (at != stores().end()) {
        for (auto& [name, property] : at->second->properties) {
            property->values.erase(pointer);
        }
    }
}

} // namespace HCPProperty
