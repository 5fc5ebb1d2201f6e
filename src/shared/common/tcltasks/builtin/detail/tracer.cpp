#include "tcltasks/builtin/detail/tracer.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/msg/ComMsgMgr.h"
#include "platform/param/HPAParamMgr.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/tcl_guard.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/builtin/detail/translated.h"

namespace HTCBuiltin::detail {

using vek::tcltasks::tclobj_ref;

namespace {

// The number of frames on the interpreter's stack, with one for this question itself. Nothing if it cannot be
// told.
std::optional<int> frame_depth(Tcl_Interp* interp) {
    int depth = 0;
    if (Tcl_Eval(interp, "::info frame") == TCL_OK &&
        Tcl_GetIntFromObj(nullptr, Tcl_GetObjResult(interp), &depth) == TCL_OK) {
        return depth;
    }
    return std::nullopt;
}

// The same from the procedure behind the command, which sees one frame less since nothing is evaluated for
// it.
std::optional<int> frame_depth(Tcl_Interp* interp, Tcl_ObjCmdProc* direct) {
    if (!direct) {
        return frame_depth(interp);
    }
    static const tclobj_ref& name = *new tclobj_ref(Tcl_NewStringObj("::info frame", -1));
    Tcl_Obj* const words[] = {name.get()};
    int depth = 0;
    if (direct(nullptr, interp, 1, words) == TCL_OK &&
        Tcl_GetIntFromObj(nullptr, Tcl_GetObjResult(interp), &depth) == TCL_OK) {
        return depth + 1;
    }
    return std::nullopt;
}

// The procedure behind `info frame`, for a trace that asks at each command; null if it does not tell the
// depth that the command has just told.
Tcl_ObjCmdProc* direct_frame_question(Tcl_Interp* interp, int depth) {
    Tcl_CmdInfo info;
    if (!Tcl_GetCommandInfo(interp, "::tcl::info::frame", &info) || !info.isNativeObjectProc ||
        info.objClientData || frame_depth(interp, info.objProc) != depth) {
        return nullptr;
    }
    return info.objProc;
}

// Tcl counts evaluations apart from frames. Finds out which evaluation level a command run from here has.
int evaluation_level(Tcl_Interp* interp) {
    int level = 0;
    const auto note = [](ClientData found, Tcl_Interp*, int at, const char*, Tcl_Command, int,
                         Tcl_Obj* const*) {
        if (int& level = *static_cast<int*>(found); level == 0) {
            level = at; // what the command runs in turn lies deeper
        }
        return TCL_OK;
    };
    const Tcl_Trace probe =
        Tcl_CreateObjTrace(interp, 0, TCL_ALLOW_INLINE_COMPILATION, note, &level, nullptr);
    frame_depth(interp);
    Tcl_DeleteTrace(interp, probe);
    return level;
}

bool is_unknown(Tcl_Interp* interp, Tcl_Command command) {
    static const tclobj_ref& name = *new tclobj_ref(Tcl_NewStringObj("::unknown", -1));
    static const Tcl_Command unknown = Tcl_GetCommandFromObj(interp, name.get());
    return command == unknown;
}

bool is_name_character(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ',';
}

size_t name_end(std::string_view text, size_t at) {
    while (at < text.size() && is_name_character(text[at])) {
        ++at;
    }
    return at;
}

// What a command with a translation is called: "vek::NAME" and its subcommand, as one finds them with
// (vek::[a-z,A-Z,0-9]+)[ \t]*([a-z,A-Z,0-9]+), else the first word of letters, digits and underscores.
std::pair<std::string, std::string> translated_name(std::string_view text) {
    constexpr std::string_view space = "vek::";
    for (size_t at = text.find(space); at != text.npos; at = text.find(space, at + 1)) {
        const size_t first = at + space.size();
        const size_t behind = name_end(text, first);
        const size_t next = std::min(text.find_first_not_of(" \t", behind), text.size());
        if (behind > first && next < text.size() && is_name_character(text[next])) {
            return {std::string(text.substr(at, behind - at)),
                    std::string(text.substr(next, name_end(text, next) - next))};
        }
        if (behind > first + 1) {
            // Nothing follows: the pattern takes the name's last letter for the subcommand.
            return {std::string(text.substr(at, behind - 1 - at)), std::string(1, text[behind - 1])};
        }
    }
    const auto in_word = [](char c) { return is_name_character(c) || c == '_'; };
    const auto first = std::find_if(text.begin(), text.end(), in_word);
    return {std::string(first, std::find_if_not(first, text.end(), in_word)), ""};
}

// Tells that the script uses a command which is carried out by another.
void report_translation(const std::string& text) {
    static bool first_msg = true, first_vek_msg = true;

    auto [name, sub] = translated_name(text);
    if (!sub.empty()) {
        name += ' ';
    }
    const bool vek = name.starts_with("vek::");
    const auto warning = ComMsgMgr::MSGTYPE_WARNING;
    if (vek && first_vek_msg) {
        ComMsgMgr::sendMsg("common", warning, "@17-720@");
        first_vek_msg = false;
    } else if (!vek && first_msg) {
        ComMsgMgr::sendMsg("common", warning, "@17-721@");
        first_msg = false;
    }
    if (vek) {
        ComMsgMgr::sendMsg("common", warning, "@17-719@%s", name + sub);
    } else {
        ComMsgMgr::sendMsg("common", warning, "@17-718@%s", name + sub);
    }
}

void report_command(Tcl_Interp* interp, int level, const char* command, Tcl_Command token) {
    tracer_state& state = tracer();
    level -= state.depth.frameless;
    if (level == state.depth.level + 1 && !state.traceAll && !is_unknown(interp, token)) {
        return;
    }
    std::string text = HTCTclEncoding::fromTcl(command);
    constexpr std::string_view prefix = "::unknown ";
    if (text.starts_with(prefix)) {
        text.erase(0, prefix.size());
    }
    const int frame = frame_depth(interp, state.frameQuestion).value_or(0);
    state.writeCmdText = false;
    if (level + 1 < frame && !state.traceAll) {
        return;
    }
    if (!command_has_translation(text)) {
        ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_TRACED_COMMAND,
                                 format_command(state.indentLevel, text));
        return;
    }
    report_translation(text);
    state.writeCmdText = true;
}

void start_trace(Tcl_Interp* interp);
void stop_trace(Tcl_Interp* interp);

int end_rest(ClientData*, Tcl_Interp* interp, int code) {
    tracer_state& state = tracer();
    state.resting = false;
    if (state.depth.level > 0 && !state.trace && !Tcl_InterpDeleted(interp)) {
        start_trace(interp);
    }
    return code;
}

// Lets the trace rest until the command that it has just seen is done. Under any trace Tcl makes a text of
// each command that it calls, which would slow down the procedures that a script uses: the trace is taken
// away, unless it forbids inline compilation, when to bring it back has Tcl compile all procedures again.
void rest(Tcl_Interp* interp) {
    tracer_state& state = tracer();
    state.resting = true;
    if (state.inlined) {
        stop_trace(interp);
    }
    Tcl_NRAddCallback(interp, end_rest, nullptr, nullptr, nullptr, nullptr);
}

int trace_commands(ClientData, Tcl_Interp* interp, int level, const char* command, Tcl_Command token, int,
                   Tcl_Obj* const*) {
    const tracer_state& state = tracer();
    if (state.resting) {
        return TCL_OK;
    }
    if (level <= state.depth.level + state.depth.frameless + 1) {
        vek::tcltasks::tcl_guard(nullptr, [&] {
            report_command(interp, level, command, token);
            return TCL_OK;
        });
    }
    if (!state.traceAll) {
        rest(interp);
    }
    return TCL_OK;
}

// The trace sees the first command of any depth, to rest for what is nested deep in brackets too.
void start_trace(Tcl_Interp* interp) {
    tracer_state& state = tracer();
    const int deepest = state.depth.level + state.depth.frameless + 1;
    state.trace = Tcl_CreateObjTrace(interp, state.traceAll ? deepest : 0,
                                     state.inlined ? TCL_ALLOW_INLINE_COMPILATION : 0, trace_commands,
                                     nullptr, nullptr);
}

void stop_trace(Tcl_Interp* interp) {
    if (const Tcl_Trace trace = std::exchange(tracer().trace, nullptr)) {
        Tcl_DeleteTrace(interp, trace);
    }
}

} // namespace

