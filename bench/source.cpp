// Commands for bench/group_source.tcl: `load libbench_source.so Bench_source` makes them in the namespace
// bench.

#include <memory>
#include <tcl.h>

#include "platform/msg/ComMsgMgr.h"

namespace {

class NoConsole : public ComMsgMgrSink {
    void write(std::string_view) override {}
};

int see_nothing(ClientData, Tcl_Interp*, int, const char*, Tcl_Command, int, Tcl_Obj* const*) {
    return TCL_OK;
}

// bench::empty_trace COMMAND ARG ...: runs the command under a trace of all commands that does nothing.
int empty_trace(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    const Tcl_Trace trace =
        Tcl_CreateObjTrace(interp, 0, TCL_ALLOW_INLINE_COMPILATION, see_nothing, nullptr, nullptr);
    const int code = Tcl_EvalObjv(interp, objc - 1, objv + 1, TCL_EVAL_GLOBAL);
    Tcl_DeleteTrace(interp, trace);
    return code;
}

// bench::no_console: throws away what would go to the console, so that only the log is measured.
int no_console(ClientData, Tcl_Interp*, int, Tcl_Obj* const*) {
    ComMsgMgr::setSink(ComMsgMgr::Destination::console, std::make_shared<NoConsole>());
    return TCL_OK;
}

} // namespace

extern "C" DLLEXPORT int Bench_source_Init(Tcl_Interp* interp) {
    Tcl_CreateObjCommand(interp, "bench::empty_trace", empty_trace, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, "bench::no_console", no_console, nullptr, nullptr);
    return TCL_OK;
}
