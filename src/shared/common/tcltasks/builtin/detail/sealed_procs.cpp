#include "tcltasks/builtin/detail/sealed_procs.h"

// Which procedure runs when the engine calls a command is known to Tcl's own structures only.
#include <tclInt.h>

#include <string>

#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/tcl_guard.h"
#include "platform/tcl/tclobj_ref.h"
#include "platform/xp/xp.h"

namespace HTCBuiltin::detail {

using vek::tcltasks::tcl_guard;
using vek::tcltasks::tclobj_ref;

namespace {

// Tcl's own, the same in all interpreters.
Tcl_ObjCmdProc* plainBody = nullptr;
Tcl_ObjCmdProc* plainFrame = nullptr;

int after_sealed(ClientData data[], Tcl_Interp* interp, int code) {
    Tcl_Obj* const name = static_cast<Tcl_Obj*>(data[0]);
    Tcl_Obj* const errorInfo = static_cast<Tcl_Obj*>(data[1]);
    if (code == TCL_ERROR) {
        hide_trace(interp, Tcl_ObjPrintf("(procedure \"%s\" line %d)", Tcl_GetString(name),
                                         Tcl_GetErrorLine(interp)));
    } else {
        forget_last_error(interp, code, errorInfo);
    }
    Tcl_DecrRefCount(name);
    if (errorInfo) {
        Tcl_DecrRefCount(errorInfo);
    }
    return code;
}

// Stands in for Tcl's procedure that calls a procedure; its address is also the mark of a sealed one.
int call_sealed(ClientData proc, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    Tcl_Obj* const errorInfo = last_error(interp);
    Tcl_IncrRefCount(objv[0]);
    if (errorInfo) {
        Tcl_IncrRefCount(errorInfo);
    }
    Tcl_NRAddCallback(interp, after_sealed, objv[0], errorInfo, nullptr, nullptr);
    return TclNRInterpProc(proc, interp, objc, objv);
}

Command* find_proc(Tcl_Interp* interp, Tcl_Obj* name) {
    Tcl_Command found = Tcl_FindCommand(interp, Tcl_GetString(name), nullptr, 0);
    if (Tcl_Command const origin = found ? TclGetOriginalCommand(found) : nullptr) {
        found = origin;
    }
    Command* const command = reinterpret_cast<Command*>(found);
    return command && TclIsProc(command) ? command : nullptr;
}

bool is_sealed(Tcl_Interp* interp, Tcl_Obj* name) {
    const Command* const command = find_proc(interp, name);
    return command && command->nreProc == call_sealed;
}

int define_proc(ClientData data, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    const int code = Tcl_ProcObjCmd(data, interp, objc, objv);
    if (code == TCL_OK && in_encrypted_script()) {
        if (Command* const command = find_proc(interp, objv[1])) {
            command->nreProc = call_sealed;
        }
    }
    return code;
}

int info_body(ClientData data, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        if (objc == 2 && is_sealed(interp, objv[1])) {
            throw HEXError(
                {"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5414@%s\n", HTCTclEncoding::tclGetString(objv[1])});
        }
        return plainBody(data, interp, objc, objv);
    });
}

Tcl_Obj* find(Tcl_Obj* dict, const char* key) {
    const tclobj_ref name(Tcl_NewStringObj(key, -1));
    Tcl_Obj* value = nullptr;
    Tcl_DictObjGet(nullptr, dict, name.get(), &value);
    return value;
}

void put(Tcl_Obj* dict, const char* key, Tcl_Obj* value) {
    const tclobj_ref name(Tcl_NewStringObj(key, -1)); // a dict that has the key does not take it over
    Tcl_DictObjPut(nullptr, dict, name.get(), value);
}

bool is_hidden_frame(Tcl_Interp* interp, Tcl_Obj* frame) {
    if (Tcl_Obj* const proc = find(frame, "proc"); proc && is_sealed(interp, proc)) {
        return true;
    }
    if (Tcl_Obj* const file = find(frame, "file")) {
        return isl::iostreams::xp::is_encrypted(HTCTclEncoding::tclGetString(file).c_str());
    }
    return in_encrypted_script();
}

