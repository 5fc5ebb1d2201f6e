#include "tcltasks/builtin/editline/libedit.h"

#include <cstdio>
#include <cstring>
#include <histedit.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include "platform/taskcore/task_manager.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/tcl_guard.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/builtin/completion/completion.h"
#include "tcltasks/builtin/editline/evaluate.h"
#include "tcltasks/builtin/editline/libedit_functions.h"
#include "tcltasks/builtin/editline/prompt_terminal.h"
#include "tcltasks/builtin/editline/user_history.h"

using vek::tcltasks::task_manager;
using vek::tcltasks::tclobj_ref;

namespace HTCLibEdit::detail {

namespace {

Tcl_Interp* s_interp = nullptr;
std::string s_app = "unknown";
std::string s_start_prompt = "% ";
std::string s_continue_prompt = "- ";
bool s_continuation = false;
bool s_exit_editline_loop = false;
std::string s_save_tcl_prompt1;
std::string s_save_tcl_prompt2;
bool s_armed = false; // what Tcl's hook holds, which cannot be asked

constexpr const char* silent = "puts -nonewline {}";

void silence(Tcl_Interp* interp, const char* variable, std::string& saved) {
    Tcl_Obj* value = Tcl_GetVar2Ex(interp, variable, nullptr, TCL_GLOBAL_ONLY);
    saved = value ? HTCTclEncoding::tclGetString(value) : std::string();
    Tcl_SetVar2(interp, variable, nullptr, silent, TCL_GLOBAL_ONLY);
}

void give_back(Tcl_Interp* interp, const char* variable, const std::string& saved) {
    if (saved.empty()) {
        Tcl_UnsetVar2(interp, variable, nullptr, TCL_GLOBAL_ONLY);
    } else {
        Tcl_SetVar2Ex(interp, variable, nullptr, HTCTclEncoding::tclNewStringObj(saved), TCL_GLOBAL_ONLY);
    }
}

void interp_deleted(ClientData, Tcl_Interp* interp) {
    if (s_interp == interp) {
        s_interp = nullptr;
    }
}

char* tcl_prompt(EditLine*) {
    return s_continuation ? s_continue_prompt.data() : s_start_prompt.data();
}

unsigned char tcl_delete_next_char(EditLine* el, int) {
    const LineInfoW* line = el_wline(el);
    if (line->cursor >= line->lastchar) {
        return CC_REDISPLAY;
    }
    el_cursor(el, 1);
    el_deletestr(el, 1);
    return CC_REFRESH;
}

// What the completion shows takes several rows, as the line may do; libedit would draw the one over the
// other.
unsigned char complete_word(EditLine* el, int key) {
    unsigned char code = CC_ERROR;
    {
        const task_manager::top_level scope("(completion)");
        code = tcl_completion(el, key);
    }
    if (prompt_terminal::takeLostInterrupt()) {
        return CC_EOF;
    }
    return prompt_terminal::redrawIfMoved() && code == CC_REDISPLAY ? CC_NORM : code;
}

/// The mode that the terminal had before, given back without losing what has been typed ahead.
class terminal_mode {
public:
    terminal_mode() : m_known(::tcgetattr(STDIN_FILENO, &m_mode) == 0) {}
    ~terminal_mode() {
        if (m_known) {
            ::tcsetattr(STDIN_FILENO, TCSADRAIN, &m_mode);
        }
    }
    terminal_mode(const terminal_mode&) = delete;
    terminal_mode& operator=(const terminal_mode&) = delete;

private:
    termios m_mode{};
    const bool m_known;
};

/// libedit's objects for as long as the loop runs.
class editor {
public:
    editor() : el(el_init(s_app.c_str(), stdin, stdout, stderr)) {
        const auto& lib = libedit();
        lib.el_set(el, EL_HIST, lib.history, history.get());
        lib.el_set(el, EL_PROMPT, tcl_prompt);
        lib.el_set(el, EL_EDITOR, "emacs");
        lib.el_set(el, EL_TERMINAL, nullptr);
        lib.el_set(el, EL_ADDFN, "xtcl-complete", "Context sensitive argument completion", complete_word);
        lib.el_set(el, EL_ADDFN, "xtcl-delete-next-char", "Delete character under cursor",
                   tcl_delete_next_char);
        lib.el_set(el, EL_BIND, "^I", "xtcl-complete", nullptr);
        lib.el_set(el, EL_BIND, "\033[3~", "xtcl-delete-next-char", nullptr);
        lib.el_set(el, EL_BIND, "^D", "xtcl-delete-next-char", nullptr);
        // libedit's own command line, on Meta-x, ends the process on a quote without its partner.
        lib.el_set(el, EL_BIND, "\033x", "ed-unassigned", nullptr);
        lib.el_set(el, EL_BIND, "\033X", "ed-unassigned", nullptr);
        el_source(el, nullptr);
        el_reset(el);
    }
    ~editor() {
        libedit().el_set(el, EL_EDITMODE, 0); // leaves the terminal alone, whose input it would throw away
        el_end(el);
    }
    editor(const editor&) = delete;
    editor& operator=(const editor&) = delete;

    const terminal_mode mode;
    user_history history;
    EditLine* const el;
};

/// The variable tcl_interactive tells whether the commands come from a terminal, as a host's own loop does.
class interactive_link {
public:
    explicit interactive_link(Tcl_Interp* interp) : m_interp(interp), m_value(::isatty(STDIN_FILENO) == 1) {
        m_linked =
            Tcl_LinkVar(interp, variable, reinterpret_cast<char*>(&m_value), TCL_LINK_BOOLEAN) == TCL_OK;
        if (!m_linked) {
            Tcl_ResetResult(interp); // the host has a link of its own
        }
    }
    ~interactive_link() {
        if (m_linked && !Tcl_InterpDeleted(m_interp)) {
            Tcl_UnlinkVar(m_interp, variable);
        }
    }
    interactive_link(const interactive_link&) = delete;
    interactive_link& operator=(const interactive_link&) = delete;

