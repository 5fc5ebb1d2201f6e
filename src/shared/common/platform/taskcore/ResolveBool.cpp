#include "platform/taskcore/ResolveBool.h"

#include "platform/env/HSTStringUtils.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "tcltasks/core/native_wrapper.h"

bool ResolveBool(bool& value, const std::string& word) {
    const bool on = HSTStringUtils::iequals(word, "enable") || HSTStringUtils::iequals(word, "enabled");
    const bool off = HSTStringUtils::iequals(word, "disable") || HSTStringUtils::iequals(word, "disabled");
    if (on || off) {
        value = on;
    }
    return on || off;
}

bool vek::tcltasks::detail::boolean_from_tcl(Tcl_Obj* obj) {
    int word = 0;
    if (Tcl_GetBooleanFromObj(nullptr, obj, &word) == TCL_OK) {
        return word != 0;
    }
    bool value = false;
    if (ResolveBool(value, HTCTclEncoding::tclGetString(obj))) {
        return value;
    }
    throw HTCErrors::type_error();
}
