#pragma once

#include <boost/any.hpp>
#include <boost/program_options/value_semantic.hpp>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/taskcore/HTCErrors.h"
#include "platform/taskcore/HTCWarnings.h"
#include "platform/taskcore/itcl_value_semantic.h"
#include "platform/taskcore/tcl_globals.h"
#include "tcltasks/core/native_wrapper.h"
#include "tcltasks/core/tcl_collection.h"

namespace vek::tcltasks {

namespace detail {

template <class T>
struct is_list_value : std::false_type {};
template <>
struct is_list_value<std::vector<std::string>> : std::true_type {};
template <>
struct is_list_value<std::vector<Tcl_Obj*>> : std::true_type {};
template <>
struct is_list_value<HSTVector<std::string>> : std::true_type {};

/// What a value of type T is called in a message that says what would be accepted.
template <class T>
constexpr const char* value_kind() {
    if constexpr (std::is_same_v<T, bool>) {
        return "a boolean (true or false, yes or no, on or off, 1 or 0)";
    } else if constexpr (std::is_same_v<T, int> || std::is_same_v<T, long>) {
        return "an integer";
    } else if constexpr (std::is_same_v<T, unsigned>) {
        return "an integer of zero or more";
    } else if constexpr (std::is_same_v<T, double>) {
        return "a number";
    } else if constexpr (is_list_value<T>::value) {
        return "a list";
    } else if constexpr (is_tcl_collection<T>::value) {
        return "objects or their names";
    } else if constexpr (std::is_pointer_v<T> && !std::is_same_v<T, Tcl_Obj*>) {
        return "an object or its name";
    } else {
        return "any text";
    }
}

/// The only token of an option that takes one value. Defined in the library, so that a command's own library
/// need not link Boost.
const std::string& single_token(const std::vector<std::string>& tokens);

/// Converts one argument; what does not convert is refused with the switch and the text of the argument.
template <class T, class tcltype>
struct tcl_validate {
    static T validate(const std::string& switchName, Tcl_Obj* argument) {
        try {
            return native_wrapper<T, tcltype>::convert_to_native(tcl_globals::interp, argument);
        } catch (const HTCErrors::type_error&) {
            throw HTCErrors::invalid_option_value(switchName, HTCTclEncoding::tclGetString(argument));
        }
    }
};

} // namespace detail

/// How one option takes its value: its type, its default, and what happens when it is given twice. Made on
/// the heap by options::value<T, tcltype>() and handed to options_description::add_option, which owns it.
/// `ext` and `tuid` keep instantiations of different libraries apart.
template <class T, class tcltype = tcltypes::tclobj, class ext = void, class tuid = void>
class tcl_value_semantic : public boost::program_options::value_semantic, public itcl_value_semantic {
public:
    using any = boost::any;

    tcl_value_semantic* default_value(const T& value) {
        m_default = value;
        return this;
    }
    tcl_value_semantic* default_value(const T& value, const std::string& text) {
        m_defaultText = text;
        return default_value(value);
    }
    tcl_value_semantic* implicit_value(const T& value) {
        m_implicit = value;
        return this;
    }
    tcl_value_semantic* implicit_value(const T& value, const std::string& text) {
        m_implicitText = text;
        return implicit_value(value);
    }
    tcl_value_semantic* deprecated(const std::string& message) {
        m_deprecation = message;
        return this;
    }
    tcl_value_semantic* max_list_length(int length) {
        m_maxListLength = length;
        return this;
    }
    tcl_value_semantic* hidden(bool on = true) {
        m_hidden = on;
        return this;
    }
    tcl_value_semantic* multi_token(bool on = true) {
        m_multiToken = on;
        return this;
    }
    tcl_value_semantic* composing(bool on = true) {
        m_composing = on;
        return this;
    }
    tcl_value_semantic* infra(bool on = true) {
        m_infra = on;
        return this;
    }
    tcl_value_semantic* parse_hook(std::function<void(any&, const std::vector<std::string>&, bool)> hook) {
        m_parseHook = std::move(hook);
        return this;
    }
    /// Computes the default anew each time that the option is not given.
    tcl_value_semantic* default_provider(std::function<T()> provider) {
        m_defaultProvider = std::move(provider);
        return this;
    }

