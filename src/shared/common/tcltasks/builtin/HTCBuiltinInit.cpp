#include "tcltasks/builtin/HTCBuiltinInit.h"

#include "platform/tcl/HTCTclUtils.h"
#include "tcltasks/builtin/HTCBuiltinCmds.h"
#include "tcltasks/core/task.h"

using vek::tcltasks::task_entry;

namespace source {
extern const task_entry entry;
}
namespace echo {
extern const task_entry entry;
}
namespace command_translated {
extern const task_entry entry;
}
namespace create_slave {
extern const task_entry entry;
}
namespace delete_slave {
extern const task_entry entry;
}
namespace create_script_key {
extern const task_entry entry;
}
namespace encrypt_script {
extern const task_entry entry;
}
namespace register_slave_tasks {
extern const task_entry entry;
}

namespace HTCBuiltinInit {

namespace {

const task_entry* const source_tasks[] = {
    &source::entry,
    &echo::entry,
    &command_translated::entry,
};

const task_entry* const script_tasks[] = {
    &create_script_key::entry,
    &encrypt_script::entry,
};

const task_entry* const slave_tasks[] = {
    &create_slave::entry,
    &delete_slave::entry,
    &register_slave_tasks::entry,
};

// The client data of each command is the name of the command that it stands beside; its own where it stands
// beside none.
void add(Tcl_Interp* interp, const char* name, Tcl_ObjCmdProc* command, const char* tail) {
    Tcl_CreateObjCommand(interp, name, command, const_cast<char*>(tail), nullptr);
}

void add(Tcl_Interp* interp, const char* name, Tcl_ObjCmdProc* command, Tcl_ObjCmdProc* withoutRecursion,
         const char* tail) {
    Tcl_NRCreateCommand(interp, name, command, withoutRecursion, const_cast<char*>(tail), nullptr);
}

} // namespace

void source_cmds::init(Tcl_Interp* interp) {
    add_tasks(source_tasks, interp);
}

void source_cmds::uninit() {
    remove_tasks(source_tasks);
}

void HTCCatch::init(Tcl_Interp* interp) {
    add(interp, "omu::catch", Omu_CatchObjCmd, Omu_CatchNRCmd, "catch");
    add(interp, "omu::is_in_catch", Omu_IsInCatchCmd, "is_in_catch");
    HTCTclUtils::setCatchQuery(Omu_IsInCatch);
}

void HTCOmuSubst::init(Tcl_Interp* interp) {
    add(interp, "omu::tdcsubst", Omu_SubstObjCmd, "omu::tdcsubst");
}

void HTCForeach::init(Tcl_Interp* interp) {
    add(interp, "omu::foreach", Omu_ForeachObjCmd, Omu_ForeachNRCmd, "foreach");
}

void HTCAlias::init(Tcl_Interp* interp) {
    add(interp, "omu::alias", Omu_AliasObjCmd, Omu_AliasNRCmd, "omu::alias");
}

void HTCJoin::init(Tcl_Interp* interp) {
    add(interp, "omu::join", Omu_JoinObjCmd, "join");
}

void HTCLappend::init(Tcl_Interp* interp) {
    add(interp, "omu::lappend", Omu_LappendObjCmd, "lappend");
}

void HTCLindex::init(Tcl_Interp* interp) {
    add(interp, "omu::lindex", Omu_LindexObjCmd, "lindex");
}

void HTCLlength::init(Tcl_Interp* interp) {
    add(interp, "omu::llength", Omu_LlengthObjCmd, "llength");
}

void HTCLsearch::init(Tcl_Interp* interp) {
    add(interp, "omu::lsearch", Omu_LsearchObjCmd, "lsearch");
}

void HTCSlave::init(Tcl_Interp* interp) {
    add_tasks(slave_tasks, interp);
}

void HTCSlave::uninit() {
    remove_tasks(slave_tasks);
}

void HTCShell::init(Tcl_Interp* interp) {
    add(interp, "omu::warn_if_shell_cmd", Omu_WarnIfShellObjCmd, "warn_if_shell_cmd");
}

void HTCLoad::init(Tcl_Interp* interp) {
    add(interp, "omu::load", Omu_LoadObjCmd, "load");
}

void HTCSubst::init(Tcl_Interp* interp) {
    add(interp, "omu::subst", Omu_SubstModifyObjCmd, Omu_SubstModifyNRCmd, "omu::subst");
}

void script_cmds::init(Tcl_Interp* interp) {
    add_tasks(script_tasks, interp);
}

void script_cmds::uninit() {
    remove_tasks(script_tasks);
}

} // namespace HTCBuiltinInit
