#pragma once

#include <string>
#include <tcl.h>

namespace vek::tcltasks {

/// One call of a Tcl command. task_manager makes a fresh object for each call, runs the three-argument
/// execute and asks the other operations how to treat the run. Interpreter's thread only. Commands derive
/// from HTCITaskHelper, which fills in everything that needs no knowledge of the command.
class itask {
public:
    /// Parses the words of the call and does the work. Returns a Tcl code; may throw.
    virtual int execute(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) = 0;

    virtual bool affects_undo(Tcl_Interp*, int, Tcl_Obj* const*) const { return false; }
    virtual bool can_undo(Tcl_Interp*, int, Tcl_Obj* const*) const { return false; }
    virtual int undo(Tcl_Interp*, int, Tcl_Obj* const*) { return 1; }
    virtual bool can_redo(Tcl_Interp*, int, Tcl_Obj* const*) const { return false; }
    virtual int redo(Tcl_Interp*, int, Tcl_Obj* const*) { return 1; }

    /// The name under which the command is registered.
    virtual const char* task_name() const = 0;
    /// What help shows in place of the command's name.
    virtual std::string task_help_name(const std::string& name) const { return name; }
    virtual std::string task_description() const = 0;
    /// A hidden command works but is not listed.
    virtual bool is_hidden() const { return false; }
    /// True for a command that is to be given up; `message` tells what to use instead.
    virtual bool is_deprecated(std::string& /*message*/) const { return false; }
    /// Help in the form "syntax", "args" or "long".
    virtual std::string task_help(Tcl_Interp* interp, const std::string& form) const = 0;
    /// Category names with ":" between them.
    virtual std::string task_categories() const = 0;

    virtual ~itask() = default;

    /// Whether listeners hear of the command's start and end.
    virtual bool notify() const { return true; }
    /// Whether the command runs other commands, whose statistics then count apart.
    virtual bool isComposite() const { return false; }
    virtual bool reportParams() const { return false; }
    /// Whether calls and run time are counted.
    virtual bool reportStats() const { return true; }
    /// Whether an interrupt by the user reaches the running command.
    virtual bool install_sigint_handler() const { return true; }
    /// Whether an ERROR that the command sends makes the call fail although it returned TCL_OK.
    virtual bool halt_flow_if_error_msg_detected() const { return true; }
};

} // namespace vek::tcltasks