    std::string name() const override {
        std::string text = has_value(m_implicit, m_implicitText) ? "[=arg(=" + m_implicitText + ")]" : "arg";
        return has_value(m_default, m_defaultText) ? text + " (=" + m_defaultText + ")" : text;
    }
    unsigned min_tokens() const override { return m_implicit.empty() ? 1 : 0; }
    unsigned max_tokens() const override { return m_multiToken ? 32000 : min_tokens(); }
    bool is_composing() const override { return m_composing; }
    bool is_required() const override { return false; }
    bool apply_default(any& store) const override {
        if (m_defaultProvider) {
            m_default = m_defaultProvider();
        }
        if (m_default.empty()) {
            return false;
        }
        store = m_default;
        return true;
    }
    void notify(const any&) const override {}

    void parse(any& store, const std::vector<std::string>& tokens, bool utf8) const override {
        if (m_parseHook) {
            m_parseHook(store, tokens, utf8);
        }
        if (tokens.empty() && !m_implicit.empty()) {
            if (!store.empty()) {
                throw HTCErrors::multiple_occurrences(m_switchName);
            }
            store = m_implicit;
        } else if constexpr (detail::is_list_value<T>::value) {
            parse_list(store, tokens);
        } else {
            parse_single(store, detail::single_token(tokens));
        }
    }

    bool is_infra() const override { return m_infra; }
    bool is_hidden() const override { return m_hidden || is_deprecated(); }
    bool is_deprecated() const override { return !m_deprecation.empty(); }
    bool has_default() const override { return !m_default.empty() || !m_defaultText.empty(); }
    bool has_implicit() const override { return !m_implicit.empty() || !m_implicitText.empty(); }
    const any& default_value() const override { return m_default; }
    const std::string& deprecation_message() const override { return m_deprecation; }
    bool is_list() const override {
        return !std::is_same_v<tcltype, tcltypes::tclobj> && m_maxListLength > 1;
    }
    void switch_name(const std::string& name) override { m_switchName = name; }
    const std::string& switch_name() const override { return m_switchName; }
    bool has_default_provider() const override { return static_cast<bool>(m_defaultProvider); }
    const std::string& default_text() const override { return m_defaultText; }
    const char* value_kind() const override {
        constexpr bool oneByOne =
            detail::is_list_value<T>::value && !std::is_same_v<tcltype, tcltypes::tcllist>;
        return detail::value_kind<std::conditional_t<oneByOne, std::string, T>>();
    }
    boost::program_options::value_semantic& boost_semantic() override { return *this; }

private:
    using validate = detail::tcl_validate<T, tcltype>;

    static bool has_value(const any& value, const std::string& text) {
        return !value.empty() && !text.empty();
    }

    // Both parsers are templates so that an explicit instantiation of the class leaves out the one that does
    // not fit T; clang 14 would also instantiate a member whose constraints T does not meet.
    template <class = void>
    void parse_single(any& store, const std::string& token) const {
        if constexpr (std::is_same_v<T, tcl_collection<detail::untyped_collection>>) {
            if (!store.empty()) {
                throw HTCErrors::append_untyped_collection();
            }
            store = validate::validate(m_switchName, detail::tcl_globals::argument(token));
        } else if constexpr (detail::is_tcl_collection<T>::value) {
            T collection = validate::validate(m_switchName, detail::tcl_globals::argument(token));
            require_length(collection.size(), token);
            T* given = boost::any_cast<T>(&store);
            if (given && m_composing) {
                // The first value may be the user's own collection: appending must not reach into it.
                T joined(given->body().clone());
                joined.body().clear_collection_context();
                joined.body().append(collection.body());
                store = std::move(joined);
                return;
            }
            if (given) {
                HTCWarnings::repeatedOptionWarning(m_switchName);
            }
            store = std::move(collection);
        } else {
            if (!store.empty()) {
                throw HTCErrors::multiple_occurrences(m_switchName);
            }
            store = validate::validate(m_switchName, detail::tcl_globals::argument(token));
        }
    }

