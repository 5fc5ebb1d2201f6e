#pragma once

#include <any>
#include <boost/any.hpp>
#include <memory>
#include <span>
#include <string>
#include <tcl.h>
#include <typeinfo>

#include "platform/taskcore/HTCCollectionContextMgr.h"
#include "platform/taskcore/tcltypeinfo.h"
#include "platform/tcl/tclobj_ref.h"

namespace vek::tcltasks {

class tclany;

namespace detail {

/// The reference-counted body of every collection. Handles, tclany values and Tcl values count it; it dies
/// with the last of them. The count is not protected against threads: a body belongs to its interpreter's
/// thread.
class collection_wrapper_base {
public:
    collection_wrapper_base() = default;
    collection_wrapper_base(const collection_wrapper_base&) = delete;
    collection_wrapper_base& operator=(const collection_wrapper_base&) = delete;

    virtual ~collection_wrapper_base();

    /// An independent copy of the element list (the copy's count is zero); of a part of it, cut at the end.
    virtual collection_wrapper_base* clone() const = 0;
    virtual collection_wrapper_base* clone(unsigned long first, unsigned long count) const = 0;
    virtual const std::type_info& get_value_type_info() const = 0;
    virtual unsigned long size() const = 0;
    virtual boost::any get_element_as_boostany(unsigned long index) const = 0;
    virtual tclany get_element_as_tclany(unsigned long index) const = 0;
    virtual std::string get_element_as_string(unsigned long index) const = 0;
    /// The element as a Tcl value; null for an element that has none. Its count may be zero.
    virtual Tcl_Obj* get_element_as_tclobj(unsigned long index) const = 0;
    virtual void append_collection(const collection_wrapper_base* other) = 0;
    virtual void append_tclobj(Tcl_Interp* interp, Tcl_Obj* obj) = 0;
    virtual void set_tclobj_at_index(Tcl_Interp* interp, Tcl_Obj* obj, unsigned long index) = 0;
    virtual void insert_tclobj_at_index(Tcl_Interp* interp, Tcl_Obj* obj, unsigned long index) = 0;
    virtual void remove_element_at_index(unsigned long index) = 0;
    virtual void reverse() = 0;
    virtual void sort() = 0;
    virtual void shrink_to_fit() = 0;
    virtual void unique() = 0;
    /// The collection's text, cut at the display limit.
    virtual std::string get_tcl_string_rep() const = 0;
    /// The Tcl type of values that hold this collection, and its type information.
    virtual const Tcl_ObjType* get_tcl_obj_type() const = 0;
    virtual const itcltypeinfo* get_tcl_type_info() const = 0;
    /// As many elements as there is room for, from the first on, as Tcl values; cheaper than one by one.
    virtual void get_elements_as_tclobjs(unsigned long first, std::span<tclobj_ref> values) const;

    void incr_ref() const { ++m_refs; }
    void decr_ref() const {
        if (--m_refs <= 0) {
            delete this;
        }
    }
    int ref_count() const { return m_refs; }

    /// The elements as a plain Tcl list, kept until the collection changes. The body owns it.
    Tcl_Obj* get_collection_as_tcllist() const;
    void invalidate_tcllist();
    /// Another number after each change of the elements.
    unsigned long revision() const { return m_revision; }

    const std::shared_ptr<HTCICollectionContext>& collection_context() const { return m_context; }
    unsigned long collection_context_id() const { return m_contextId; }
    void set_collection_context(std::shared_ptr<HTCICollectionContext> context, unsigned long id = 0) {
        m_context = std::move(context);
        m_contextId = id;
    }
    void clear_collection_context() { set_collection_context(nullptr); }

    /// True if the value is an object, or a collection, of this collection's element type; text is of the
    /// type of texts, and anything is of that of mixed elements.
    bool is_of_value_type(Tcl_Obj* obj) const;

private:
    friend Tcl_Obj* get_tclobj(const collection_wrapper_base* body);
    friend void FreeInternalRepProc(Tcl_Obj* obj);

    mutable int m_refs = 0;
    unsigned long m_revision = 0;
    mutable Tcl_Obj* m_tcllist = nullptr; // counted
    mutable Tcl_Obj* m_tclobj =
        nullptr; // the value that holds this body, not counted; null when there is none
    std::shared_ptr<HTCICollectionContext> m_context;
    unsigned long m_contextId = 0; // tells contexts of one query apart
};

/// The collection that a value holds, or null. Never converts the value.
collection_wrapper_base* get_collection(const Tcl_Obj* obj);

/// The value that holds a collection: the same one as long as it lives, else a new one with count zero.
Tcl_Obj* get_tclobj(const collection_wrapper_base* body);

/// Stores the text of a collection value; the text is in the system encoding.
void set_collection_tcl_string_rep(Tcl_Obj* obj, const std::string& text);

/// Makes the text of a collection value: the body's, "_xcol" when there is no body, the reason when that
/// fails.
void update_collection_string_rep(Tcl_Obj* obj);

/// True if a collection shows its context's text in place of its elements.
bool get_use_collection_context_string_rep();
void set_use_collection_context_string_rep(bool use);

/// How many elements the text of a collection holds, and whether that limit is in force: the parameter
/// tcl.collectionResultDisplayLimit, where -1 switches the check off.
bool collection_result_display_limit_check_enabled();
unsigned long get_collection_result_display_limit();

/// True while results are plain Tcl lists: the parameter tcl.disableCollections.
bool collections_disabled();

/// True if a value is a Tcl list of other than one element, or text that reads as one. Never converts the
/// value; text is judged by whether it is empty or holds white space or braces.
bool is_list_type(Tcl_Obj* obj);

} // namespace detail
} // namespace vek::tcltasks