    bool isTerminal() const { return m_value != 0; }

private:
    static constexpr const char* variable = "tcl_interactive";
    Tcl_Interp* const m_interp;
    int m_value;
    bool m_linked;
};

enum class input { line, again, end };

/// The loop and what it holds from one command to the next.
class editline_loop {
public:
    explicit editline_loop(Tcl_Interp* interp)
        : m_interp(interp), m_interactive(interp), m_terminal(m_editor.el, tcl_prompt) {}

    void run() {
        Tcl_DeleteFileHandler(STDIN_FILENO);
        s_continuation = false;
        begin_command();
        while (!s_exit_editline_loop) {
            if (!Tcl_GetStdChannel(TCL_STDIN) || Tcl_InterpDeleted(m_interp)) {
                return;
            }
            switch (m_interactive.isTerminal() ? read_from_terminal() : read_from_channel()) {
            case input::end:
                return;
            case input::again:
                continue;
            case input::line:
                break;
            }
            if (!Tcl_CommandComplete(Tcl_GetString(m_command.get()))) {
                s_continuation = true;
                continue;
            }
            s_continuation = false;
            evaluate_command();
        }
    }

private:
    void begin_command() { m_command = tclobj_ref(Tcl_NewObj()); }

    input read_from_terminal() {
        if (Tcl_LimitExceeded(m_interp)) {
            return input::end;
        }
        std::string line;
        while (!m_terminal.read(line)) {
            if (m_terminal.isGone() || Tcl_InterpDeleted(m_interp)) {
                return input::end;
            }
            if (m_terminal.takeInterrupt()) {
                s_continuation = false;
                begin_command();
            }
        }
        const tclobj_ref text(HTCTclEncoding::tclNewStringObj(line));
        Tcl_AppendObjToObj(unshared_command(), text.get());
        return input::line;
    }

    input read_from_channel() {
        Tcl_Channel in = Tcl_GetStdChannel(TCL_STDIN);
        if (Tcl_GetsObj(in, unshared_command()) < 0) {
            if (!Tcl_InputBlocked(in)) {
                return input::end;
            }
            pollfd ready = {STDIN_FILENO, POLLIN, 0};
            ::poll(&ready, 1, -1);
            return input::again;
        }
        Tcl_AppendToObj(unshared_command(), "\n", 1);
        return input::line;
    }

    Tcl_Obj* unshared_command() {
        if (Tcl_IsShared(m_command.get())) {
            m_command = tclobj_ref(Tcl_DuplicateObj(m_command.get()));
        }
        return m_command.get();
    }

    void evaluate_command() {
        int length = 0;
        Tcl_GetStringFromObj(unshared_command(), &length);
        Tcl_SetObjLength(m_command.get(), --length);
        const bool terminal = m_interactive.isTerminal();
        if (terminal && length > 0) {
            m_editor.history.add(Tcl_GetString(m_command.get()));
        }
        const int code = evaluate(m_interp, m_command.get());
        begin_command();
        show(m_interp, code, terminal);
    }

    Tcl_Interp* const m_interp;
    interactive_link m_interactive;
    editor m_editor;
    prompt_terminal m_terminal;
    tclobj_ref m_command;
};

void show_host_prompt(Tcl_Interp* interp) {
    Tcl_Obj* script =
        Tcl_InterpDeleted(interp) ? nullptr : Tcl_GetVar2Ex(interp, "tcl_prompt1", nullptr, TCL_GLOBAL_ONLY);
    if (script) {
        Tcl_EvalObjEx(interp, script, TCL_EVAL_GLOBAL);
    }
    if (Tcl_Channel out = Tcl_GetStdChannel(TCL_STDOUT)) {
        if (!script) {
            Tcl_WriteChars(out, "% ", 2);
        }
        Tcl_Flush(out);
    }
}

void tcl_editline_loop() {
    Tcl_Interp* const interp = s_interp;
    if (!interp) {
        return;
    }
    Tcl_Preserve(interp);
    vek::tcltasks::tcl_guard(interp, [&] {
        editline_loop(interp).run();
        show_host_prompt(interp);
        return TCL_OK;
    });
    Tcl_Release(interp);
}

} // namespace

int setTclMainLoop(Tcl_Interp* interp, const std::string& app) {
    libedit();
    if (s_interp != interp) {
        Tcl_CallWhenDeleted(interp, interp_deleted, nullptr);
    }
    s_interp = interp;
    s_app = app;
    s_exit_editline_loop = false;
    silence(interp, "tcl_prompt1", s_save_tcl_prompt1);
    silence(interp, "tcl_prompt2", s_save_tcl_prompt2);
    s_start_prompt = app + "% ";
    s_continue_prompt = app + "- ";
    Tcl_SetMainLoop(tcl_editline_loop);
    s_armed = true;
    return 0;
}

int resetTclMainLoop() {
    if (s_interp) {
        give_back(s_interp, "tcl_prompt1", s_save_tcl_prompt1);
        give_back(s_interp, "tcl_prompt2", s_save_tcl_prompt2);
    }
    s_exit_editline_loop = true;
    return 0;
}

void show_below(const std::string& text) {
    prompt_terminal::showBelow(text);
}

Tcl_Interp* interp() {
    return s_interp;
}

bool runMainLoop() {
    if (!s_armed) {
        return false;
    }
    s_armed = false;
    tcl_editline_loop();
    return true;
}

} // namespace HTCLibEdit::detail
