// omu::join list ?joinString?
// As Tcl's join; of a collection, the texts of its elements are joined.
#include "platform/taskcore/collection_wrapper_base.h"
#include "platform/tcl/tcl_guard.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/builtin/HTCBuiltinCmds.h"

using namespace vek::tcltasks;

int Omu_JoinObjCmd(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        if (objc != 2 && objc != 3) {
            Tcl_WrongNumArgs(interp, 1, objv, "list ?joinString?");
            return TCL_ERROR;
        }
        const auto* collection = detail::get_collection(objv[1]);
        const tclobj_ref list(collection ? collection->get_collection_as_tcllist() : objv[1]);
        int count = 0;
        Tcl_Obj** elements = nullptr;
        if (Tcl_ListObjGetElements(interp, list.get(), &count, &elements) != TCL_OK) {
            return TCL_ERROR;
        }
        const tclobj_ref separator(objc == 3 ? objv[2] : Tcl_NewStringObj(" ", 1));
        Tcl_Obj* joined = Tcl_NewObj();
        for (int i = 0; i < count; ++i) {
            if (i > 0) {
                Tcl_AppendObjToObj(joined, separator.get());
            }
            Tcl_AppendObjToObj(joined, elements[i]);
        }
        Tcl_SetObjResult(interp, joined);
        return TCL_OK;
    });
}
