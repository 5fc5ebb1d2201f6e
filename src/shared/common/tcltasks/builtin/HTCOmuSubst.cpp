// omu::tdcsubst word ?word ...?
// The words as one command line, to note a command as it was written: a collection stands as the text of the
// query that it came from.
#include "platform/taskcore/collection_wrapper_base.h"
#include "platform/tcl/HTCTaskHelpers.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/tcl_guard.h"
#include "tcltasks/builtin/HTCBuiltinCmds.h"

using namespace vek::tcltasks;

namespace {

std::string word_of(Tcl_Obj* argument) {
    if (const auto* collection = detail::get_collection(argument)) {
        const auto& context = collection->collection_context();
        return context ? context->string_rep() : HTCTaskHelpers::brace(collection->get_tcl_string_rep());
    }
    return HTCTaskHelpers::brace(HTCTclEncoding::tclGetString(argument));
}

} // namespace

int Omu_SubstObjCmd(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        if (objc < 2) {
            Tcl_WrongNumArgs(interp, 1, objv, "originalCmdLine");
            return TCL_ERROR;
        }
        std::string line;
        for (int i = 1; i < objc; ++i) {
            line += i > 1 ? " " : "";
            line += word_of(objv[i]);
        }
        Tcl_SetObjResult(interp, HTCTclEncoding::tclNewStringObj(line));
        return TCL_OK;
    });
}
