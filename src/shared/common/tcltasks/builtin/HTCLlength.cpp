// omu::llength list
// As Tcl's llength; of a collection, the number of its elements.
#include "platform/taskcore/collection_wrapper_base.h"
#include "platform/tcl/tcl_guard.h"
#include "tcltasks/builtin/HTCBuiltinCmds.h"

using namespace vek::tcltasks;

int Omu_LlengthObjCmd(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        if (objc != 2) {
            Tcl_WrongNumArgs(interp, 1, objv, "list");
            return TCL_ERROR;
        }
        int count = 0;
        if (const auto* collection = detail::get_collection(objv[1])) {
            count = static_cast<int>(collection->size());
        } else if (const int code = Tcl_ListObjLength(interp, objv[1], &count); code != TCL_OK) {
            return code;
        }
        Tcl_SetObjResult(interp, Tcl_NewIntObj(count));
        return TCL_OK;
    });
}
