#pragma once

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>

#include "platform/env/HSTVector.h"
#include "platform/taskcore/collection_wrapper_base.h"
#include "tcltasks/core/native_wrapper.h"

namespace vek::tcltasks {

namespace detail {

/// The container of a collection that has no element type: it is always empty.
struct untyped_collection {
    using value_type = tclany;
    static constexpr size_t size() { return 0; }
};

} // namespace detail

/// How the elements of a container are reached and compared. Mixed elements have no order of their own.
template <class C>
struct tcl_collection_container_traits {
    using element = typename C::value_type;

    static element& get_element(C& container, unsigned long index) { return container[index]; }
    static const element& get_element(const C& container, unsigned long index) { return container[index]; }

    template <class E, int>
    struct compare_vt {
        static bool equal_ptr(const E& a, const E& b) {
            if constexpr (std::is_same_v<E, tclany>) {
                throw HTCErrors::not_implemented();
            } else if constexpr (native_pointer<E>) {
                return a == b;
            } else {
                return HTCGetTclStringRep<E>::get(a) == HTCGetTclStringRep<E>::get(b);
            }
        }
        static bool lessthan(const E& a, const E& b) {
            if constexpr (std::is_same_v<E, tclany>) {
                throw HTCErrors::not_implemented();
            } else {
                return HTCGetTclStringRep<E>::get(a) < HTCGetTclStringRep<E>::get(b);
            }
        }
    };
    using compare = compare_vt<element, 10>;
};

namespace detail {

/// An element made from a tclany. Throws HTCErrors::type_error if it is none of this type.
template <class E>
E element_from_any(const tclany& value) {
    if constexpr (std::is_same_v<E, tclany>) {
        return value;
    } else {
        if (const E* same = value.get_if<E>()) {
            return *same;
        }
        if constexpr (std::is_same_v<E, std::string>) {
            return value.get_as_string();
        } else if constexpr (findable_native_pointer<E>) {
            if (const std::string* name = value.get_if<std::string>()) {
                return HTCGetNativeFromString<E>::get(*name);
            }
        }
        throw HTCErrors::type_error();
    }
}

/// An element made from a Tcl value: a native one as what it is, any other from its text.
template <class E>
E element_from_tclobj(Tcl_Interp* interp, Tcl_Obj* obj) {
    if constexpr (native_pointer<E>) {
        return native_wrapper<E>::convert_to_native(interp, obj);
    } else {
        return element_from_any<E>(native_wrapper<tclany>::convert_to_native(interp, obj));
    }
}

template <class C>
class collection_type {
public:
    using element = typename C::value_type;

    static const Tcl_ObjType* get_type_obj() {
        static const std::string& name =
            *new std::string("ormeau:" + compiler_name(typeid(element)) + "(tclcoll)");
        static const Tcl_ObjType type = {name.c_str(), FreeInternalRepProc, duplicate_collection_tclobj,
                                         update_collection_string_rep, nullptr};
        return &type;
    }
};

/// A collection's body with its elements.
template <class C, class Traits = tcl_collection_container_traits<C>>
class collection_wrapper : public collection_wrapper_base {
public:
    using element = typename C::value_type;

    collection_wrapper() = default;
    explicit collection_wrapper(C elements) : m_elements(std::move(elements)) {}
    ~collection_wrapper() override = default;

    C& elements() { return m_elements; }
    const C& elements() const { return m_elements; }

    collection_wrapper* clone() const override { return clone(0, size()); }
    collection_wrapper* clone(unsigned long first, unsigned long count) const override {
        auto copy = std::make_unique<collection_wrapper>();
        if constexpr (has_elements) {
            const unsigned long from = std::min(first, size());
            const unsigned long until = from + std::min(count, size() - from);
            copy->m_elements.assign(m_elements.begin() + static_cast<long>(from),
                                    m_elements.begin() + static_cast<long>(until));
        }
        copy->set_collection_context(collection_context(), collection_context_id());
        return copy.release();
    }

    const std::type_info& get_value_type_info() const override { return typeid(element); }
    unsigned long size() const override { return m_elements.size(); }

    boost::any get_element_as_boostany(unsigned long index) const override { return at(index); }
    tclany get_element_as_tclany(unsigned long index) const override {
        if constexpr (std::is_same_v<element, tclany>) {
            return at(index);
        } else {
            return tclany(at(index));
        }
    }
    std::string get_element_as_string(unsigned long index) const override { return text_of(at(index)); }
    Tcl_Obj* get_element_as_tclobj(unsigned long index) const override {
        return native_wrapper<element>::convert_to_tcl(at(index));
    }
    void get_elements_as_tclobjs(unsigned long first, std::span<tclobj_ref> values) const override {
        if constexpr (native_pointer<element>) {
            if (!values.empty()) {
                require(first + values.size() - 1);
                native_wrapper<element>::convert_to_tcl({m_elements.data() + first, values.size()},
                                                        values.data());
            }
        } else {
            collection_wrapper_base::get_elements_as_tclobjs(first, values);
        }
    }

