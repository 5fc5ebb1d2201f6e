#include "tcltasks/driver/detail/RunMode.h"

#include <utility>

#include "platform/env/HSTStringUtils.h"

const char* const RunMode::modes[] = {"tcl", "batch", "gui", "py", "no_mode"};
RunMode::MODE RunMode::sMode = RunMode::no_mode;
std::string RunMode::sModeStr = "no_mode";

RunMode::MODE RunMode::set(Tcl_Interp* interp, MODE mode, bool requested) {
    sModeStr = modes[mode];
    set(interp, modes[mode], requested);
    return std::exchange(sMode, mode);
}

void RunMode::set(Tcl_Interp* interp, const char* mode, bool requested) {
    if (!Tcl_FindNamespace(interp, "::omu", nullptr, TCL_GLOBAL_ONLY)) {
        Tcl_CreateNamespace(interp, "::omu", nullptr, nullptr);
    }
    Tcl_SetVar2(interp, "::omu::mode", nullptr, mode, TCL_GLOBAL_ONLY);
    if (requested) {
        Tcl_SetVar2(interp, "::omu::requested_mode", nullptr, mode, TCL_GLOBAL_ONLY);
    }
}

RunMode::MODE RunMode::find(std::string_view word) {
    int mode = tcl;
    while (mode < no_mode && !HSTStringUtils::istarts_with(modes[mode], word)) {
        ++mode;
    }
    return static_cast<MODE>(mode);
}