int info_frame(ClientData data, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        const int code = plainFrame(data, interp, objc, objv);
        const tclobj_ref frame(code == TCL_OK && objc == 2 ? Tcl_DuplicateObj(Tcl_GetObjResult(interp))
                                                           : nullptr);
        if (frame && find(frame.get(), "cmd") && is_hidden_frame(interp, frame.get())) {
            put(frame.get(), "cmd", Tcl_NewObj());
            Tcl_SetObjResult(interp, frame.get());
        }
        return code;
    });
}

// Puts `ours` in the place of what a command does, and gives what it did.
Tcl_ObjCmdProc* replace(Tcl_Interp* interp, const char* name, Tcl_ObjCmdProc* ours) {
    Command* const command =
        reinterpret_cast<Command*>(Tcl_FindCommand(interp, name, nullptr, TCL_GLOBAL_ONLY));
    if (!command || TclIsProc(command) || command->nreProc) {
        return nullptr; // a script has put a command of its own there
    }
    Tcl_ObjCmdProc* const theirs = command->objProc;
    command->objProc = ours;
    return theirs;
}

} // namespace

bool& in_encrypted_script() {
    static thread_local bool inside = false;
    return inside;
}

void seal_procs(Tcl_Interp* interp) {
    constexpr const char* done = "corvane sealed procs";
    if (Tcl_GetAssocData(interp, done, nullptr)) {
        return;
    }
    Tcl_SetAssocData(interp, done, nullptr, interp);
    const Command* const define =
        reinterpret_cast<Command*>(Tcl_FindCommand(interp, "::proc", nullptr, TCL_GLOBAL_ONLY));
    if (define && define->objProc == Tcl_ProcObjCmd) {
        replace(interp, "::proc", define_proc);
    }
    if (Tcl_ObjCmdProc* const body = replace(interp, "::tcl::info::body", info_body)) {
        plainBody = body;
    }
    if (Tcl_ObjCmdProc* const frame = replace(interp, "::tcl::info::frame", info_frame)) {
        plainFrame = frame;
    }
}

void hide_trace(Tcl_Interp* interp, Tcl_Obj* place) {
    const tclobj_ref where(place);
    const tclobj_ref result(Tcl_GetObjResult(interp));
    const tclobj_ref options(Tcl_GetReturnOptions(interp, TCL_ERROR));
    const tclobj_ref trace(
        Tcl_ObjPrintf("%s\n    %s", Tcl_GetString(result.get()), Tcl_GetString(where.get())));
    put(options.get(), "-errorinfo", trace.get());
    put(options.get(), "-errorstack", Tcl_NewObj());
    Tcl_SetReturnOptions(interp, options.get());
    reinterpret_cast<Interp*>(interp)->flags &= ~ERR_ALREADY_LOGGED; // the commands outside do belong to it
    Tcl_SetObjResult(interp, result.get());
    Tcl_SetVar2Ex(interp, "errorInfo", nullptr, trace.get(), TCL_GLOBAL_ONLY);
}

Tcl_Obj* last_error(Tcl_Interp* interp) {
    // Asked at each call of a sealed procedure, where Tcl_GetVar2Ex would make a variable to find that it has
    // no value. A trace that Tcl has not moved there yet is what reading the variable gives.
    Interp* const own = reinterpret_cast<Interp*>(interp);
    if (own->errorInfo) {
        return own->errorInfo;
    }
    const Var* const variable = TclVarHashFindVar(&own->globalNsPtr->varTable, "errorInfo");
    if (variable && !TclIsVarScalar(variable)) {
        return Tcl_GetVar2Ex(interp, "errorInfo", nullptr, TCL_GLOBAL_ONLY);
    }
    return variable ? variable->value.objPtr : nullptr;
}

void forget_last_error(Tcl_Interp* interp, int code, Tcl_Obj* errorInfo) {
    if (Tcl_InterpDeleted(interp) || last_error(interp) == errorInfo) {
        return;
    }
    const tclobj_ref result(Tcl_GetObjResult(interp));
    const tclobj_ref options(Tcl_GetReturnOptions(interp, code));
    hide_trace(interp, Tcl_NewObj());
    Tcl_ResetResult(interp);
    Tcl_SetReturnOptions(interp, options.get());
    Tcl_SetObjResult(interp, result.get());
    if (errorInfo) {
        Tcl_SetVar2Ex(interp, "errorInfo", nullptr, errorInfo, TCL_GLOBAL_ONLY);
    } else {
        Tcl_UnsetVar2(interp, "errorInfo", nullptr, TCL_GLOBAL_ONLY);
    }
}

} // namespace HTCBuiltin::detail