    /// Appends the elements of a collection of the same type.
    void append(const collection_wrapper& other) {
        if constexpr (has_elements) {
            const unsigned long count = other.size();
            m_elements.reserve(m_elements.size() + count);
            for (unsigned long i = 0; i < count; ++i) {
                if (i >= other.size()) {
                    throw std::out_of_range("index is out of range");
                }
                m_elements.push_back(element(other.m_elements[i]));
            }
        }
        invalidate_tcllist();
    }

    void append_collection(const collection_wrapper_base* other) override {
        const auto* same = dynamic_cast<const collection_wrapper*>(other);
        if (!same) {
            throw HTCErrors::append_typed_collection();
        }
        append(*same);
    }

    void append_tclobj(Tcl_Interp* interp, Tcl_Obj* obj) override {
        if constexpr (has_elements) {
            m_elements.push_back(element_from_tclobj<element>(interp, obj));
            invalidate_tcllist();
        } else {
            throw HTCErrors::append_untyped_collection();
        }
    }

    void set_tclobj_at_index(Tcl_Interp* interp, Tcl_Obj* obj, unsigned long index) override {
        require(index);
        if constexpr (has_elements) {
            m_elements[index] = element_from_tclobj<element>(interp, obj);
            invalidate_tcllist();
        }
    }

    void insert_tclobj_at_index(Tcl_Interp* interp, Tcl_Obj* obj, unsigned long index) override {
        require(index);
        if constexpr (has_elements) {
            m_elements.insert(m_elements.begin() + static_cast<long>(index),
                              element_from_tclobj<element>(interp, obj));
            invalidate_tcllist();
        }
    }

    void remove_element_at_index(unsigned long index) override {
        require(index);
        if constexpr (has_elements) {
            m_elements.erase(m_elements.begin() + static_cast<long>(index));
            invalidate_tcllist();
        }
    }

    void reverse() override {
        if constexpr (has_elements) {
            std::reverse(m_elements.begin(), m_elements.end());
            invalidate_tcllist();
        }
    }

    void sort() override {
        if constexpr (native_pointer<element>) {
            // Each name is made once, not at every comparison.
            std::vector<std::pair<std::string, element>> named;
            named.reserve(m_elements.size());
            for (const element& e : m_elements) {
                named.emplace_back(HTCGetTclStringRep<element>::get(e), e);
            }
            std::sort(named.begin(), named.end(),
                      [](const auto& a, const auto& b) { return a.first < b.first; });
            std::transform(named.begin(), named.end(), m_elements.begin(), [](auto& n) { return n.second; });
            invalidate_tcllist();
        } else if constexpr (has_elements) {
            std::sort(m_elements.begin(), m_elements.end(), Traits::compare::lessthan);
            invalidate_tcllist();
        }
    }

    void shrink_to_fit() override {
        if constexpr (has_elements) {
            m_elements.shrink_to_fit();
        }
    }

    void unique() override {
        if constexpr (std::is_same_v<element, tclany>) {
            if (size() > 0) {
                throw HTCErrors::not_implemented();
            }
        } else if constexpr (has_elements) {
            std::unordered_set<element> seen;
            std::erase_if(static_cast<std::vector<element>&>(m_elements),
                          [&](const element& e) { return !seen.insert(e).second; });
            invalidate_tcllist();
        }
    }

    std::string get_tcl_string_rep() const override {
        unsigned long shown = size();
        if (collection_result_display_limit_check_enabled()) {
            shown = std::min(shown, get_collection_result_display_limit());
        }
        std::string text;
        for (unsigned long i = 0; i < shown; ++i) {
            text += i ? " " : "";
            text += text_of(at(i));
        }
        return shown < size() ? text + " ..." : text;
    }

    const Tcl_ObjType* get_tcl_obj_type() const override { return collection_type<C>::get_type_obj(); }
    const itcltypeinfo* get_tcl_type_info() const override {
        return tcltypeinfo<tcl_collection<C, Traits>>::instance();
    }

private:
    static constexpr bool has_elements = !std::is_same_v<C, untyped_collection>;

    static std::string text_of(const element& e) {
        if constexpr (std::is_same_v<element, tclany>) {
            return e.get_as_string();
        } else {
            return HTCGetTclStringRep<element>::get(e);
        }
    }

