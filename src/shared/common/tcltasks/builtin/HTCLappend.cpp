// omu::lappend varName ?value value ...?
// As Tcl's lappend; a collection in the variable takes more elements of its type, and sends an ERROR for
// others.
#include <span>

#include "platform/taskcore/HTCErrors.h"
#include "platform/taskcore/collection_wrapper_base.h"
#include "platform/taskcore/native_cache_base.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/builtin/HTCBuiltinCmds.h"
#include "tcltasks/builtin/HTCBuiltinUtils.h"

using namespace vek::tcltasks;

namespace {

// Above this, somebody beside the variable and the call at hand knows the value.
constexpr int most_private_references = 2;

class counted_body {
public:
    explicit counted_body(detail::collection_wrapper_base* body) : m_body(body) { m_body->incr_ref(); }
    counted_body(const counted_body&) = delete;
    counted_body& operator=(const counted_body&) = delete;
    ~counted_body() { m_body->decr_ref(); }
    detail::collection_wrapper_base& operator*() const { return *m_body; }

private:
    detail::collection_wrapper_base* m_body;
};

void append_element(Tcl_Interp* interp, detail::collection_wrapper_base& target, Tcl_Obj* element) {
    if (!target.is_of_value_type(element)) {
        throw HTCErrors::append_typed_collection();
    }
    target.append_tclobj(interp, element);
}

void append_value(Tcl_Interp* interp, detail::collection_wrapper_base& target, Tcl_Obj* value) {
    static const Tcl_ObjType* const listType = Tcl_GetObjType("list");
    if (const auto* collection = detail::get_collection(value)) {
        target.append_collection(collection);
    } else if (value->typePtr == listType && !native_cache_base::type_behind(value)) {
        int count = 0;
        Tcl_Obj** elements = nullptr;
        if (Tcl_ListObjGetElements(nullptr, value, &count, &elements) == TCL_OK) {
            for (Tcl_Obj* element : std::span(elements, static_cast<size_t>(count))) {
                append_element(interp, target, element);
            }
        }
    } else {
        append_element(interp, target, value);
    }
}

int store(Tcl_Interp* interp, Tcl_Obj* variable, Tcl_Obj* value) {
    Tcl_Obj* const stored = Tcl_ObjSetVar2(interp, variable, nullptr, value, TCL_LEAVE_ERR_MSG);
    if (!stored) {
        return TCL_ERROR;
    }
    if (auto* collection = detail::get_collection(stored)) {
        collection->clear_collection_context();
    }
    Tcl_SetObjResult(interp, stored);
    return TCL_OK;
}

int append_to_collection(Tcl_Interp* interp, Tcl_Obj* variable, Tcl_Obj* current,
                         std::span<Tcl_Obj* const> values) {
    detail::collection_wrapper_base* body = detail::get_collection(current);
    const bool copied = current->refCount > most_private_references && !values.empty();
    const counted_body target(copied ? body->clone() : body);
    tclobj_ref value(current);
    if (copied) {
        // The list is made before the values come in, and is left as it is.
        value = detail::collections_disabled() ? (*target).get_collection_as_tcllist()
                                               : detail::get_tclobj(&*target);
    }
    for (Tcl_Obj* more : values) {
        append_value(interp, *target, more);
    }
    return store(interp, variable, value.get());
}

int lappend(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    if (objc < 2) {
        Tcl_WrongNumArgs(interp, 1, objv, "varName ?value value ...?");
        return TCL_ERROR;
    }
    Tcl_Obj* const current = Tcl_ObjGetVar2(interp, objv[1], nullptr, 0);
    if (!current && objc == 3 && detail::get_collection(objv[2])) {
        return store(interp, objv[1], objv[2]);
    }
    if (!current || !detail::get_collection(current)) {
        return HTCBuiltinUtils::call_plain(HTCBuiltinUtils::plain_command::lappend, interp, objc, objv);
    }
    return append_to_collection(interp, objv[1], current, {objv + 2, static_cast<size_t>(objc - 2)});
}

} // namespace

int Omu_LappendObjCmd(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    try {
        return lappend(interp, objc, objv);
    } catch (...) {
        return HTCBuiltinUtils::report_exception("unknown error occurred during lappend\n");
    }
}
