#include "tcltasks/core/Omu_commontasks.h"

#include "platform/env/HUTEnv.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/param/HPAParamMgr.h"
#include "platform/tcl/HTCTclChannel.h"
#include "platform/tcl/HTCTclInit.h"
#include "platform/tcl/HTCTclInterp.h"
#include "platform/tcl/tcl_guard.h"
#include "platform/tcl/tclcmdobj.h"
#include "tcltasks/builtin/HTCBuiltinInit.h"
#include "tcltasks/builtin/HTCLocaleInit.h"
#include "tcltasks/builtin/completion/HTCInfoCommands.h"
#include "tcltasks/builtin/completion/HTCMatchOptions.h"
#include "tcltasks/builtin/editline/HTCLibEdit.h"
#include "tcltasks/builtin/history/history_cmds.h"
#include "tcltasks/builtin/list_cmds/list_cmds.h"
#include "tcltasks/command/HTCCommandInit.h"
#include "tcltasks/driver/HTCDriverInit.h"
#include "tcltasks/help/HTCHelpInit.h"
#include "tcltasks/msgmgr/HTCMsgmgrInit.h"
#include "tcltasks/param/HTCParamInit.h"
#include "tcltasks/property/HTCPropertyInit.h"
#include "tcltasks/utils/HTCUtilsInit.h"

