#pragma once

#include <string>
#include <tcl.h>

/// The session's command prompt: reads commands from standard input until it ends and evaluates them at
/// global level. On a terminal the line editor does that; when a command has stopped it, the shell's own
/// prompt goes on, which shows each result as well. From a pipe or a file the commands only run, as in tclsh.
/// A command that fails is shown and the shell goes on. Between commands Tcl's event loop runs, so that
/// timers and evaluations from other threads are served. Interpreter's thread only; one for the process.
class Shell {
public:
    explicit Shell(Tcl_Interp* interp);
    ~Shell();
    Shell(const Shell&) = delete;
    Shell& operator=(const Shell&) = delete;

    /// Returns at the end of the input.
    void run();

private:
    enum class Input { line, none, end };

    void startEditor();
    bool runEditor();
    void watchInput(bool on);
    void waitForInput();
    Input readLine();
    void evaluate();
    void prompt();
    void freshLine();

    Tcl_Interp* m_interp;
    bool m_terminal;
    bool m_watching = false;
    bool m_readable = false;
    std::string m_command; ///< the lines of a command so far, in UTF-8 as Tcl has them
};
