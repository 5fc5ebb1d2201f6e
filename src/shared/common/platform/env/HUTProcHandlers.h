#pragma once

#include <string_view>

/// What happens when the process is struck by a signal.
///
/// SIGSEGV, SIGBUS, SIGFPE, SIGILL and SIGABRT: a report with the signal, the stack and the last 20 commands
/// is written to
/// "<program>_pid<pid>.crash" in the working directory, or in the temporary directory when that fails; log
/// and journal are flushed; one line on standard error says where the report is; then the process ends with
/// that signal. SIGTERM and SIGHUP: log and journal are flushed and the process ends with that signal.
/// SIGXFSZ: nothing; the write that made a file too large fails as on a full disk. A signal that was ignored
/// at the start, as by nohup, stays ignored.
class HUTProcHandlers {
public:
    /// Installs the handlers and an alternate stack for the calling thread. Later calls do nothing. Call
    /// after the product's name and the temporary directory are known.
    static void installHandlers();

    /// Gives the calling thread a stack of its own for handlers, so that a report is written even when its
    /// stack has run out. Released when the thread ends.
    static void installAltStack();

    /// Remembers a command for the report; the first 512 bytes of each of the last 20 are kept. Takes no
    /// lock.
    static void recordCommand(std::string_view command) noexcept;
};
