#include "Shell.h"

#include <unistd.h>
#include <utility>

#include "platform/env/HUTEnv.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/taskcore/task_manager.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/tclcmdobj.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/builtin/editline/evaluate.h"
#include "tcltasks/builtin/editline/libedit.h"
#include "tcltasks/driver/detail/driver.h"
#include "tcltasks/driver/detail/product_scripts.h"

using vek::tcltasks::task_manager;
using vek::tcltasks::tclcmdobj;
using vek::tcltasks::tclobj_ref;

namespace {

Shell* running = nullptr; // the one whose line an interrupt breaks off

void write(const std::string& text) {
    if (Tcl_Channel out = Tcl_GetStdChannel(TCL_STDOUT)) {
        Tcl_WriteChars(out, text.data(), static_cast<int>(text.size()));
        Tcl_Flush(out);
    }
}

} // namespace

Shell::Shell(Tcl_Interp* interp) : m_interp(interp), m_terminal(::isatty(STDIN_FILENO) == 1) {
    Tcl_SetVar2(interp, "tcl_interactive", nullptr, m_terminal ? "1" : "0", TCL_GLOBAL_ONLY);
    running = this;
}

Shell::~Shell() {
    watchInput(false);
    running = nullptr;
}

void Shell::run() {
    startEditor();
    if (!runEditor()) {
        prompt();
    }
    for (;;) {
        switch (readLine()) {
        case Input::none:
            waitForInput();
            break;
        case Input::end:
            if (m_terminal) {
                write("\n");
            } else if (!m_command.empty()) {
                const std::string line = m_command.substr(0, m_command.find('\n'));
                ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5019@%s\n",
                                   HTCTclEncoding::fromTcl(line.c_str()));
            }
            return;
        case Input::line:
            if (Tcl_CommandComplete(m_command.c_str())) {
                evaluate();
                Tcl_DoOneEvent(TCL_ALL_EVENTS | TCL_DONT_WAIT); // input without pause keeps no event waiting
            }
            if (!m_command.empty() || !runEditor()) {
                prompt();
            }
        }
    }
}

// The shell's own prompts are scripts of the user's, as in tclsh; the editor keeps them and gives them back.
void Shell::startEditor() {
    if (!m_terminal) {
        return;
    }
    const std::pair<const char*, std::string> prompts[] = {{"tcl_prompt1", HUTEnv::getProductName() + "% "},
                                                           {"tcl_prompt2", "> "}};
    for (const auto& [variable, text] : prompts) {
        if (!Tcl_GetVar2Ex(m_interp, variable, nullptr, TCL_GLOBAL_ONLY)) {
            const tclcmdobj script = std::move(tclcmdobj(m_interp, "puts").append("-nonewline").append(text));
            Tcl_SetVar2Ex(m_interp, variable, nullptr, script.obj(), TCL_GLOBAL_ONLY);
        }
    }
    if (::isatty(STDOUT_FILENO) == 1 && tclcmdobj(m_interp, "omu::start_editline")
                                                .append(driver::detail::getLowerProductName())
                                                .eval(TCL_EVAL_GLOBAL) != TCL_OK) {
        driver::detail::writeTclErrorMessage(m_interp);
    }
}

// Runs the editor if a command has started it. It leaves the shell's own prompt on the screen.
bool Shell::runEditor() {
    const bool ran = HTCLibEdit::detail::runMainLoop();
    task_manager::setIdleInterruptHandler([] {
        if (running) {
            running->freshLine();
        }
    });
    return ran;
}

// A command may run the event loop itself; the input must not wake it up then.
void Shell::watchInput(bool on) {
    if (on == m_watching) {
        return;
    }
    m_watching = on;
    const auto readable = [](ClientData shell, int) { static_cast<Shell*>(shell)->m_readable = true; };
    if (Tcl_Channel in = Tcl_GetStdChannel(TCL_STDIN)) {
        if (on) {
            Tcl_CreateChannelHandler(in, TCL_READABLE, readable, this);
        } else {
            Tcl_DeleteChannelHandler(in, readable, this);
        }
    }
}

void Shell::waitForInput() {
    m_readable = false;
    watchInput(true);
    while (!m_readable) {
        Tcl_DoOneEvent(TCL_ALL_EVENTS);
    }
    watchInput(false);
}

// Adds a line of the input to the command. A pipe that holds half a line must not block the event loop, so it
// is read without blocking; a terminal always gives whole lines, and its mode would be shared with the
// output.
Shell::Input Shell::readLine() {
    Tcl_Channel in = Tcl_GetStdChannel(TCL_STDIN);
    if (!in) {
        return Input::end;
    }
    if (m_terminal && !m_readable && Tcl_InputBuffered(in) == 0) {
        return Input::none;
    }
    m_readable = false;
    if (!m_terminal) {
        Tcl_SetChannelOption(nullptr, in, "-blocking", "0");
    }
    const tclobj_ref line(Tcl_NewObj());
    const int length = Tcl_GetsObj(in, line.get());
    const bool blocked = Tcl_InputBlocked(in);
    const bool ended = Tcl_Eof(in);
    if (!m_terminal) {
        Tcl_SetChannelOption(nullptr, in, "-blocking", "1");
    }
    if (length < 0) {
        return blocked && !ended ? Input::none : Input::end;
    }
    m_command.append(Tcl_GetString(line.get()), static_cast<size_t>(line->length));
    m_command += '\n';
    return Input::line;
}

void Shell::evaluate() {
    const tclobj_ref command(Tcl_NewStringObj(m_command.data(), static_cast<int>(m_command.size()) - 1));
    m_command.clear();
    const int code = HTCLibEdit::detail::evaluate(m_interp, command.get());
    HTCLibEdit::detail::show(m_interp, code, m_terminal);
}

// Tcl's variables tcl_prompt1 and tcl_prompt2 hold scripts that write prompts of the user's own.
void Shell::prompt() {
    if (!m_terminal) {
        return;
    }
    const bool continued = !m_command.empty();
    Tcl_Obj* script =
        Tcl_GetVar2Ex(m_interp, continued ? "tcl_prompt2" : "tcl_prompt1", nullptr, TCL_GLOBAL_ONLY);
    if (script && Tcl_EvalObjEx(m_interp, script, TCL_EVAL_GLOBAL) == TCL_OK) {
        write("");
        return;
    }
    if (script) {
        driver::detail::writeTclErrorMessage(m_interp);
    }
    write(continued ? std::string("> ") : HUTEnv::getProductName() + "% ");
}

void Shell::freshLine() {
    m_command.clear();
    if (m_terminal) {
        write("\n");
        prompt();
    }
}
