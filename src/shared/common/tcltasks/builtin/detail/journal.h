#pragma once

#include <string>
#include <tcl.h>

/// How the commands of the prompt reach the journal, so that the journal can be replayed. Interpreter's
/// thread only.
namespace HTCBuiltin::detail {

/// Takes a command that was just added to the history to the journal. One that stands for an earlier command,
/// as !! does, means nothing in a replay: it is left as a comment, and its place is taken by the command that
/// it turns out to be. One that is called by the beginning of its name gets the whole name, and a program of
/// the system that is called by its name alone becomes the exec that runs it.
void journal_command(Tcl_Interp* interp, const std::string& command);

/// Tells that the event `id` of the history, counted as in HTCHistory::Mgr, has become this command.
void journal_changed_event(Tcl_Interp* interp, int id, const std::string& command);

} // namespace HTCBuiltin::detail