tracer_state& tracer() {
    static tracer_state& state = *new tracer_state;
    return state;
}

void push_tracer(Tcl_Interp* interp) {
    tracer_state& state = tracer();
    if (state.depth.level > 0) {
        stop_trace(interp);
        state.outer.push_back(state.depth);
    }
    if (const std::optional<int> frames = frame_depth(interp)) {
        state.depth = {*frames, evaluation_level(interp) - *frames};
        state.frameQuestion = direct_frame_question(interp, *frames);
    }
    Tcl_ResetResult(interp);
    ++state.indentLevel;
    state.resting = false;
    state.inlined = HPAParamMgr::getParamMgr().getValueAsBool("tcl.allowInlineCompilation");
    start_trace(interp);
}

void pop_tracer(Tcl_Interp* interp) {
    tracer_state& state = tracer();
    if (state.depth.level == 0) {
        return;
    }
    --state.indentLevel;
    stop_trace(interp);
    if (state.outer.empty()) {
        state.depth = {};
        state.resting = false;
        return;
    }
    state.depth = state.outer.back();
    state.outer.pop_back();
    state.inlined = HPAParamMgr::getParamMgr().getValueAsBool("tcl.allowInlineCompilation");
    // The command that sourced the inner file is not done.
    state.resting = !state.traceAll;
    if (!state.resting || !state.inlined) {
        start_trace(interp);
    }
}

std::string format_command(int indent, const std::string& text) {
    const std::string prefix = indent > 0 ? std::string(static_cast<size_t>(indent), '#') + ' ' : "";
    std::string formatted = prefix;
    formatted.reserve(text.size() + prefix.size() + 1);
    size_t line = 0;
    for (size_t end; (end = text.find('\n', line) + 1) > 0 && end < text.size(); line = end) {
        formatted.append(text, line, end - line) += prefix;
    }
    formatted.append(text, line);
    if (formatted.empty() || formatted.back() != '\n') {
        formatted += '\n';
    }
    return formatted;
}

} // namespace HTCBuiltin::detail