namespace {

bool Omu_commontasks_Init_done = false;

struct unit {
    void (*init)(Tcl_Interp*); // null: a step of the teardown only
    void (*uninit)();          // null: nothing to take down
};

// The order in which units come up is also the order in which they go: the teardown walks forward.
const unit units[] = {
    {HTCBuiltinInit::history_cmds::init, HTCBuiltinInit::history_cmds::uninit},
    {HTCBuiltinInit::list_cmds::init, HTCBuiltinInit::list_cmds::uninit},
    {HTCBuiltinInit::source_cmds::init, HTCBuiltinInit::source_cmds::uninit},
    {HTCBuiltinInit::HTCCatch::init, HTCBuiltinInit::HTCCatch::uninit},
    {HTCBuiltinInit::HTCOmuSubst::init, HTCBuiltinInit::HTCOmuSubst::uninit},
    {HTCBuiltinInit::HTCForeach::init, HTCBuiltinInit::HTCForeach::uninit},
    {HTCBuiltinInit::HTCAlias::init, HTCBuiltinInit::HTCAlias::uninit},
    {HTCBuiltinInit::HTCJoin::init, HTCBuiltinInit::HTCJoin::uninit},
    {HTCBuiltinInit::HTCLappend::init, HTCBuiltinInit::HTCLappend::uninit},
    {HTCBuiltinInit::HTCLindex::init, HTCBuiltinInit::HTCLindex::uninit},
    {HTCBuiltinInit::HTCLlength::init, HTCBuiltinInit::HTCLlength::uninit},
    {HTCBuiltinInit::HTCLsearch::init, HTCBuiltinInit::HTCLsearch::uninit},
    {HTCBuiltinInit::HTCSlave::init, HTCBuiltinInit::HTCSlave::uninit},
    {HTCBuiltinInit::HTCShell::init, HTCBuiltinInit::HTCShell::uninit},
    {HTCBuiltinInit::HTCLoad::init, HTCBuiltinInit::HTCLoad::uninit},
    {HTCBuiltinInit::HTCSubst::init, HTCBuiltinInit::HTCSubst::uninit},
    {HTCBuiltinInit::script_cmds::init, HTCBuiltinInit::script_cmds::uninit},
    {HTCCommandInit::command_cmds::init, HTCCommandInit::command_cmds::uninit},
    {HTCDriverInit::HTCDriver::init, HTCDriverInit::HTCDriver::uninit},
    {HTCHelpInit::init, HTCHelpInit::uninit},
    {HTCLibEditInit::HTCLibEdit::init, HTCLibEditInit::HTCLibEdit::uninit},
    {HTCLibEditInit::HTCMatchOptions::init, HTCLibEditInit::HTCMatchOptions::uninit},
    {HTCLibEditInit::HTCInfoCommands::init, HTCLibEditInit::HTCInfoCommands::uninit},
    {HTCParamInit::param_cmds::init, HTCParamInit::param_cmds::uninit},
    {HTCParamInit::HTCResetParam::init, HTCParamInit::HTCResetParam::uninit},
    {HTCPropertyInit::get_cmds::init, HTCPropertyInit::get_cmds::uninit},
    {HTCPropertyInit::set_cmds::init, HTCPropertyInit::set_cmds::uninit},
    {HTCPropertyInit::reset_cmds::init, HTCPropertyInit::reset_cmds::uninit},
    {HTCPropertyInit::report_cmds::init, HTCPropertyInit::report_cmds::uninit},
    {HTCPropertyInit::list_cmds::init, HTCPropertyInit::list_cmds::uninit},
    {HTCPropertyInit::create_cmds::init, HTCPropertyInit::create_cmds::uninit},
    {HTCPropertyInit::delete_cmds::init, HTCPropertyInit::delete_cmds::uninit},
    {HTCPropertyInit::HTCPListPropertyValue::init, HTCPropertyInit::HTCPListPropertyValue::uninit},
    {HTCPropertyInit::HTCPGetAttrSpecs::init, HTCPropertyInit::HTCPGetAttrSpecs::uninit},
    {HTCMsgmgrInit::HTCMsgmgr::init, HTCMsgmgrInit::HTCMsgmgr::uninit},
    {HTCLocaleInit::HTCCurrentLocale::init, HTCLocaleInit::HTCCurrentLocale::uninit},
    {HTCUtilsInit::HTCUtils::init, HTCUtilsInit::HTCUtils::uninit},
    {HTCUtilsInit::HTCCheckEnv::init, HTCUtilsInit::HTCCheckEnv::uninit},
    {HTCUtilsInit::HTCLoadFeature::init, HTCUtilsInit::HTCLoadFeature::uninit},
    {HTCUtilsInit::HTCRegisterTask::init, HTCUtilsInit::HTCRegisterTask::uninit},
    {nullptr, ComMsgMgr::uninit},
    {nullptr, HTCTclInit::uninit},
};

void uninit(void*) {
    vek::tcltasks::tcl_guard(nullptr, [] {
        for (const unit& u : units) {
            if (u.uninit) {
                u.uninit();
            }
        }
        return TCL_OK;
    });
}

int source_startup_script(Tcl_Interp* interp) {
    const std::string root = HUTEnv::getOMUAppRoot("scripts/builtin.tcl");
    return vek::tcltasks::tclcmdobj(interp, "source").append(root + "/scripts/builtin.tcl").eval();
}

int load(Tcl_Interp* interp) {
    HTCTclInterp::registerInterp(interp);
    for (const unit& u : units) {
        if (u.init) {
            u.init(interp);
        }
    }
    if (!HPAParamMgr::getParamMgr().getValueAsBool("tcl.launchTclThread")) {
        if (const int code = source_startup_script(interp); code != TCL_OK) {
            return code;
        }
    }
    Tcl_Namespace* common = Tcl_FindNamespace(interp, "::common", nullptr, TCL_GLOBAL_ONLY);
    if (!common) {
        common = Tcl_CreateNamespace(interp, "::common", nullptr, nullptr);
    }
    if (const int code = Tcl_Export(interp, common, "*", 0); code != TCL_OK) {
        return code;
    }
    return Tcl_PkgProvideEx(interp, "omu::commontasks", HUTEnv::getTclPackageVersion().c_str(), nullptr);
}

} // namespace

int Omu_commontasks_Init(Tcl_Interp* interp) {
    if (!Omu_commontasks_Init_done) {
        Tcl_CreateExitHandler(uninit, nullptr);
        HTCTclChannel::forwardMsg2Stdout();
        Omu_commontasks_Init_done = true;
    }
    return vek::tcltasks::tcl_guard(interp, [&] { return load(interp); });
}

int Zq_commontasks_Init(Tcl_Interp* interp) {
    return Omu_commontasks_Init(interp);
}
