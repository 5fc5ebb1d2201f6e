#pragma once

#include <concepts>
#include <sstream>
#include <string>
#include <type_traits>

#include "platform/tcl/HTCTclUtils.h"

namespace vek::tcltasks {

/// Tells the task core of a native object type, given as a pointer. A library makes its type a Tcl value by
/// specialising this for the pointer:
///
///     template <> struct vek::tcltasks::native_object<my::gate*> {
///         static std::string name(my::gate* g) { return g->name(); }
///         static my::gate* find(const std::string& name) { return my::find_gate(name); } // null if there is
///         none
///     };
///
/// `find` may be left out: the type has then no conversion from text. A library that deletes an object calls
/// `native_cache<my::gate*>::forget(gate)` first.
template <class T>
struct native_object;

template <class T>
concept native_pointer = std::is_pointer_v<T> && requires(T object) {
    { native_object<T>::name(object) } -> std::convertible_to<std::string>;
};

template <class T>
concept findable_native_pointer = native_pointer<T> && requires(const std::string& name) {
    { native_object<T>::find(name) } -> std::convertible_to<T>;
};

/// The text of a native value as Tcl shows it: floating numbers fixed with the precision of the interpreter,
/// bool as "1" or "0", an object by its name.
template <class T, class tuid = void>
struct HTCGetTclStringRep {
    static std::string get(const T& value) {
        if constexpr (native_pointer<T>) {
            return native_object<T>::name(value);
        } else if constexpr (std::is_convertible_v<T, std::string>) {
            return value;
        } else if constexpr (std::is_integral_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, char>) {
            return std::to_string(value);
        } else {
            static thread_local std::ostringstream stream;
            stream.setf(std::ios::fixed, std::ios::floatfield);
            stream.precision(HTCTclUtils::tclGetPrecision(3));
            stream << value;
            std::string text = stream.str();
            stream.str({});
            stream.clear();
            return text;
        }
    }
};

} // namespace vek::tcltasks