    void require(unsigned long index) const {
        if (index >= size()) {
            throw HTCErrors::index_out_of_range(static_cast<int>(index));
        }
    }

    const element& at(unsigned long index) const {
        require(index);
        if constexpr (has_elements) {
            return Traits::get_element(m_elements, index);
        } else {
            throw HTCErrors::index_out_of_range(static_cast<int>(index));
        }
    }

    C m_elements;
};

} // namespace detail

/// A handle on a collection: the result type of queries. Copies share the body, so a change through one is
/// seen by all; `clone()` on the body gives an independent copy. A default handle is a valid empty
/// collection.
///
///     tcl_collection<HSTVector<my::gate*>> gates;
///     gates->push_back(gate);
///     return set_result(interp, gates);
template <class C, class Traits = tcl_collection_container_traits<C>>
class tcl_collection {
public:
    using container = C;
    using element = typename C::value_type;
    using wrapper = detail::collection_wrapper<C, Traits>;

    tcl_collection() = default;
    explicit tcl_collection(C elements) : tcl_collection(new wrapper(std::move(elements))) {}
    explicit tcl_collection(wrapper* body) : m_body(body) { retain(); }
    tcl_collection(const tcl_collection& other) : tcl_collection(other.m_body) {}
    tcl_collection(tcl_collection&& other) noexcept : m_body(std::exchange(other.m_body, nullptr)) {}
    tcl_collection& operator=(tcl_collection other) noexcept {
        std::swap(m_body, other.m_body);
        return *this;
    }
    ~tcl_collection() {
        if (m_body) {
            m_body->decr_ref();
        }
    }

    /// The elements, for reading or for filling a collection that no value holds yet. Whoever changes a
    /// collection that Tcl already knows goes through the body, which drops what was made from the old
    /// elements.
    C* operator->() { return &body().elements(); }
    C& operator*() & { return body().elements(); }
    const C* operator->() const { return &body().elements(); }
    const C& operator*() const& { return body().elements(); }
    /// Of a handle that is about to go, a copy: `for (auto* g : *get_option<gates>("gates"))` is safe, and
    /// costs that copy.
    C operator*() && { return body().elements(); }

    wrapper& body() const {
        if (!m_body) {
            m_body = new wrapper;
            retain();
        }
        return *m_body;
    }
    detail::collection_wrapper_base* base() const { return &body(); }
    bool has_body() const { return m_body != nullptr; }
    unsigned long size() const { return m_body ? m_body->size() : 0; }

private:
    void retain() const {
        if (m_body) {
            m_body->incr_ref();
        }
    }

    mutable wrapper* m_body = nullptr; // counted
};

/// The handle that takes a collection of any element type and never owns one of its own.
template <class Traits>
class tcl_collection<detail::untyped_collection, Traits> {
public:
    using container = detail::untyped_collection;

    tcl_collection() = default;
    explicit tcl_collection(detail::collection_wrapper_base* body) : m_body(body) {
        if (m_body) {
            m_body->incr_ref();
        }
    }
    tcl_collection(const tcl_collection& other) : tcl_collection(other.m_body) {}
    tcl_collection(tcl_collection&& other) noexcept : m_body(std::exchange(other.m_body, nullptr)) {}
    tcl_collection& operator=(tcl_collection other) noexcept {
        std::swap(m_body, other.m_body);
        return *this;
    }
    ~tcl_collection() {
        if (m_body) {
            m_body->decr_ref();
        }
    }

    /// Throws std::bad_cast on a handle without a body.
    detail::collection_wrapper_base* operator->() const { return base_or_throw(); }
    detail::collection_wrapper_base& operator*() const { return *base_or_throw(); }
    detail::collection_wrapper_base* base() const { return m_body; }
    bool has_body() const { return m_body != nullptr; }
    unsigned long size() const { return m_body ? m_body->size() : 0; }

private:
    detail::collection_wrapper_base* base_or_throw() const {
        if (!m_body) {
            throw std::bad_cast();
        }
        return m_body;
    }

    detail::collection_wrapper_base* m_body = nullptr; // counted
};

/// Typed collections. Passing one between commands costs a reference; no text is made until one is asked for.
template <class C, class Traits, class tcltype, class ext, class tuid>
struct native_wrapper<tcl_collection<C, Traits>, tcltype, ext, tuid> : detail::collection_type<C> {
    using collection = tcl_collection<C, Traits>;
    using element = typename C::value_type;
    using detail::collection_type<C>::get_type_obj;

