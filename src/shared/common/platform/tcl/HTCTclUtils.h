#pragma once

#include <string>
#include <tcl.h>

/// Questions about the state of an interpreter. Interpreter's thread unless said otherwise.
class HTCTclUtils {
public:
    /// The current run mode, read from the Tcl variable omu::mode of the default interpreter's session.
    static bool isTclMode();
    static bool isBatchMode();
    static bool isGuiMode();

    /// Digits after the point for floating values as text: the Tcl variable tcl_precision if it is set
    /// to 1..17, else `fallback`.
    static int tclGetPrecision(int fallback);

    /// The stack of the last error as Tcl keeps it in errorInfo, in the system encoding; empty when `code` is
    /// not TCL_ERROR or nothing was recorded.
    static std::string tclGetErrorInfo(Tcl_Interp* interp, int code);

    /// True while a file is being sourced in this interpreter.
    static bool isSourcingScript(Tcl_Interp* interp);

    /// True while the interpreter runs inside a catch of the script.
    static bool isInCatch(Tcl_Interp* interp);

    /// True if the command can be called by its plain name, the last part of `name`, from anywhere: it lies
    /// in the global namespace or is imported there.
    static bool tclIsCmdInGlobalNamespace(Tcl_Interp* interp, const std::string& name);

    /// The full name of the command behind a name that the global namespace sees: of an imported command, the
    /// one that it was imported from. Empty if there is no such command. Names are in Tcl's encoding.
    static std::string tclNamespaceOrigin(Tcl_Interp* interp, const std::string& name);

    /// The name under which users know a command: its plain name if it can be called by that, else `name`
    /// without leading colons.
    static std::string getCmdHelpName(Tcl_Interp* interp, const std::string& name);

    /// How isInCatch finds out; the command that replaces catch installs it.
    static void setCatchQuery(bool (*query)(Tcl_Interp*));

    /// How the run mode is known; the session driver installs it. The word is one of tcl, batch, gui, py,
    /// no_mode.
    static void setModeQuery(const char* (*query)());
};
