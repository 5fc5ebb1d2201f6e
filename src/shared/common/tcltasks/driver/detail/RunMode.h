#pragma once

#include <string>
#include <string_view>
#include <tcl.h>

/// The session's run mode. The Tcl variable omu::mode follows it; omu::requested_mode keeps what the user
/// asked for. Interpreter's thread only.
class RunMode {
public:
    enum MODE { tcl, batch, gui, py, no_mode };
    /// The words of the modes, in the order of MODE.
    static const char* const modes[no_mode + 1];

    static MODE sMode;
    static std::string sModeStr;

    /// Changes the mode and the Tcl variable omu::mode, with `requested` also omu::requested_mode. Returns
    /// the old mode.
    static MODE set(Tcl_Interp* interp, MODE mode, bool requested);
    /// Changes the Tcl variables alone.
    static void set(Tcl_Interp* interp, const char* mode, bool requested);

    /// The first mode whose word begins with `word`, ignoring case; no_mode if there is none. "" is tcl.
    static MODE find(std::string_view word);
};
