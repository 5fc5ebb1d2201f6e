#include "platform/taskcore/collection_wrapper_base.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>

#include "platform/param/HPAParamMgr.h"
#include "platform/taskcore/native_cache_base.h"
#include "platform/taskcore/tcl_globals.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "tcltasks/core/tclany.h"

namespace vek::tcltasks::detail {

thread_local Tcl_Interp* tcl_globals::interp = nullptr;
thread_local std::map<std::string, Tcl_Obj*> tcl_globals::objv;

Tcl_Obj* tcl_globals::argument(const std::string& token) {
    const auto found = objv.find(token);
    if (found != objv.end() && found->second) {
        return found->second;
    }
    static thread_local tclobj_ref text;
    text = tclobj_ref(HTCTclEncoding::tclNewStringObj(token));
    return text.get();
}

namespace {

std::atomic<bool> useContextStringRep{false};

bool holds_collection(const Tcl_Obj* obj) {
    return obj->typePtr && obj->typePtr->freeIntRepProc == FreeInternalRepProc &&
           obj->typePtr->dupIntRepProc == duplicate_collection_tclobj;
}

void hold(Tcl_Obj* obj, const collection_wrapper_base* body) {
    obj->internalRep.twoPtrValue.ptr1 = const_cast<collection_wrapper_base*>(body);
    if (body) {
        body->incr_ref();
    }
}

} // namespace

collection_wrapper_base::~collection_wrapper_base() {
    if (m_tcllist) {
        Tcl_DecrRefCount(m_tcllist);
    }
}

void collection_wrapper_base::get_elements_as_tclobjs(unsigned long first,
                                                      std::span<tclobj_ref> values) const {
    for (tclobj_ref& value : values) {
        value = get_element_as_tclobj(first++);
    }
}

Tcl_Obj* collection_wrapper_base::get_collection_as_tcllist() const {
    if (!m_tcllist) {
        const unsigned long count = size();
        const tclobj_ref list = Tcl_NewListObj(static_cast<int>(count), nullptr);
        std::array<tclobj_ref, 64> values;
        for (unsigned long i = 0; i < count; i += values.size()) {
            const std::span part(values.data(), std::min(values.size(), count - i));
            get_elements_as_tclobjs(i, part);
            for (const tclobj_ref& value : part) {
                Tcl_ListObjAppendElement(nullptr, list.get(), value ? value.get() : Tcl_NewObj());
            }
        }
        m_tcllist = list.get();
        Tcl_IncrRefCount(m_tcllist);
    }
    return m_tcllist;
}

void collection_wrapper_base::invalidate_tcllist() {
    ++m_revision;
    if (m_tcllist) {
        Tcl_DecrRefCount(m_tcllist);
        m_tcllist = nullptr;
    }
    // The text of the value that holds this body tells of the old elements; it is made anew when asked for.
    if (m_tclobj) {
        Tcl_InvalidateStringRep(m_tclobj);
    }
}

bool collection_wrapper_base::is_of_value_type(Tcl_Obj* obj) const {
    if (get_value_type_info() == typeid(tclany)) {
        return true;
    }
    if (const auto* other = get_collection(obj)) {
        return other->get_value_type_info() == get_value_type_info();
    }
    const itcltypeinfo* info = native_cache_base::type_behind(obj);
    return (info ? info->get_type_info() : typeid(std::string)) == get_value_type_info();
}

collection_wrapper_base* get_collection(const Tcl_Obj* obj) {
    return holds_collection(obj) ? static_cast<collection_wrapper_base*>(obj->internalRep.twoPtrValue.ptr1)
                                 : nullptr;
}

Tcl_Obj* get_tclobj(const collection_wrapper_base* body) {
    if (body->m_tclobj) {
        return body->m_tclobj;
    }
    Tcl_Obj* obj = Tcl_NewObj();
    Tcl_InvalidateStringRep(obj);
    obj->typePtr = body->get_tcl_obj_type();
    obj->internalRep.twoPtrValue.ptr2 = const_cast<itcltypeinfo*>(body->get_tcl_type_info());
    hold(obj, body);
    body->m_tclobj = obj;
    return obj;
}

void SetTclObjTypeInfo(Tcl_Obj* obj, const Tcl_ObjType* type, const itcltypeinfo* info) {
    collection_wrapper_base* body = get_collection(obj);
    if (body) {
        body->incr_ref();
    } else {
        Tcl_GetString(obj);
    }
    if (obj->typePtr && obj->typePtr->freeIntRepProc) {
        obj->typePtr->freeIntRepProc(obj);
    }
    obj->typePtr = type;
    obj->internalRep.twoPtrValue.ptr1 = nullptr;
    obj->internalRep.twoPtrValue.ptr2 = const_cast<itcltypeinfo*>(info);
    if (body) {
        hold(obj, holds_collection(obj) ? body : nullptr);
        body->decr_ref();
    }
}

void shimmer(Tcl_Obj* obj) {
    const collection_wrapper_base* body = get_collection(obj);
    if (!body) {
        return;
    }
    // The list's elements replace the collection before the body is let go.
    const tclobj_ref list(body->get_collection_as_tcllist());
    const tclobj_ref copy(Tcl_DuplicateObj(list.get()));
    Tcl_InvalidateStringRep(obj);
    FreeInternalRepProc(obj);
    obj->typePtr = nullptr;
    copy->typePtr->dupIntRepProc(copy.get(), obj);
}

void remove_from_native_cache(Tcl_Obj*) {}

void FreeInternalRepProc(Tcl_Obj* obj) {
    if (const collection_wrapper_base* body = get_collection(obj)) {
        if (body->m_tclobj == obj) {
            body->m_tclobj = nullptr;
        }
        obj->internalRep.twoPtrValue.ptr1 = nullptr;
        body->decr_ref();
    } else if (const itcltypeinfo* info = GetTclTypeInfo(obj)) {
        info->remove_from_native_cache(obj);
    }
    obj->typePtr = nullptr;
}

void InvalidStringRepProc(Tcl_Obj* obj) {
    // A native value's text is made with the value and never given up, so there is nothing to make it from.
    static const char text[] = "_invalid_";
    obj->bytes = Tcl_Alloc(sizeof text);
    std::memcpy(obj->bytes, text, sizeof text);
    obj->length = sizeof text - 1;
}

void duplicate_collection_tclobj(Tcl_Obj* source, Tcl_Obj* copy) {
    copy->typePtr = source->typePtr;
    copy->internalRep.twoPtrValue.ptr2 = source->internalRep.twoPtrValue.ptr2;
    hold(copy, get_collection(source));
}

void set_collection_tcl_string_rep(Tcl_Obj* obj, const std::string& text) {
    const std::string utf = HTCTclEncoding::toTcl(text);
    Tcl_InvalidateStringRep(obj);
    obj->bytes = Tcl_Alloc(static_cast<unsigned>(utf.size() + 1));
    std::memcpy(obj->bytes, utf.c_str(), utf.size() + 1);
    obj->length = static_cast<int>(utf.size());
}

void update_collection_string_rep(Tcl_Obj* obj) {
    std::string text = "_xcol";
    try {
        if (const collection_wrapper_base* body = get_collection(obj)) {
            const auto& context = body->collection_context();
            text = context && get_use_collection_context_string_rep() ? context->string_rep()
                                                                      : body->get_tcl_string_rep();
        }
    } catch (const std::exception& failure) {
        text = failure.what();
    }
    try {
        set_collection_tcl_string_rep(obj, text);
    } catch (const std::exception&) {
        std::printf("%s\n", text.c_str());
    }
}

bool get_use_collection_context_string_rep() {
    return useContextStringRep.load(std::memory_order_relaxed);
}

void set_use_collection_context_string_rep(bool use) {
    useContextStringRep = use;
}

namespace {

int display_limit() {
    static const HPAParam* const limit =
        HPAParamMgr::getParamMgr().findParam("tcl.collectionResultDisplayLimit");
    return limit ? limit->int_value() : 500;
}

} // namespace

bool collection_result_display_limit_check_enabled() {
    return display_limit() >= 0;
}

unsigned long get_collection_result_display_limit() {
    return static_cast<unsigned long>(std::max(0, display_limit()));
}

bool collections_disabled() {
    static const HPAParam* const disabled = HPAParamMgr::getParamMgr().findParam("tcl.disableCollections");
    return disabled && disabled->bool_value();
}

bool is_list_type(Tcl_Obj* obj) {
    static const Tcl_ObjType* const listType = Tcl_GetObjType("list");
    if (obj->typePtr == listType) {
        int count = 0;
        Tcl_ListObjLength(nullptr, obj, &count);
        return count != 1;
    }
    if (!obj->bytes) {
        return false;
    }
    return *obj->bytes == '\0' || std::strpbrk(obj->bytes, " \t\n\r\f\v{}\"\\") != nullptr;
}

} // namespace vek::tcltasks::detail