    template <class = void>
    void parse_list(any& store, const std::vector<std::string>& tokens) const {
        if (store.empty()) {
            store = T();
        } else if (!m_composing) {
            HTCWarnings::repeatedOptionWarning(m_switchName);
            store = T();
        }
        T& elements = *boost::any_cast<T>(&store);
        for (const std::string& token : tokens) {
            Tcl_Obj* argument = detail::tcl_globals::argument(token);
            if constexpr (std::is_same_v<tcltype, tcltypes::tclobj>) {
                using element = typename T::value_type;
                elements.push_back(detail::tcl_validate<element, tcltype>::validate(m_switchName, argument));
            } else {
                T more = native_wrapper<T, tcltype>::tcllist_to_native(detail::tcl_globals::interp, argument);
                elements.insert(elements.end(), std::make_move_iterator(more.begin()),
                                std::make_move_iterator(more.end()));
            }
            require_length(elements.size(), token);
        }
    }

    void require_length(size_t length, const std::string& token) const {
        if (length > static_cast<size_t>(m_maxListLength)) {
            throw HTCErrors::invalid_option_value(
                m_switchName, HTCTclEncoding::tclGetString(detail::tcl_globals::argument(token)));
        }
    }

    std::string m_switchName = "unknown";
    mutable any m_default; // a default provider renews it
    std::string m_defaultText;
    any m_implicit;
    std::string m_implicitText;
    std::string m_deprecation;
    int m_maxListLength = std::numeric_limits<int>::max();
    bool m_hidden = false;
    bool m_multiToken = false;
    bool m_composing = true;
    bool m_infra = false;
    std::function<void(any&, const std::vector<std::string>&, bool)> m_parseHook;
    std::function<T()> m_defaultProvider;
};

/// Makes value semantics for the options of a task.
namespace options {

template <class T, class tcltype = tcltypes::tclobj>
tcl_value_semantic<T, tcltype>* value() {
    return new tcl_value_semantic<T, tcltype>;
}

/// A switch without a value, false unless it is given.
inline tcl_value_semantic<bool>* flag() {
    return value<bool>()->default_value(false, "false")->implicit_value(true, "true");
}

/// A string with a default, which help shows.
inline tcl_value_semantic<std::string>* text(const std::string& byDefault = {}) {
    return value<std::string>()->default_value(byDefault, byDefault);
}

/// An integer with a default.
inline tcl_value_semantic<int>* number(int byDefault) {
    return value<int>()->default_value(byDefault, std::to_string(byDefault));
}

/// Words given one by one, `-source a -source b` or as the rest of the line; each argument is one element.
inline tcl_value_semantic<std::vector<std::string>>* words() {
    return value<std::vector<std::string>>()->default_value({}, "");
}

/// A Tcl list of words.
inline tcl_value_semantic<std::vector<std::string>, tcltypes::tcllist>* list() {
    return value<std::vector<std::string>, tcltypes::tcllist>()->default_value({}, "");
}

/// Objects of one type: a collection, a list of objects or of their names.
template <class T>
tcl_value_semantic<tcl_collection<HSTVector<T>>, tcltypes::tclcoll>* objects() {
    return value<tcl_collection<HSTVector<T>>, tcltypes::tclcoll>();
}

} // namespace options

#ifndef CORVANE_INSTANTIATE_SEMANTICS
extern template class tcl_value_semantic<bool>;
extern template class tcl_value_semantic<int>;
extern template class tcl_value_semantic<std::string>;
extern template class tcl_value_semantic<std::vector<std::string>>;
extern template class tcl_value_semantic<std::vector<std::string>, tcltypes::tcllist>;
#endif

} // namespace vek::tcltasks