    static Tcl_Obj* convert_to_tcl(const collection& value) {
        if (detail::collections_disabled()) {
            return value.body().get_collection_as_tcllist();
        }
        return detail::get_tclobj(&value.body());
    }

    static collection convert_to_native(Tcl_Interp* interp, Tcl_Obj* obj) { return convert(interp, obj, 0); }

    static tclany convert_to_tclany(Tcl_Interp* interp, Tcl_Obj* obj) {
        return tclany(convert(interp, obj, 0));
    }

    /// \param depth 0 for the value given by the user, whose words may then be elements. Throws
    /// HTCErrors::type_error if the value, or a part of it, is no element of this type.
    static collection convert(Tcl_Interp* interp, Tcl_Obj* obj, int depth) {
        if (depth > deepest_nesting) {
            throw HTCErrors::type_error();
        }
        if (detail::collection_wrapper_base* held = detail::get_collection(obj)) {
            return from_collection(held);
        }
        if (const detail::itcltypeinfo* info = native_cache_base::type_behind(obj)) {
            collection result =
                of_one(detail::element_from_any<element>(info->convert_to_tclany(interp, obj)));
            const auto context = HTCCollectionContextMgr::createListCollectionContext();
            HTCCollectionContextMgr::addTclObjToCtx(obj, context);
            result.body().set_collection_context(context);
            return result;
        }
        const bool list = detail::is_list_type(obj);
        if (depth > 0 || !list) {
            try {
                return of_one(detail::element_from_tclobj<element>(interp, obj));
            } catch (const HTCErrors::type_error&) {
                if (!list) {
                    throw;
                }
            }
        }
        if (list && Tcl_ConvertToType(nullptr, obj, Tcl_GetObjType("list")) == TCL_OK) {
            return from_list(interp, obj, depth);
        }
        throw HTCErrors::type_error();
    }

private:
    static constexpr int deepest_nesting = 1000; // lists within lists; deeper ones would use up the stack

    static collection of_one(element value) {
        collection result;
        result->push_back(std::move(value));
        return result;
    }

    static collection from_collection(detail::collection_wrapper_base* held) {
        if (auto* same = dynamic_cast<typename collection::wrapper*>(held)) {
            return collection(same);
        }
        collection result;
        result->reserve(held->size());
        for (unsigned long i = 0; i < held->size(); ++i) {
            result->push_back(detail::element_from_any<element>(held->get_element_as_tclany(i)));
        }
        result.body().set_collection_context(held->collection_context(), held->collection_context_id());
        return result;
    }

    static collection from_list(Tcl_Interp* interp, Tcl_Obj* obj, int depth) {
        // The list is held: converting an element may give the value another form.
        const tclobj_ref list(Tcl_DuplicateObj(obj));
        int count = 0;
        Tcl_Obj** elements = nullptr;
        Tcl_ListObjGetElements(nullptr, list.get(), &count, &elements);
        collection result;
        const auto context = HTCCollectionContextMgr::createListCollectionContext();
        HTCCollectionContextMgr::addTclObjToCtx(obj, context);
        result->reserve(static_cast<size_t>(count));
        for (int i = 0; i < count; ++i) {
            if constexpr (!native_pointer<element>) {
                if (!detail::get_collection(elements[i])) {
                    result->push_back(detail::element_from_tclobj<element>(interp, elements[i]));
                    continue;
                }
            }
            const collection part = convert(interp, elements[i], depth + 1);
            result.body().append(part.body());
            HTCCollectionContextMgr::append(context, part.body().collection_context());
        }
        result.body().set_collection_context(context);
        return result;
    }
};

/// Collections of any element type: a collection is taken as it is, anything else is an empty one.
template <class Traits, class tcltype, class ext, class tuid>
struct native_wrapper<tcl_collection<detail::untyped_collection, Traits>, tcltype, ext, tuid> {
    using collection = tcl_collection<detail::untyped_collection, Traits>;

    static Tcl_Obj* convert_to_tcl(const collection& value) {
        if (!value.has_body()) {
            return Tcl_NewListObj(0, nullptr);
        }
        return detail::collections_disabled() ? value->get_collection_as_tcllist()
                                              : detail::get_tclobj(value.base());
    }
    static collection convert(Tcl_Interp*, Tcl_Obj* obj, int) {
        return collection(detail::get_collection(obj));
    }
    static collection convert_to_native(Tcl_Interp* interp, Tcl_Obj* obj) { return convert(interp, obj, 0); }
    static tclany convert_to_tclany(Tcl_Interp* interp, Tcl_Obj* obj) {
        return tclany(convert(interp, obj, 0));
    }
};

} // namespace vek::tcltasks
