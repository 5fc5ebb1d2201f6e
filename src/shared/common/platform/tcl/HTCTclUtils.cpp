#include "platform/tcl/HTCTclUtils.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/HTCTclInterp.h"
#include "platform/tcl/tclcmdobj.h"
#include "platform/tcl/tclobj_ref.h"

// Tcl's own, exported for extensions; null for a command that was not imported.
extern "C" Tcl_Command TclGetOriginalCommand(Tcl_Command command);

namespace {

std::atomic<bool (*)(Tcl_Interp*)> catchQuery{nullptr};
std::atomic<const char* (*)()> modeQuery{nullptr};

bool mode_is(const char* word) {
    const auto query = modeQuery.load();
    return query && std::strcmp(query(), word) == 0;
}

std::string without_colons(const std::string& name) {
    return name.substr(std::min(name.find_first_not_of(':'), name.size()));
}

std::string plain_name(const std::string& name) {
    const size_t colons = name.rfind("::");
    return colons == std::string::npos ? name : name.substr(colons + 2);
}

} // namespace

void HTCTclUtils::setCatchQuery(bool (*query)(Tcl_Interp*)) {
    catchQuery = query;
}

void HTCTclUtils::setModeQuery(const char* (*query)()) {
    modeQuery = query;
}

bool HTCTclUtils::isTclMode() {
    return mode_is("tcl");
}

bool HTCTclUtils::isBatchMode() {
    return mode_is("batch");
}

bool HTCTclUtils::isGuiMode() {
    return mode_is("gui");
}

int HTCTclUtils::tclGetPrecision(int fallback) {
    Tcl_Interp* interp = HTCTclInterp::getDefaultInterp();
    if (!interp || HTCTclInterp::threadOf(interp) != Tcl_GetCurrentThread()) {
        return fallback;
    }
    Tcl_Obj* value = Tcl_GetVar2Ex(interp, "tcl_precision", nullptr, TCL_GLOBAL_ONLY);
    int digits = 0;
    const bool set =
        value && Tcl_GetIntFromObj(nullptr, value, &digits) == TCL_OK && digits >= 1 && digits <= 17;
    return set ? digits : fallback;
}

std::string HTCTclUtils::tclGetErrorInfo(Tcl_Interp* interp, int code) {
    if (code != TCL_ERROR) {
        return {};
    }
    const vek::tcltasks::tclobj_ref options(Tcl_GetReturnOptions(interp, code));
    const vek::tcltasks::tclobj_ref key(Tcl_NewStringObj("-errorinfo", -1));
    Tcl_Obj* info = nullptr;
    Tcl_DictObjGet(nullptr, options.get(), key.get(), &info);
    return info ? HTCTclEncoding::tclGetString(info) : std::string();
}

bool HTCTclUtils::isSourcingScript(Tcl_Interp* interp) {
    const vek::tcltasks::tclobj_ref saved(Tcl_GetObjResult(interp));
    bool sourcing = false;
    if (Tcl_Eval(interp, "::info script") == TCL_OK) {
        sourcing = *Tcl_GetString(Tcl_GetObjResult(interp)) != 0;
    }
    Tcl_SetObjResult(interp, saved.get());
    return sourcing;
}

bool HTCTclUtils::isInCatch(Tcl_Interp* interp) {
    const auto query = catchQuery.load();
    return query && query(interp);
}

std::string HTCTclUtils::tclNamespaceOrigin(Tcl_Interp* interp, const std::string& name) {
    Tcl_Command command = Tcl_FindCommand(interp, name.c_str(), nullptr, TCL_GLOBAL_ONLY);
    if (!command) {
        return {};
    }
    if (Tcl_Command original = TclGetOriginalCommand(command)) {
        command = original;
    }
    const vek::tcltasks::tclobj_ref full(Tcl_NewObj());
    Tcl_GetCommandFullName(interp, command, full.get());
    return Tcl_GetString(full.get());
}

bool HTCTclUtils::tclIsCmdInGlobalNamespace(Tcl_Interp* interp, const std::string& name) {
    const std::string full = "::" + without_colons(name);
    const std::string plain = "::" + plain_name(full);
    const Tcl_Command command = Tcl_FindCommand(interp, full.c_str(), nullptr, TCL_GLOBAL_ONLY);
    const Tcl_Command global = Tcl_FindCommand(interp, plain.c_str(), nullptr, TCL_GLOBAL_ONLY);
    if (!command || !global || full == plain) {
        return command && global;
    }
    vek::tcltasks::tclcmdobj origin(interp, "::namespace");
    origin.append("origin").append(plain);
    const Tcl_InterpState state = Tcl_SaveInterpState(interp, TCL_OK);
    const bool imported = origin.eval(TCL_EVAL_GLOBAL) == TCL_OK &&
                          Tcl_GetCommandFromObj(interp, Tcl_GetObjResult(interp)) == command;
    Tcl_RestoreInterpState(interp, state);
    return imported;
}

std::string HTCTclUtils::getCmdHelpName(Tcl_Interp* interp, const std::string& name) {
    return tclIsCmdInGlobalNamespace(interp, name) ? plain_name(name) : without_colons(name);
}
