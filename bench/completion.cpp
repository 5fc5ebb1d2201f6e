// Commands for bench/group_completion.tcl: `load libbench_completion.so Bench_completion` makes them in the
// namespace bench.

#include <string>
#include <tcl.h>

#include "tcltasks/builtin/completion/complete.h"

namespace {

// bench::complete LINE: what the Tab key at the end of a line computes. The bytes that it would write.
int complete(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    if (objc != 2) {
        Tcl_WrongNumArgs(interp, 1, objv, "line");
        return TCL_ERROR;
    }
    int length = 0;
    const char* line = Tcl_GetStringFromObj(objv[1], &length);
    const auto result = HTCLibEdit::detail::complete(interp, {line, static_cast<size_t>(length)});
    const size_t written = result.output.size() + result.replacement.value_or("").size();
    Tcl_SetObjResult(interp, Tcl_NewWideIntObj(static_cast<Tcl_WideInt>(written)));
    return TCL_OK;
}

} // namespace

extern "C" DLLEXPORT int Bench_completion_Init(Tcl_Interp* interp) {
    Tcl_CreateObjCommand(interp, "bench::complete", complete, nullptr, nullptr);
    return TCL_OK;
}
