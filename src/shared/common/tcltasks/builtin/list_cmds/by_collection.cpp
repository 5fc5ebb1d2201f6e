#include "tcltasks/builtin/list_cmds/by_collection.h"

#include <vector>

#include "platform/taskcore/collection_wrapper_base.h"
#include "platform/tcl/tcl_guard.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/builtin/HTCBuiltinUtils.h"

using namespace vek::tcltasks;
using HTCBuiltinUtils::call_plain;
using HTCBuiltinUtils::plain_command;

namespace {

/// Where the words of a call have the value that the command works on.
enum class place { first, last, variable };

struct replacement {
    const char* name;
    plain_command plain;
    place value;
    const char* procedure; // for a collection, in builtin.tcl
};

constexpr replacement replacements[] = {
    {"omu::lrange", plain_command::lrange, place::first, "::omu::lrange_of_collection"},
    {"omu::lreverse", plain_command::lreverse, place::first, "::omu::lreverse_of_collection"},
    {"omu::lreplace", plain_command::lreplace, place::first, "::omu::lreplace_of_collection"},
    {"omu::lset", plain_command::lset, place::variable, "::omu::lset_in_collection"},
    {"omu::lsort", plain_command::lsort, place::last, "::omu::lsort_of_collection"},
};

Tcl_Obj* value_of_call(Tcl_Interp* interp, place where, int objc, Tcl_Obj* const* objv) {
    if (objc < 2) {
        return nullptr;
    }
    switch (where) {
    case place::first:
        return objv[1];
    case place::last:
        return objv[objc - 1];
    case place::variable:
        // Without a new value there is nothing to do, and Tcl's own command says so in its words.
        return objc > 2 ? Tcl_ObjGetVar2(interp, objv[1], nullptr, 0) : nullptr;
    }
    return nullptr;
}

int list_command(ClientData row, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        const auto& command = *static_cast<const replacement*>(row);
        const Tcl_Obj* const value = value_of_call(interp, command.value, objc, objv);
        if (!value || !detail::get_collection(value)) {
            return call_plain(command.plain, interp, objc, objv);
        }
        const tclobj_ref procedure(Tcl_NewStringObj(command.procedure, -1));
        std::vector<Tcl_Obj*> words(objv, objv + objc);
        words[0] = procedure.get();
        return Tcl_EvalObjv(interp, objc, words.data(), 0);
    });
}

} // namespace

void HTCBuiltin::add_list_commands(Tcl_Interp* interp) {
    for (const replacement& row : replacements) {
        Tcl_CreateObjCommand(interp, row.name, list_command, const_cast<replacement*>(&row), nullptr);
    }
}
