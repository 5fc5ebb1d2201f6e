#include "tcltasks/builtin/editline/evaluate.h"

#include "platform/msg/ComMsgMgr.h"
#include "platform/taskcore/task_manager.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/driver/detail/RunMode.h"
#include "tcltasks/driver/detail/driver.h"

using vek::tcltasks::task_manager;
using vek::tcltasks::tclobj_ref;

namespace HTCLibEdit::detail {

namespace {

void add_newline(Tcl_Channel channel, Tcl_Obj* value) {
    if (!value) {
        return;
    }
    int length = 0;
    const char* text = Tcl_GetStringFromObj(value, &length);
    if (length > 0 && text[length - 1] != '\n') {
        Tcl_WriteChars(channel, "\n", 1);
    }
}

void write(int standardChannel, Tcl_Obj* text) {
    int length = 0;
    Tcl_GetStringFromObj(text, &length);
    Tcl_Channel channel = Tcl_GetStdChannel(standardChannel);
    if (channel && length > 0) {
        Tcl_WriteObj(channel, text);
        add_newline(channel, text);
    }
}

bool in_session() {
    return RunMode::sMode != RunMode::no_mode;
}

} // namespace

int evaluate(Tcl_Interp* interp, Tcl_Obj* command) {
    const task_manager::top_level scope(HTCTclEncoding::tclGetString(command));
    return Tcl_RecordAndEvalObj(interp, command, TCL_EVAL_GLOBAL);
}

void show(Tcl_Interp* interp, int code, bool results) {
    const tclobj_ref result(Tcl_GetObjResult(interp));
    if (code != TCL_OK) {
        if (in_session()) {
            driver::detail::writeTclErrorMessage(interp);
        } else {
            write(TCL_STDERR, result.get());
        }
    } else if (results) {
        if (!in_session()) {
            write(TCL_STDOUT, result.get());
        } else if (const std::string text = HTCTclEncoding::tclGetString(result.get()); !text.empty()) {
            ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_LINE, text);
        }
    }
}

} // namespace HTCLibEdit::detail
