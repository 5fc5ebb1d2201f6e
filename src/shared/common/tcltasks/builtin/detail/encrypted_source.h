#pragma once

#include <tcl.h>

#include "platform/tcl/tclobj_ref.h"

namespace HTCBuiltin::detail {

/// Lives around the evaluation of a file by source. If the file is encrypted, the file system that makes
/// plain text of it is registered and command echo is off meanwhile, and nothing of the text is left behind
/// in error traces. Does nothing for a plain file. Interpreter's thread only.
class encrypted_source {
public:
    encrypted_source(Tcl_Interp* interp, Tcl_Obj* path);
    ~encrypted_source();
    encrypted_source(const encrypted_source&) = delete;
    encrypted_source& operator=(const encrypted_source&) = delete;

    /// Whether the file is encrypted.
    explicit operator bool() const { return m_encrypted; }

    /// TCL_ERROR if the file system cannot be registered.
    int code() const { return m_code; }

    /// Takes the script's commands out of the trace of the error that the evaluation ended with.
    void hide_commands(int code);

    /// Ends it, which the destructor does otherwise. TCL_ERROR if the file system cannot be unregistered.
    int end();

private:
    Tcl_Interp* m_interp;
    vek::tcltasks::tclobj_ref m_path;
    vek::tcltasks::tclobj_ref m_errorInfo; // the variable's value before
    bool m_encrypted;
    bool m_wasInside;
    int m_code = TCL_OK;
};

} // namespace HTCBuiltin::detail
