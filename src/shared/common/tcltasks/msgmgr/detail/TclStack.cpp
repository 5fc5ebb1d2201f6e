#include "tcltasks/msgmgr/detail/TclStack.h"

#include <exception>
#include <string>

#include "platform/param/HPAParamMgr.h"
#include "platform/tcl/tclobj_ref.h"

namespace {

constexpr int all_messages = 4;
constexpr int without_files = 5;

/// Keeps what the command has left in the interpreter while scripts run in between.
class SavedState {
public:
    explicit SavedState(Tcl_Interp* interp)
        : m_interp(interp), m_state(Tcl_SaveInterpState(interp, TCL_OK)) {}
    ~SavedState() { Tcl_RestoreInterpState(m_interp, m_state); }
    SavedState(const SavedState&) = delete;
    SavedState& operator=(const SavedState&) = delete;

private:
    Tcl_Interp* m_interp;
    Tcl_InterpState m_state;
};

/// Evaluates where the sending command was called, since the calls that led there are the point.
int eval(Tcl_Interp* interp, const std::string& script) {
    return Tcl_EvalEx(interp, script.data(), static_cast<int>(script.size()), 0);
}

bool is_asked_for(int level, ComMsgMgr::MsgMask mask) {
    return level == all_messages || (level >= 1 && (mask & ComMsgMgr::MSGTYPE_ERROR)) ||
           (level >= 2 && (mask & ComMsgMgr::MSGTYPE_CRITICAL_WARNING)) ||
           (level >= 3 && (mask & ComMsgMgr::MSGTYPE_WARNING));
}

void tell_incomplete() {
    ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_STATUS, "@17-1944@");
}

void print_without_files(Tcl_Interp* interp) {
    eval(interp, R"(puts "Message from TCL proc: [info level 0] ")");
    eval(
        interp,
        R"(for {set i [expr {[info level] -1}]} {$i >0} {incr i -1} { puts "\tCalled by : [info level $i]   " })");
}

void print_with_files(Tcl_Interp* interp) {
    eval(interp, R"(puts "Message from TCL proc: [info level 0] In: [dict get [info frame -1] file]:)"
                 R"([dict get [info frame -1] line]" )");
    int calls = 0;
    if (eval(interp, "expr {[info level] -1}") != TCL_OK ||
        Tcl_GetIntFromObj(nullptr, Tcl_GetObjResult(interp), &calls) != TCL_OK) {
        tell_incomplete();
        return;
    }
    for (int i = calls; i >= 1; --i) {
        const std::string level = std::to_string(i), frame = std::to_string(i - calls - 2);
        std::string script = R"(puts "\tCalled by : [info level )";
        script.append(level).append(R"(]  In: [dict get [info frame )").append(frame);
        script.append(R"(] file]:[dict get [info frame )").append(frame).append(R"(] line]  " )");
        if (eval(interp, script) != TCL_OK) {
            tell_incomplete();
        }
    }
}

} // namespace

void HTCMsgmgr::showTclStack(Tcl_Interp* interp, ComMsgMgr::MsgMask mask) {
    try {
        static const HPAParam* const param = HPAParamMgr::getParamMgr().findParam("messaging.showTclStack");
        const int level = param ? param->int_value() : 0;
        if (level != without_files && !is_asked_for(level, mask)) {
            return;
        }
        const SavedState saved(interp);
        level == without_files ? print_without_files(interp) : print_with_files(interp);
    } catch (const std::exception&) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_STATUS, "@17-1945@");
    }
}
