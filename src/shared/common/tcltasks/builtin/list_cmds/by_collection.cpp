#include "tcltasks/builtin/list_cmds/by_collection.h"

#include <span>
#include <vector>

#include "platform/tcl/tcl_guard.h"
#include "tcltasks/builtin/HTCBuiltinUtils.h"
#include "tcltasks/builtin/list_cmds/list_task.h"

using namespace vek::tcltasks;
using HTCBuiltinUtils::call_plain;
using HTCBuiltinUtils::plain_command;

namespace {

using words = std::span<Tcl_Obj* const>;

// The code of a task on these words; a call that it has handed on leaves no result.
int run_task(Tcl_Interp* interp, const char* task, std::initializer_list<const char*> options,
             words arguments) {
    std::vector<tclobj_ref> call{Tcl_NewStringObj(task, -1)};
    call.insert(call.end(), arguments.begin(), arguments.end());
    size_t at = 1;
    for (const char* option : options) {
        call.insert(call.begin() + static_cast<long>(at++), tclobj_ref(Tcl_NewStringObj(option, -1)));
    }
    std::vector<Tcl_Obj*> objv;
    for (const tclobj_ref& word : call) {
        objv.push_back(word.get());
    }
    // Not as a call of the script: an error then tells of the command that the script wrote.
    const int code =
        Tcl_EvalObjv(interp, static_cast<int>(objv.size()), objv.data(), TCL_EVAL_GLOBAL | TCL_EVAL_INVOKE);
    if (code == not_a_collection || code == nothing_done) {
        Tcl_ResetResult(interp);
    }
    return code;
}

bool handed_on(int code) {
    return code == not_a_collection || code == nothing_done;
}

// Tcl's own command, with the list of its elements in place of the collection at `position`.
int call_plain_on_list(plain_command command, Tcl_Interp* interp, words call, size_t position) {
    const tclobj_ref list(detail::get_collection(call[position])->get_collection_as_tcllist());
    std::vector<Tcl_Obj*> objv(call.begin(), call.end());
    objv[position] = list.get();
    return call_plain(command, interp, static_cast<int>(objv.size()), objv.data());
}

// A command whose list stands at `position`, and the task for a call that the task may serve.
int on_value(plain_command command, const char* task, std::initializer_list<const char*> options,
             size_t position, bool served, Tcl_Interp* interp, words call) {
    if (position < 1 || position >= call.size() || !detail::get_collection(call[position])) {
        return call_plain(command, interp, static_cast<int>(call.size()), call.data());
    }
    const tclobj_ref held(call[position]);
    if (served) {
        const int code = run_task(interp, task, options, call.subspan(1));
        if (!handed_on(code)) {
            return code;
        }
    }
    return call_plain_on_list(command, interp, call, position);
}

int lrange(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        return on_value(plain_command::lrange, "::omu::col_lrange", {"--"}, 1, objc == 4, interp,
                        {objv, static_cast<size_t>(objc)});
    });
}

int lreverse(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        return on_value(plain_command::lreverse, "::omu::col_lreverse", {"-list"}, 1, objc == 2, interp,
                        {objv, static_cast<size_t>(objc)});
    });
}

int lreplace(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        return on_value(plain_command::lreplace, "::omu::col_lreplace", {"--"}, 1, objc >= 4, interp,
                        {objv, static_cast<size_t>(objc)});
    });
}

int lsort(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        const bool unique = objc == 3 && std::string_view(Tcl_GetString(objv[1])) == "-unique";
        return on_value(plain_command::lsort, "::omu::col_lsort", {}, static_cast<size_t>(objc - 1), unique,
                        interp, {objv, static_cast<size_t>(objc)});
    });
}

// The variable gets a collection of its own to change, unless nobody else holds the one it has.
int set_element(Tcl_Interp* interp, Tcl_Obj* const* objv, Tcl_Obj* current) {
    const tclobj_ref target(
        Tcl_IsShared(current) ? detail::get_tclobj(detail::get_collection(current)->clone()) : current);
    Tcl_Obj* const arguments[] = {target.get(), objv[2], objv[3]};
    const int code = run_task(interp, "::omu::col_lset", {"--"}, arguments);
    if (code != TCL_OK) {
        return code;
    }
    Tcl_Obj* const stored = Tcl_ObjSetVar2(interp, objv[1], nullptr, target.get(), TCL_LEAVE_ERR_MSG);
    if (!stored) {
        return TCL_ERROR;
    }
    Tcl_SetObjResult(interp, stored);
    return TCL_OK;
}

int lset(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        Tcl_Obj* const current = objc > 1 ? Tcl_ObjGetVar2(interp, objv[1], nullptr, 0) : nullptr;
        if (!current || !detail::get_collection(current)) {
            return call_plain(plain_command::lset, interp, objc, objv);
        }
        if (objc == 4) {
            const int code = set_element(interp, objv, current);
            if (!handed_on(code)) {
                return code;
            }
        }
        // Tcl's command changes the list in the variable; if it refuses, the collection comes back.
        const tclobj_ref held(current);
        const tclobj_ref list(Tcl_DuplicateObj(detail::get_collection(current)->get_collection_as_tcllist()));
        if (!Tcl_ObjSetVar2(interp, objv[1], nullptr, list.get(), TCL_LEAVE_ERR_MSG)) {
            return TCL_ERROR;
        }
        const int code = call_plain(plain_command::lset, interp, objc, objv);
        if (code != TCL_OK) {
            Tcl_ObjSetVar2(interp, objv[1], nullptr, held.get(), 0);
        }
        return code;
    });
}

struct replacement {
    const char* name;
    Tcl_ObjCmdProc* command;
    const char* tail;
};

constexpr replacement replacements[] = {
    {"omu::lrange", lrange, "lrange"},       {"omu::lreverse", lreverse, "lreverse"},
    {"omu::lreplace", lreplace, "lreplace"}, {"omu::lset", lset, "lset"},
    {"omu::lsort", lsort, "lsort"},
};

} // namespace

void HTCBuiltin::add_list_commands(Tcl_Interp* interp) {
    for (const replacement& r : replacements) {
        Tcl_CreateObjCommand(interp, r.name, r.command, const_cast<char*>(r.tail), nullptr);
    }
}
