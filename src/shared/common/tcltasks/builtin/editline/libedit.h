#pragma once

#include <string>
#include <tcl.h>

/// The prompt with line editing: reads commands from the terminal with libedit and evaluates them at global
/// level, in place of the loop of the host. All of it belongs to the interpreter's thread.
namespace HTCLibEdit::detail {

/// Arms the loop: the host's main-loop hook runs it in `interp`. Its prompts are `app` followed by "% " and,
/// while a command is not complete, "- ". The host's own prompts, the variables tcl_prompt1 and tcl_prompt2,
/// are kept and stay silent until resetTclMainLoop. Returns 0.
int setTclMainLoop(Tcl_Interp* interp, const std::string& app);

/// Gives the host its prompts back and asks the loop to end, which it does when the running command is done.
/// Returns 0.
int resetTclMainLoop();

/// The interpreter of the loop; null before the first setTclMainLoop and after the interpreter is gone.
Tcl_Interp* interp();

/// For what a key shows beside the line that is being typed: writes `text`, in the system encoding and
/// beginning with a line end, below all rows of the line, which is then drawn again below the text.
void show_below(const std::string& text);

/// For a host that has no Tcl_Main: runs the loop if it is armed, until it ends, and disarms it. False if
/// it was not armed.
bool runMainLoop();

} // namespace HTCLibEdit::detail
