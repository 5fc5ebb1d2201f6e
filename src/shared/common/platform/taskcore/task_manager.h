#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <tcl.h>
#include <vector>

#include "tcltasks/core/ifactory.h"
#include "tcltasks/core/itask.h"

namespace vek::tcltasks {

/// How often a command ran, and how long, since the process started.
struct task_statistics {
    std::string name;
    std::uint64_t calls = 0;
    std::uint64_t failures = 0;
    std::chrono::nanoseconds time{0};    ///< with the commands that it ran
    std::chrono::nanoseconds ownTime{0}; ///< without them, for a composite command
};

/// The door between Tcl and the tasks: binds factories to Tcl commands, runs each call on a fresh task, turns
/// what a task throws into a Tcl error, and serves evaluations from other threads. Operations belong to the
/// interpreter's thread unless said otherwise.
class task_manager {
public:
    static task_manager& get_glb_task_manager();

    /// Creates the Tcl command `factory->task_name()` in the interpreter and keeps the factory by name. A
    /// factory of the same name is replaced in all interpreters.
    static void registerFactory(Tcl_Interp* interp, const std::shared_ptr<ifactory>& factory);
    /// Creates the command of a factory that another interpreter has registered. False if there is none.
    static bool registerFactory(Tcl_Interp* interp, const std::string& name);
    /// Takes the command out of all interpreters of this thread, or of one. False if there is no such task
    /// there.
    static bool unregisterFactory(const std::string& name);
    static bool unregisterFactory(Tcl_Interp* interp, const std::string& name);

    /// A task that is not run, for its description and options; null for an unknown name. A name in the
    /// public namespace may stand without it.
    static std::shared_ptr<itask> createTask(const std::string& name);
    static std::shared_ptr<itask> createTask(Tcl_Interp* interp, const std::string& name);

    /// Appends all registered names, sorted.
    static void getTaskNames(std::vector<std::string>& names);

    /// The value of recordAs that keeps a command out of the journal.
    static const char* const dont_record_command;

    /// Evaluates a command at global level in the default interpreter or the given one. Any thread: a foreign
    /// one hands the command to the interpreter's thread, which runs it in its event loop, and waits.
    /// \param recordAs the text for the journal; null for the command itself, dont_record_command or "" for
    /// none \param noUndo keeps what the command does off the undo stack Returns the Tcl code. Result and
    /// code are then read with the two functions below, on the same thread.
    static int eval_in_tcl(const char* cmd, const char* recordAs, bool noUndo);
    static int eval_in_tcl(Tcl_Interp* interp, const char* cmd, const char* recordAs, bool noUndo);
    static int tcl_get_completion_code();
    static const std::string& tcl_get_result();

    /// Whether evaluations from other threads are served. Switching it off answers those that wait with an
    /// error. Any thread.
    static void acceptForeignEvaluations(bool accept);

    /// True while the running task was given -quiet, or runs inside one that was.
    static bool isQuietMode();
    /// True after the user interrupted what is running. Long loops poll it. Any thread.
    static bool isTaskCanceled();
    /// Turns on the delivery of interrupts: requestInterrupt then stops the running task or script.
    static void enableTaskInterruptHandling();
    /// Asks for an interrupt. May be called on any thread and from a signal handler.
    static void requestInterrupt() noexcept;
    /// Lets interrupts pass by a task that stays on the stack past its command.
    static void removeTaskInterruptHandler(const itask* task);
    /// What happens on an interrupt while nothing runs; the shell starts a fresh line.
    static void setIdleInterruptHandler(void (*handler)());

    /// Sends the task's deprecation message if it has one.
    static void warnIfDeprecated(Tcl_Interp* interp, const itask* task);

    /// Shows a failure as an ERROR, once: a message line that was shown since the top-level command began is
    /// not shown again. The number is reserved and 0.
    static void write_error_result(const std::string& text, unsigned);

    /// Sends the message behind the error that is the default interpreter's result, and gives its line; empty
    /// when that error was not made from a message.
    static void retrieve_and_send_except_msg_instance(std::string& text, unsigned);

    /// The number of objects from which a property command fires one grouped event.
    static unsigned multipleObjectsEventMinThreshHold() { return 2; }

    static std::vector<task_statistics> statistics();

    /// A completion code of a task that is no error: its result stands, Tcl sees TCL_OK.
    static constexpr int code_no_action = 9000;

    /// Lives around each command that the user, the session or another thread gives, as opposed to those that
    /// a script runs in turn: makes interrupts, shown errors and log flushes count for one such command. They
    /// nest; the outermost counts.
    class top_level {
    public:
        explicit top_level(const std::string& command);
        ~top_level();
        top_level(const top_level&) = delete;
        top_level& operator=(const top_level&) = delete;
    };

    /// For the option engine: the running task was given -quiet or -verbose.
    static void enterQuietMode();
    static void enterVerboseMode();

private:
    task_manager() = default;
};

/// Which tasks have been declared.
namespace taskmgr {

/// True if a load_description has run for this name.
bool isTaskDescriptionLoaded(const char* name);
void markTaskDescriptionLoaded(const std::string& name);

} // namespace taskmgr
} // namespace vek::tcltasks
