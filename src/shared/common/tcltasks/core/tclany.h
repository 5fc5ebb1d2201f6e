#pragma once

#include <memory>
#include <string>
#include <tcl.h>
#include <typeinfo>
#include <utility>

#include "tcltasks/core/HTCGetTclStringRep.h"

namespace vek::tcltasks {

struct tcltypes {
    struct tclobj {};  ///< one value
    struct tcllist {}; ///< a Tcl list
    struct tclcoll {}; ///< a collection
};

template <class T, class tcltype = tcltypes::tclobj, class ext = void, class tuid = void>
struct native_wrapper;
template <class C, class Traits>
class tcl_collection;

namespace detail {

template <class T, class tcltype = tcltypes::tclobj, class ext = void, class tuid = void>
class tcltypeinfo;

class tclany_iholder {
public:
    virtual ~tclany_iholder() = default;
    virtual const std::type_info& type() const = 0;
    virtual tclany_iholder* clone() const = 0;
    virtual Tcl_Obj* get_as_tcl_obj() const = 0;
    virtual std::string get_as_string() const = 0;
};

template <class T>
struct is_tcl_collection : std::false_type {};
template <class C, class Traits>
struct is_tcl_collection<tcl_collection<C, Traits>> : std::true_type {};

template <class T>
class tclany_holder : public tclany_iholder {
public:
    explicit tclany_holder(T value) : held(std::move(value)) {}

    const std::type_info& type() const override { return typeid(T); }
    tclany_iholder* clone() const override { return new tclany_holder(held); }
    Tcl_Obj* get_as_tcl_obj() const override { return native_wrapper<T>::convert_to_tcl(held); }
    std::string get_as_string() const override {
        if constexpr (is_tcl_collection<T>::value) {
            return "tacol";
        } else {
            return HTCGetTclStringRep<T>::get(held);
        }
    }

    T held;
};

} // namespace detail

/// What any_cast throws when the value is of another type.
class bad_tclany_cast : public std::bad_cast {
public:
    const char* what() const noexcept override {
        return "vek::tcltasks::bad_tclany_cast: failed conversion using vek::tcltasks::any_cast";
    }
};

/// A value of any native type; owns it and copies it by clone(). An empty one holds nothing.
class tclany {
public:
    tclany() = default;
    template <class T>
    requires(!std::is_same_v<std::decay_t<T>, tclany>) explicit tclany(T&& value)
        : m_holder(new detail::tclany_holder<std::decay_t<T>>(std::forward<T>(value))) {}
    tclany(const tclany& other) : m_holder(other.m_holder ? other.m_holder->clone() : nullptr) {}
    tclany(tclany&&) noexcept = default;
    tclany& operator=(tclany other) noexcept {
        m_holder.swap(other.m_holder);
        return *this;
    }

    bool empty() const { return !m_holder; }
    const std::type_info& type() const { return m_holder ? m_holder->type() : typeid(void); }
    Tcl_Obj* get_as_tcl_obj() const { return m_holder ? m_holder->get_as_tcl_obj() : nullptr; }
    std::string get_as_string() const { return m_holder ? m_holder->get_as_string() : std::string(); }

    /// The held value if it is a T, else null.
    template <class T>
    const T* get_if() const {
        return type() == typeid(T) ? &static_cast<const detail::tclany_holder<T>&>(*m_holder).held : nullptr;
    }

private:
    std::unique_ptr<detail::tclany_iholder> m_holder;
};

/// The held value. Throws bad_tclany_cast if it is no T.
template <class T>
const T& any_cast(const tclany& value) {
    if (const T* held = value.get_if<T>()) {
        return *held;
    }
    throw bad_tclany_cast();
}

template <class T>
T& any_cast(tclany& value) {
    return const_cast<T&>(any_cast<T>(std::as_const(value)));
}

} // namespace vek::tcltasks
