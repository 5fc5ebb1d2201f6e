#include "platform/tcl/tclcmdobj.h"

#include "platform/taskcore/HTCErrors.h"
#include "platform/tcl/HTCTclEncoding.h"

namespace vek::tcltasks {

tclcmdobj::tclcmdobj(Tcl_Interp* interp, const std::string& name)
    : m_interp(interp), m_command(Tcl_NewListObj(0, nullptr)) {
    append(name);
}

tclcmdobj& tclcmdobj::append(const std::string& word) {
    return append(HTCTclEncoding::tclNewStringObj(word));
}

tclcmdobj& tclcmdobj::append(Tcl_Obj* word) {
    Tcl_ListObjAppendElement(nullptr, m_command.get(), word);
    return *this;
}

int tclcmdobj::eval(int flags) {
    return Tcl_EvalObjEx(m_interp, m_command.get(), flags);
}

void tclcmdobj::eval_throw(int flags) {
    if (eval(flags) != TCL_OK) {
        throw HTCErrors::command_failed(HTCTclEncoding::tclGetString(Tcl_GetObjResult(m_interp)));
    }
}

std::string tclcmdobj::text() const {
    return HTCTclEncoding::tclGetString(m_command.get());
}

} // namespace vek::tcltasks
