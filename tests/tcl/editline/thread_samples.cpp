// Work of other threads for the tests of the prompt. `load libthread_samples.so Thread_samples` makes
//   samples::eval_later MS SCRIPT    evaluates a script from another thread after a while
//   samples::say_later MS TEXT       sends a message from another thread after a while
//   samples::flood COUNT             evaluates that many commands from another thread, one behind the other

#include <chrono>
#include <string>
#include <tcl.h>
#include <thread>

#include "platform/msg/ComMsgMgr.h"
#include "platform/taskcore/task_manager.h"

using vek::tcltasks::task_manager;

namespace {

template <class Work>
int later(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv, Work work) {
    int milliseconds = 0;
    if (objc != 3 || Tcl_GetIntFromObj(interp, objv[1], &milliseconds) != TCL_OK) {
        return TCL_ERROR;
    }
    std::thread([milliseconds, work, text = std::string(Tcl_GetString(objv[2]))] {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        work(text);
    }).detach();
    return TCL_OK;
}

int eval_later(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return later(interp, objc, objv,
                 [](const std::string& script) { task_manager::eval_in_tcl(script.c_str(), "", false); });
}

int say_later(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return later(interp, objc, objv, [](const std::string& text) {
        ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_INFO, text);
    });
}

int flood(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    int count = 0;
    if (objc != 2 || Tcl_GetIntFromObj(interp, objv[1], &count) != TCL_OK) {
        return TCL_ERROR;
    }
    std::thread([count] {
        for (int i = 0; i < count; ++i) {
            task_manager::eval_in_tcl("incr ::flooded", "", false);
        }
    }).detach();
    return TCL_OK;
}

} // namespace

extern "C" int Thread_samples_Init(Tcl_Interp* interp) {
    Tcl_CreateNamespace(interp, "::samples", nullptr, nullptr);
    Tcl_CreateObjCommand(interp, "::samples::eval_later", eval_later, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, "::samples::say_later", say_later, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, "::samples::flood", flood, nullptr, nullptr);
    return TCL_OK;
}
