#pragma once

#include <histedit.h>
#include <string>
#include <system_error>

#include "platform/env/HUTHistoryFile.h"

namespace HTCLibEdit::detail {

/// The commands that the editor brings back: libedit's list of this session, begun with the newest of the
/// user's file, to which what is typed here is added. Commands of the namespace omu, which are the tool's
/// own, do not go to the file. A file that cannot be used is told of once. Interpreter's thread.
class user_history {
public:
    user_history();
    ~user_history();
    user_history(const user_history&) = delete;
    user_history& operator=(const user_history&) = delete;

    History* get() const { return m_history; }
    /// `command` as Tcl has it.
    void add(const std::string& command);

private:
    void enter(const std::string& command);
    void tell(const std::system_error& failure);

    History* m_history;
    HUTHistoryFile m_file;
    bool m_told = false; ///< the user knows that nothing is kept
};

} // namespace HTCLibEdit::detail
