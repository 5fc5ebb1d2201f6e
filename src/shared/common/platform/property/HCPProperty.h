#pragma once

#include <memory>
#include <string>
#include <typeinfo>

/// The registry of object classes: what is known of each native type that reaches Tcl.
namespace HCPProperty {

/// A native type, known by the object that was registered for it.
class TypeInfo {
public:
    virtual ~TypeInfo() = default;
    virtual const std::type_info& type() const = 0;
};

/// What is known of one object class.
class ObjectInfo {
public:
    explicit ObjectInfo(std::unique_ptr<TypeInfo> type) : m_type(std::move(type)) {}
    const std::type_info& getType() const { return m_type->type(); }

private:
    std::unique_ptr<TypeInfo> m_type;
};

/// The class of a native type, or null. Any thread.
std::shared_ptr<ObjectInfo> getObjectInfo(const std::type_info& type);

namespace detail {

/// Enters a class; the first one registered for a type stays. Any thread.
void registerObjectInfo(std::shared_ptr<ObjectInfo> info);

template <class T>
class type_info_of : public TypeInfo {
public:
    const std::type_info& type() const override { return typeid(T); }
};

} // namespace detail

/// Makes a native type an object class. A second call does nothing.
template <class T>
void registerObjectType() {
    if (!getObjectInfo(typeid(T))) {
        detail::registerObjectInfo(std::make_shared<ObjectInfo>(std::make_unique<detail::type_info_of<T>>()));
    }
}

} // namespace HCPProperty
