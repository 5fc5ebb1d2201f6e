#include "tcltasks/builtin/detail/journal.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "platform/msg/ComMsgMgr.h"
#include "platform/tcl/HTCHistory.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "tcltasks/builtin/detail/translated.h"

namespace HTCBuiltin::detail {

namespace {

constexpr std::string_view blanks = " \t\r\v\f";

// The newest event, while it stands for an earlier one that is still to be found.
struct awaited_event {
    int id = 0;       // 0 for none
    std::string rest; // the commands behind it that were typed with it
};

awaited_event& awaited() {
    static awaited_event& the_event = *new awaited_event;
    return the_event;
}

std::string_view next_word(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(blanks));
    text.remove_prefix(word.size());
    return word;
}

bool is_command(Tcl_Interp* interp, const std::string& name) {
    return Tcl_FindCommand(interp, name.c_str(), nullptr, TCL_GLOBAL_ONLY) != nullptr;
}

// Whether Tcl thinks that it speaks to a person, whose unknown commands it then tries to make sense of.
bool is_interactive(Tcl_Interp* interp) {
    int interactive = 0;
    Tcl_Obj* value = Tcl_GetVar2Ex(interp, "tcl_interactive", nullptr, TCL_GLOBAL_ONLY);
    return value && Tcl_GetBooleanFromObj(nullptr, value, &interactive) == TCL_OK && interactive;
}

// Whether Tcl looks for the command among the events: the forms that its procedure unknown has for the
// prompt, and "history redo".
bool stands_for_event(Tcl_Interp* interp, std::string_view command) {
    command = command.substr(0, command.find_first_of(";\n"));
    const std::string name(next_word(command));
    if (name == "history") {
        const std::string_view operation = next_word(command);
        return !operation.empty() && std::string_view("redo").starts_with(operation);
    }
    return name.size() > 1 && (name[0] == '!' || name[0] == '^') && !is_command(interp, name) &&
           is_interactive(interp);
}

// The command in the words that any session understands. At the prompt only, Tcl runs a program of the system
// by its bare name, and takes the beginning of a name for it where it can neither load nor run what is named.
std::string in_full(Tcl_Interp* interp, const std::string& command) {
    std::string_view behind = command;
    const std::string name(next_word(behind));
    const auto in_name = [](unsigned char c) {
        return std::isalnum(c) || std::string_view("_:./+-").find(c) != std::string_view::npos;
    };
    if (name.empty() || !std::all_of(name.begin(), name.end(), in_name) || is_command(interp, name) ||
        !is_interactive(interp)) {
        return command;
    }
    const std::string question =
        "::apply {{name} {if {[auto_load $name]} return\n"
        "if {![info exists ::auto_noexec] && [auto_execok $name] ne {}} {return \"exec >&@stdout $name\"}\n"
        "set found [info commands $name*]\n"
        "if {[llength $found] == 1} {lindex $found 0}}} " +
        name;
    std::string full;
    if (Tcl_EvalEx(interp, question.data(), static_cast<int>(question.size()), TCL_EVAL_GLOBAL) == TCL_OK) {
        full = HTCTclEncoding::tclGetString(Tcl_GetObjResult(interp));
    }
    Tcl_ResetResult(interp);
    return full.empty() ? command : full + std::string(behind);
}

void send(Tcl_Interp* interp, const std::string& typed) {
    const std::string command = in_full(interp, typed);
    if (command.starts_with("omu::") || command_has_translation(command)) {
        return;
    }
    // An exit shows that the session ends, but a journal that is replayed goes on.
    const bool ends = command == "exit" || command.starts_with("exit ");
    ComMsgMgr::sendMsgString("common", ends ? ComMsgMgr::MSGTYPE_STATUS : ComMsgMgr::MSGTYPE_USER_COMMAND,
                             command + "\n");
}

} // namespace

void journal_command(Tcl_Interp* interp, const std::string& command) {
    awaited() = {};
    if (!stands_for_event(interp, command)) {
        send(interp, command);
        return;
    }
    const size_t end = command.find_first_of(";\n");
    awaited() = {HTCHistory::Mgr::instance().nextid() - 1,
                 end == std::string::npos ? "" : command.substr(end)};
    ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_HEADER, command + "\n");
}

void journal_changed_event(Tcl_Interp* interp, int id, const std::string& command) {
    const int newest = HTCHistory::Mgr::instance().nextid() - 1;
    const bool found = awaited().id > 0 && awaited().id == newest && (id > 0 ? id : newest + id) == newest;
    if (found && !stands_for_event(interp, command)) {
        send(interp, command + awaited().rest);
        awaited() = {};
    }
}

} // namespace HTCBuiltin::detail
