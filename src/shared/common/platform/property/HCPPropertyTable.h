#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/property/HCPProperty.h"
#include "platform/property/HCPPropertySetter.h"

/// How a library registers its object class: a table with one line for each property.
///
///     const HCPProperty::Property<gate*> properties[] = {
///         {"name", &gate::name, "Full hierarchical name"},
///         {"fanout", &gate::fanout, "Number of loads that it drives"},
///         {"location", &gate::location, "Place on the die, if it has one"}, // std::optional: may have no
///         value
///         {"drive", &gate::drive, &gate::set_drive, "Drive strength in mA", {.byDefault = 12, .range = {{2,
///         24}}}},
///         {"slew", &gate::slew, &gate::set_slew, "Slew rate", {.byDefault = "slow", .words = {"slow",
///         "fast"}}},
///     };
///     HCPProperty::registerClass<gate*>("gate", "A cell of the library.", properties);
///
/// A getter is anything that can be called with the object: a member function, a function, a lambda. Its
/// result gives the property its type: bool, int, long, double, text, or a std::vector of int, double or
/// std::string; a std::optional of these for one that an object may lack. A setter is called with the object
/// and a value of that type, which has been checked against the range; where the getter gives a std::optional
/// it takes one, and an empty one takes the value away. Without a setter the property is read-only. It may
/// throw to refuse the value.
namespace HCPProperty {

struct PropertyOptions {
    /// A value of the property's type, or a text that reads as one.
    std::optional<HATAttrAny> byDefault = {};
    /// The words of an enumeration; the property's type is then enum.
    std::vector<std::string> words = {};
    /// The least and the greatest number.
    std::optional<std::pair<double, double>> range = {};
    /// Not shown by list_property and report_property.
    bool hidden = false;
    /// The extensions of a file; the property's type is then file.
    std::vector<std::string> files = {};
};

namespace detail {

template <class R>
struct optional_part {
    using type = R;
    static constexpr bool optional = false;
};
template <class R>
struct optional_part<std::optional<R>> {
    using type = R;
    static constexpr bool optional = true;
};

/// The type in which a value of C++ type R is kept.
template <class R>
struct value_of {
    using type = std::conditional_t<
        std::is_same_v<R, bool>, bool,
        std::conditional_t<
            std::is_integral_v<R>,
            std::conditional_t<(sizeof(R) < sizeof(int) || (sizeof(R) == sizeof(int) && std::is_signed_v<R>)),
                               int, long>,
            std::conditional_t<
                std::is_floating_point_v<R>, double,
                std::conditional_t<std::is_convertible_v<R, std::string_view>, std::string, R>>>>;
};

template <class V>
constexpr HATAttrTypes::AttrType type_of() {
    using namespace HATAttrTypes;
    if constexpr (std::is_same_v<V, bool>) {
        return type_bool;
    } else if constexpr (std::is_same_v<V, int>) {
        return type_int;
    } else if constexpr (std::is_same_v<V, long>) {
        return type_long;
    } else if constexpr (std::is_same_v<V, double>) {
        return type_double;
    } else if constexpr (std::is_same_v<V, std::vector<int>>) {
        return type_int_list;
    } else if constexpr (std::is_same_v<V, std::vector<double>>) {
        return type_double_list;
    } else if constexpr (std::is_same_v<V, std::vector<std::string>>) {
        return type_string_list;
    } else {
        static_assert(std::is_same_v<V, std::string>, "a property cannot have values of this type");
        return type_string;
    }
}

template <class V, class R>
void store(HATAttrAny& value, R&& read) {
    if constexpr (std::is_same_v<V, std::string>) {
        // The string that is there already keeps its memory.
        if (auto* text = std::get_if<std::string>(&value)) {
            if constexpr (std::is_same_v<std::decay_t<R>, std::string>) {
                *text = std::forward<R>(read);
            } else {
                text->assign(std::string_view(read));
            }
        } else {
            value.template emplace<std::string>(std::forward<R>(read));
        }
    } else {
        value = static_cast<V>(std::forward<R>(read));
    }
}

} // namespace detail

/// One line of the table of a class whose objects are T.
template <class T>
class Property {
public:
    template <class G>
    requires std::is_invocable_v<const G&, const T&>
    Property(const char* name, G getter, const char* description, PropertyOptions options = {})
        : m_name(name), m_description(description), m_options(std::move(options)) {
        read_with(std::move(getter));
    }

