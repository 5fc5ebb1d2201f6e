// The host program: makes the interpreter on a thread with the stack that the command line asks for, loads
// the command layer, starts the session and runs its shell.

#include <charconv>
#include <cstdio>
#include <cstring>
#include <pthread.h>
#include <string>
#include <string_view>
#include <system_error>
#include <tcl.h>
#include <vector>

#include "Shell.h"
#include "platform/env/HUTEnv.h"
#include "platform/env/HUTProcHandlers.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "platform/taskcore/task_manager.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/tcl_guard.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/core/Omu_commontasks.h"

namespace {

using vek::tcltasks::tclobj_ref;

constexpr int defaultStackMB = 20;
constexpr int maxStackMB = 4096;

std::vector<std::string> commandLine; // set before the interpreter's thread starts

void complain(const std::string& text) {
    std::fprintf(stderr, "%s\n", text.c_str());
}

// The stack in MB that the command line asks for. What is no number at all is left to the session, which
// refuses it together with the other options; 0 stands for a number that cannot be had.
int stackMB() {
    int size = defaultStackMB;
    for (size_t i = 1; i + 1 < commandLine.size() && commandLine[i] != "-tclargs"; ++i) {
        if (commandLine[i].size() < 3 || !std::string_view("-stack").starts_with(commandLine[i])) {
            continue; // -s could be another option
        }
        const std::string& text = commandLine[i + 1];
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), size);
        if (error == std::errc::result_out_of_range || size < 1 || size > maxStackMB) {
            complain(
                ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5253@%s%d\n", text, maxStackMB)
                    .line());
            return 0;
        }
        if (error != std::errc() || *end != '\0') {
            return defaultStackMB;
        }
    }
    return size;
}

std::string resultText(Tcl_Interp* interp) {
    return HTCTclEncoding::tclGetString(Tcl_GetObjResult(interp));
}

bool hasMode(Tcl_Interp* interp, const char* mode) {
    const char* current = Tcl_GetVar2(interp, "::omu::mode", nullptr, TCL_GLOBAL_ONLY);
    return current && (!mode || std::strcmp(current, mode) == 0);
}

int startSession(Tcl_Interp* interp) {
    const tclobj_ref command(Tcl_NewListObj(0, nullptr));
    Tcl_ListObjAppendElement(nullptr, command.get(), Tcl_NewStringObj("omu::main", -1));
    for (size_t i = 1; i < commandLine.size(); ++i) {
        Tcl_ListObjAppendElement(nullptr, command.get(), HTCTclEncoding::tclNewStringObj(commandLine[i]));
    }
    return Tcl_EvalObjEx(interp, command.get(), TCL_EVAL_GLOBAL);
}

// An error that ends an event handler; scripts may define a bgerror of their own.
int reportBackgroundError(ClientData, Tcl_Interp* interp, int, Tcl_Obj* const*) {
    return vek::tcltasks::tcl_guard(interp, [&] {
        Tcl_Obj* info = Tcl_GetVar2Ex(interp, "errorInfo", nullptr, TCL_GLOBAL_ONLY);
        if (info) {
            vek::tcltasks::task_manager::write_error_result(HTCTclEncoding::tclGetString(info), 0);
        }
        return TCL_OK;
    });
}

// Runs a session from start to end and returns the exit status of the process.
int runSession() {
    Tcl_Interp* interp = Tcl_CreateInterp();
    Tcl_SetVar2(interp, "argv0", nullptr, commandLine.front().c_str(), TCL_GLOBAL_ONLY);
    Tcl_SetVar2(interp, "argv", nullptr, "", TCL_GLOBAL_ONLY);
    Tcl_SetVar2(interp, "argc", nullptr, "0", TCL_GLOBAL_ONLY);
    Tcl_SetVar2(interp, "tcl_interactive", nullptr, "0", TCL_GLOBAL_ONLY);
    if (Tcl_Init(interp) != TCL_OK || Omu_commontasks_Init(interp) != TCL_OK) {
        complain(resultText(interp));
        return 1;
    }
    Tcl_CreateObjCommand(interp, "::bgerror", reportBackgroundError, nullptr, nullptr);
    const int code = startSession(interp);
    if (!hasMode(interp, nullptr)) {
        // There is no session: the command line was refused, or only asked for help.
        if (code != TCL_OK) {
            complain(resultText(interp));
        }
        return code == TCL_OK ? 0 : 1;
    }
    if (code != TCL_OK) {
        vek::tcltasks::task_manager::write_error_result(resultText(interp), 0);
        return 1;
    }
    if (hasMode(interp, "py")) {
        const HEXError failure(
            {"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5252@%s\n", HUTEnv::getProgramName()});
        failure.print();
        return 1;
    }
    Shell(interp).run();
    return 0;
}

void* interpreterThread(void*) {
    HUTProcHandlers::installAltStack();
    Tcl_Exit(runSession());
    return nullptr;
}

} // namespace

int main(int argc, char** argv) {
    commandLine.assign(argv, argv + argc);
    if (commandLine.empty()) {
        commandLine.push_back("corvane");
    }
    HUTEnv::setCmdline(commandLine);
    Tcl_FindExecutable(commandLine.front().c_str());

    const int megabytes = stackMB();
    if (megabytes == 0) {
        return 1;
    }
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, static_cast<size_t>(megabytes) << 20);
    pthread_t thread;
    if (const int error = pthread_create(&thread, &attributes, interpreterThread, nullptr); error != 0) {
        complain(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5254@%d%s\n", megabytes,
                                   std::generic_category().message(error))
                     .line());
        return 1;
    }
    pthread_join(thread, nullptr);
    return 0;
}
