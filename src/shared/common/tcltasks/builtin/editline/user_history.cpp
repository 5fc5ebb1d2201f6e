#include "tcltasks/builtin/editline/user_history.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <tcl.h>
#include <utility>

#include "platform/msg/ComMsgMgr.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "tcltasks/builtin/editline/libedit_functions.h"

namespace HTCLibEdit::detail {

namespace {

constexpr int size = 100;

// Whether one of the commands in a script is the tool's own.
bool has_own_command(const std::string& script) {
    const char* at = script.data();
    const char* const end = at + script.size();
    while (at < end) {
        Tcl_Parse parse;
        if (Tcl_ParseCommand(nullptr, at, static_cast<int>(end - at), 0, &parse) != TCL_OK) {
            return false;
        }
        if (parse.numWords > 0) {
            std::string_view name(parse.tokenPtr->start, static_cast<size_t>(parse.tokenPtr->size));
            name.remove_prefix(std::min(name.find_first_not_of(':'), name.size()));
            if (name.starts_with("omu::")) {
                Tcl_FreeParse(&parse);
                return true;
            }
        }
        at = parse.commandStart + parse.commandSize;
        Tcl_FreeParse(&parse);
    }
    return false;
}

// libedit shows no entry, and none that is older, if one is no text in the user's encoding.
bool is_text(const std::string& entry) {
    return std::mbstowcs(nullptr, entry.c_str(), 0) != static_cast<size_t>(-1);
}

} // namespace

user_history::user_history() : m_history(history_init()), m_file(HUTHistoryFile::userPath()) {
    HistEvent event;
    libedit().history(m_history, &event, H_SETSIZE, size);
    try {
        for (const std::string& entry : m_file.newest(size)) {
            if (is_text(entry)) {
                enter(entry);
            }
        }
    } catch (const std::system_error& failure) {
        tell(failure);
    }
}

user_history::~user_history() {
    history_end(m_history);
}

void user_history::add(const std::string& command) {
    const std::string text = HTCTclEncoding::fromTcl(command);
    enter(text);
    if (has_own_command(command)) {
        return;
    }
    try {
        m_file.add(text);
    } catch (const std::system_error& failure) {
        tell(failure);
    }
}

void user_history::tell(const std::system_error& failure) {
    if (!std::exchange(m_told, true)) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-5420@%s\n", failure.what());
    }
}

void user_history::enter(const std::string& command) {
    HistEvent event;
    libedit().history(m_history, &event, H_ENTER, command.c_str());
}

} // namespace HTCLibEdit::detail