    template <class G, class S>
    requires std::is_invocable_v<const G&, const T&> &&(!std::is_convertible_v<S, const char*>)
        Property(const char* name, G getter, S setter, const char* description, PropertyOptions options = {})
        : Property(name, std::move(getter), description, std::move(options)) {
        using V = value_type<G>;
        if constexpr (detail::optional_part<result<G>>::optional) {
            static_assert(std::is_invocable_v<const S&, const T&, const std::optional<V>&>,
                          "the setter takes the object and an optional value, as the getter gives one");
            m_write = [setter = std::move(setter)](const void* object, const HATAttrAny* value) {
                std::invoke(setter, *static_cast<const T*>(object),
                            value ? std::optional<V>(std::get<V>(*value)) : std::nullopt);
            };
        } else {
            static_assert(std::is_invocable_v<const S&, const T&, const V&>,
                          "the setter takes the object and a value of the getter's type");
            m_write = [setter = std::move(setter)](const void* object, const HATAttrAny* value) {
                std::invoke(setter, *static_cast<const T*>(object), value ? std::get<V>(*value) : V());
            };
        }
    }

    /// The property applies only to the objects for which this answers true.
    Property& onlyIf(std::function<bool(const T&)> valid) {
        m_valid = std::move(valid);
        return *this;
    }

    void addTo(ObjectInfo& info) const {
        const auto spec = info.createSpecOrError(m_name);
        HATAttrSpec& attr = *spec->getAttrSpec();
        attr.setDescription(m_description);
        attr.setAttrType(!m_options.words.empty()   ? HATAttrTypes::type_enum
                         : !m_options.files.empty() ? HATAttrTypes::type_file
                                                    : m_type);
        attr.setVisible(!m_options.hidden);
        attr.setReadOnly(!m_write);
        attr.addEnumRange(m_options.words);
        for (const std::string& extension : m_options.files) {
            attr.addFileExtRange(extension);
        }
        if (m_options.range) {
            attr.setRange(m_options.range->first, m_options.range->second);
        }
        if (m_options.byDefault) {
            attr.setDefault(HATAttrUtils::convert(attr, *m_options.byDefault));
        }
        spec->setGetFcn(m_read);
        if (m_valid) {
            spec->setValidFcn([valid = m_valid, name = std::string(m_name)](
                                  const void* object, const std::string&, std::string& out) {
                out = name;
                return valid(*static_cast<const T*>(object));
            });
        }
        if (m_write) {
            // The spec outlives its setters, but must not hold itself.
            spec->setSetterFcn(
                [info = &info, weak = std::weak_ptr<Spec>(spec), read = m_read, write = m_write] {
                    return makeSetter(*info, {weak.lock(), read, write, false});
                });
        }
    }

private:
    template <class G>
    using result = std::decay_t<std::invoke_result_t<const G&, const T&>>;
    template <class G>
    using value_type = typename detail::value_of<typename detail::optional_part<result<G>>::type>::type;

    template <class G>
    void read_with(G getter) {
        using V = value_type<G>;
        m_type = detail::type_of<V>();
        m_read = [getter = std::move(getter)](const void* object, const std::string&, HATAttrAny& value) {
            if (!object) {
                return false;
            }
            decltype(auto) read = std::invoke(getter, *static_cast<const T*>(object));
            if constexpr (detail::optional_part<result<G>>::optional) {
                if (!read) {
                    return false;
                }
                detail::store<V>(value, *std::move(read));
            } else {
                detail::store<V>(value, std::forward<decltype(read)>(read));
            }
            return true;
        };
    }

    const char* m_name;
    const char* m_description;
    PropertyOptions m_options;
    HATAttrTypes::AttrType m_type = HATAttrTypes::type_string;
    GetFcn m_read;
    WriteFcn m_write;
    std::function<bool(const T&)> m_valid;
};

/// What a class is beyond its table.
template <class T>
struct ClassOptions {
    /// Tells whether an object still lives; reading one that does not is an error. Without it, a library that
    /// deletes an object makes sure that Tcl holds it no more.
    std::function<bool(const T&)> alive = {};
    /// Users may add properties with create_property.
    bool userProperties = true;
    bool hiddenClassProperty = false;
};

/// Registers a class of objects with its properties, and with the property "class". Returns what the registry
/// knows of it. A second call for the same type does nothing.
template <vek::tcltasks::native_pointer T>
ObjectInfo& registerClass(const char* name, const char* description, std::span<const Property<T>> properties,
                          ClassOptions<T> options = {}) {
    ObjectInfo& info = *registerObjectType<T>();
    if (!info.getName().empty()) {
        return info;
    }
    info.setName(name);
    info.setDescription(description);
    if (options.alive) {
        info.setAliveFcn([alive = std::move(options.alive)](const void* object) {
            return alive(*static_cast<const T*>(object));
        });
    }
    const auto cls = info.createSpecOrError("class");
    cls->getAttrSpec()->setDescription("Class of the object");
    cls->getAttrSpec()->setVisible(!options.hiddenClassProperty);
    cls->setGetFcn([name = std::string(name)](const void*, const std::string&, HATAttrAny& value) {
        detail::store<std::string>(value, name);
        return true;
    });
    for (const Property<T>& property : properties) {
        property.addTo(info);
    }
    if (options.userProperties) {
        addUserProperties(info);
    }
    return info;
}

} // namespace HCPProperty
