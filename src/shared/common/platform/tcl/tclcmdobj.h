#pragma once

#include <string>
#include <tcl.h>

#include "platform/tcl/tclobj_ref.h"

namespace vek::tcltasks {

/// A Tcl command built word by word as a list value, so that no word is ever split or substituted again.
/// Interpreter's thread only.
///
///     tclcmdobj cmd(interp, "source");
///     cmd.append("-notrace").append(path);
///     int code = cmd.eval();
class tclcmdobj {
public:
    tclcmdobj(Tcl_Interp* interp, const std::string& name);

    /// Adds one word; text is in the system encoding.
    tclcmdobj& append(const std::string& word);
    tclcmdobj& append(const char* word) { return append(std::string(word)); }
    tclcmdobj& append(Tcl_Obj* word);

    /// Evaluates with Tcl_EvalObjEx and returns its code; the result is the interpreter's.
    int eval(int flags = 0);

    /// As eval; anything but TCL_OK throws HTCErrors::command_failed with the interpreter's result.
    void eval_throw(int flags = 0);

    /// The command as one line of text, for logs.
    std::string text() const;

    Tcl_Obj* obj() const { return m_command.get(); }

private:
    Tcl_Interp* m_interp;
    tclobj_ref m_command;
};

} // namespace vek::tcltasks
