#include "tcltasks/driver/detail/driver.h"

#include <filesystem>
#include <string>
#include <system_error>

#include "platform/env/HUTEnv.h"
#include "platform/env/HUTLogFileMgr.h"
#include "platform/env/HUTMemWatcher.h"
#include "platform/env/HUTProcHandlers.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "platform/msg/log_failures.h"
#include "platform/taskcore/task_manager.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/HTCTclUtils.h"
#include "tcltasks/driver/detail/session_events.h"
#include "tcltasks/driver/detail/version.h"

namespace driver {

namespace {

bool servicesRun = false; // from the first detail::init to uninit

void baseInit(bool quiet) {
    HUTProcHandlers::installHandlers();
    const HUTMemWatcher watch("Brookfen::BaseInit");
    // A home that cannot be written to is no reason to refuse the session; who needs the directory says so.
    std::error_code ignored;
    std::filesystem::create_directories(HUTEnv::getVEKAppDataDir(), ignored);
    if (!quiet) {
        HUTEnv::printHeader(true);
    }
    HUTEnv::maybeAdjustLocaleSetting();
    HUTGuiEvent::fire<detail::engine_start>();
}

} // namespace

bool isTclMode() {
    return HTCTclUtils::isTclMode();
}

bool isBatchMode() {
    return HTCTclUtils::isBatchMode();
}

bool isGuiMode() {
    return HTCTclUtils::isGuiMode();
}

bool isTclEventLoopRunning(bool set, bool running) {
    static bool state = false;
    if (set) {
        state = running;
    }
    return state;
}

void uninit(bool quiet) {
    if (!servicesRun) {
        return;
    }
    servicesRun = false;
    if (!quiet) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_STATUS, "@17-206@%s%s\n", HUTEnv::getProductName(),
                           HUTEnv::getTimeStamp());
    }
    HUTMemWatcher::genLogTotals();
    HUTGuiEvent::fire<detail::engine_stop>();
    HUTLogFileMgr::flush();
    com_msg_mgr::report_log_failures();
    HUTLogFileMgr::flush();
}

void uninit() {
    uninit(false);
}

namespace detail {

void init(bool regress, bool /*gui*/, bool quiet) {
    static bool begun = false;
    writeDateMessage(regress);
    if (!begun) {
        begun = servicesRun = true;
        baseInit(quiet);
    }
    HUTEnv::setRegressMode(regress);
}

void writeTclErrorMessage(Tcl_Interp* interp) {
    // An interrupt unwinds through whatever was running, which may leave words of its own.
    const std::string text = vek::tcltasks::task_manager::isTaskCanceled()
                                 ? HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5012@\n"}).what()
                                 : HTCTclEncoding::tclGetString(Tcl_GetObjResult(interp));
    Tcl_ResetResult(interp);
    if (!text.empty()) {
        vek::tcltasks::task_manager::write_error_result(text, 0);
    }
}

} // namespace detail
} // namespace driver
