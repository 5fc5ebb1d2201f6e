// omu::lindex list ?index...?
// As Tcl's lindex; of a collection, one element. An index that is none ends with an ERROR message.
#include "platform/taskcore/collection_wrapper_base.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/builtin/HTCBuiltinCmds.h"
#include "tcltasks/builtin/HTCBuiltinUtils.h"

using namespace vek::tcltasks;

namespace {

int call_plain(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    const int code = HTCBuiltinUtils::call_plain(HTCBuiltinUtils::plain_command::lindex, interp, objc, objv);
    return code == TCL_OK ? TCL_OK : TCL_ERROR;
}

int lindex(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    if (objc < 2) {
        Tcl_WrongNumArgs(interp, 1, objv, "list ?index...?");
        return TCL_ERROR;
    }
    const auto* collection = detail::get_collection(objv[1]);
    if (!collection) {
        return call_plain(interp, objc, objv);
    }
    if (objc != 3) {
        Tcl_SetObjResult(interp, objv[1]); // elements are objects: there is nothing to descend into
        return TCL_OK;
    }
    const int size = static_cast<int>(collection->size());
    const int index = HTCBuiltinUtils::parseIndex(Tcl_GetString(objv[2]), size - 1);
    if (index < 0 || index >= size) {
        Tcl_SetObjResult(interp, Tcl_NewObj());
        return TCL_OK;
    }
    if (Tcl_Obj* element = collection->get_element_as_tclobj(static_cast<unsigned long>(index))) {
        Tcl_SetObjResult(interp, element);
        return TCL_OK;
    }
    // Tcl would turn the value itself into a list of the words of its text, for everyone who holds it.
    const tclobj_ref list(collection->get_collection_as_tcllist());
    Tcl_Obj* const words[] = {objv[0], list.get(), objv[2]};
    return call_plain(interp, objc, words);
}

} // namespace

int Omu_LindexObjCmd(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    try {
        return lindex(interp, objc, objv);
    } catch (...) {
        return HTCBuiltinUtils::report_exception(nullptr);
    }
}
