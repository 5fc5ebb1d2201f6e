// omu::lsearch ?options? list pattern
// Tcl's lsearch; a collection is searched as the list of its elements.
#include <vector>

#include "platform/taskcore/collection_wrapper_base.h"
#include "platform/tcl/tcl_guard.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/builtin/HTCBuiltinCmds.h"
#include "tcltasks/builtin/HTCBuiltinUtils.h"

using namespace vek::tcltasks;

int Omu_LsearchObjCmd(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        if (objc < 3) {
            Tcl_WrongNumArgs(interp, 1, objv, "?options? list pattern");
            return TCL_ERROR;
        }
        const auto plain = HTCBuiltinUtils::plain_command::lsearch;
        const auto* collection = detail::get_collection(objv[objc - 2]);
        if (!collection) {
            return HTCBuiltinUtils::call_plain(plain, interp, objc, objv);
        }
        const tclobj_ref list(collection->get_collection_as_tcllist());
        std::vector<Tcl_Obj*> words(objv, objv + objc);
        words[static_cast<size_t>(objc - 2)] = list.get();
        return HTCBuiltinUtils::call_plain(plain, interp, objc, words.data());
    });
}
