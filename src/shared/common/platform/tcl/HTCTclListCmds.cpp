#include "platform/tcl/HTCTclListCmds.h"

#include "platform/taskcore/collection_wrapper_base.h"

int HTCTclListCmds::tclListObjGetElements(Tcl_Interp* interp, Tcl_Obj* list, int* objc, Tcl_Obj*** objv) {
    if (const auto* collection = vek::tcltasks::detail::get_collection(list)) {
        list = collection->get_collection_as_tcllist();
    }
    return Tcl_ListObjGetElements(interp, list, objc, objv);
}
