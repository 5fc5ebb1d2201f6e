#pragma once

#include <string>
#include <tcl.h>
#include <vector>

/// The trace that takes the commands of sourced files to console and log, each behind as many hash signs as
/// files are being sourced. There is one for the process, on the main interpreter: interpreter's thread only.
namespace HTCBuiltin::detail {

/// Where a trace watches, counted in frames as `info frame` counts them.
struct traced_depth {
    int level = 0;     ///< the frame depth of the file's commands; 0 for no trace
    int frameless = 0; ///< Tcl's evaluation levels that have no frame, as the one of an imported command
};

struct tracer_state {
    bool traceAll = false;           ///< also commands that the file's own commands run
    bool isSourcing = false;         ///< some file is being sourced
    bool writeCmdText = false;       ///< the command traced last has a translation
    bool noTrace = false;            ///< an untraced file is being sourced; what it sources is untraced too
    int indentLevel = 0;             ///< depth of traced sourcing
    traced_depth depth;              ///< of the active trace
    std::vector<traced_depth> outer; ///< of the traces that the active one stands in for
    Tcl_Trace trace = nullptr;       ///< the active trace; null while it is taken away
    Tcl_ObjCmdProc* frameQuestion = nullptr; ///< tells the frame depth without an evaluation; null for none
    bool inlined = false;                    ///< the active trace lets Tcl compile inline
    bool resting = false;                    ///< a command that the active trace has seen runs
};
tracer_state& tracer();

/// Starts to trace a file that is about to be sourced; the trace of an outer file rests meanwhile.
void push_tracer(Tcl_Interp* interp);
/// Ends the active trace and takes up the outer one again.
void pop_tracer(Tcl_Interp* interp);

/// The text of a command behind `indent` hash signs on each of its lines, with a line end.
std::string format_command(int indent, const std::string& text);

} // namespace HTCBuiltin::detail
