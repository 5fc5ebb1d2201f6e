#include "platform/taskcore/task_manager.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <pthread.h>
#include <semaphore.h>
#include <set>
#include <string_view>
#include <thread>
#include <unordered_map>

#include "platform/env/HUTLogFileMgr.h"
#include "platform/env/HUTProcHandlers.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/log_failures.h"
#include "platform/param/HPAParamMgr.h"
#include "platform/taskcore/DefaultSignalHandlers.h"
#include "platform/taskcore/HTCUndoRedo.h"
#include "platform/taskcore/option_messages.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/HTCTclInterp.h"
#include "platform/tcl/HTCTclWakeUp.h"
#include "platform/tcl/tclobj_ref.h"

// Tcl's own, exported for extensions; forgets a cancellation unless the interpreter is evaluating.
extern "C" int TclResetCancellation(Tcl_Interp* interp, int force);

namespace vek::tcltasks {

namespace {

using clock = std::chrono::steady_clock;

// One for each task name ever registered. Never freed: a command that unregisters itself is still running on
// it.
struct command_entry {
    std::string name;
    std::shared_ptr<ifactory> factory; // null while unregistered
    std::set<Tcl_Interp*> interps;     // where its command stands
    task_statistics statistics;
};

struct call_frame {
    call_frame(command_entry& called, call_frame* from) : entry(called), outer(from) {}

    command_entry& entry;
    call_frame* outer;
    const itask* task = nullptr;
    bool quiet = false;
    bool interruptible = true;
    clock::duration nested{0};
    std::optional<ComMsgMgr::QuietScope> quietScope;
    std::optional<ComMsgMgr::VerboseScope> verboseScope;
};

thread_local call_frame* currentFrame = nullptr;
thread_local int topLevelDepth = 0;

// Commands are registered on the threads of several interpreters.
struct task_table {
    std::mutex mutex;
    std::map<std::string, std::unique_ptr<command_entry>, std::less<>> entries; // guarded by mutex
    std::set<std::string, std::less<>> declared;                                // guarded by mutex
};

task_table& table() {
    static task_table& instance = *new task_table;
    return instance;
}

struct interrupt_state {
    std::atomic<bool> requested{false};
    std::atomic<bool> enabled{false};
    std::atomic<void (*)()> idle{nullptr};
    Tcl_AsyncHandler async = nullptr; // set once, before enabled
    sem_t signalled;
};

interrupt_state& interrupts() {
    static interrupt_state& instance = *new interrupt_state;
    return instance;
}

// The line of the last failure that was made from a message, on its thread.
thread_local std::string lastFailureLine;

void report_parameters() {
    std::vector<HPAParam*> changed;
    HPAParamMgr::getParamMgr().findMatchingParams("*", changed, false, true);
    for (const HPAParam* param : changed) {
        ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_OUTPUT,
                                 "  " + param->name + " = " + HPAParamMgr::valueText(*param) + "\n");
    }
}

// Turns the exception in flight into the interpreter's result.
int fail_from_exception(Tcl_Interp* interp, const std::string& command) {
    try {
        throw;
    } catch (const HEXAll& failure) {
        return fail_with(interp, failure);
    } catch (const HTCErrors::error& failure) {
        return fail_with(interp, option_messages::of(failure, command, nullptr));
    } catch (const std::exception& failure) {
        return fail_with(interp, option_messages::failed(command, failure.what()));
    } catch (...) {
        return fail_with(interp, option_messages::failed(command, "an unknown fault"));
    }
}

void record_undo(const std::shared_ptr<itask>& task, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    auto& undo = HTCUndoRedo::Mgr::instance();
    for (const call_frame* outer = currentFrame->outer; outer; outer = outer->outer) {
        if (outer->task && outer->task->can_undo(interp, objc, objv)) {
            return; // the outer command takes back what this one did
        }
    }
    if (task->can_undo(interp, objc, objv)) {
        undo.record(task, objc, objv);
    } else {
        undo.breakChain();
    }
}

// Runs one call and settles its code and result.
int run(call_frame& frame, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    const std::uint64_t errorsBefore = ComMsgMgr::errorCount();
    int code = TCL_ERROR;
    bool halts = true;
    try {
        const std::shared_ptr<itask> task = frame.entry.factory->create_task();
        frame.task = task.get();
        frame.interruptible = task->install_sigint_handler();
        task_manager::warnIfDeprecated(interp, task.get());
        if (task->reportParams()) {
            report_parameters();
        }
        code = task->execute(interp, objc, objv);
        halts = task->halt_flow_if_error_msg_detected(); // only now has the task read its options
        if (code == TCL_OK && task->affects_undo(interp, objc, objv)) {
            record_undo(task, interp, objc, objv);
        }
        frame.task = nullptr;
    } catch (...) {
        frame.task = nullptr;
        code = fail_from_exception(interp, called_as(objv[0]));
    }
    if (code == task_manager::code_no_action) {
        code = TCL_OK;
    }
    if (ComMsgMgr::errorCount() != errorsBefore && halts) {
        const bool unexplained = code == TCL_ERROR && *Tcl_GetStringResult(interp) == '\0';
        if (code == TCL_OK || unexplained) {
            const std::string line = ComMsgMgr::firstErrorLineSince(errorsBefore);
            if (!line.empty()) {
                Tcl_SetObjResult(interp, HTCTclEncoding::tclNewStringObj(line));
                code = TCL_ERROR;
            }
        }
    }
    return code;
}

// How low the stack of this thread may come while a command can still begin. A script that raises Tcl's limit
// of nested evaluations could otherwise use up the stack. Null if the stack is not known.
const char* stack_floor() {
    static constexpr size_t reserve = 256 << 10;
    static thread_local const char* const floor = []() -> const char* {
        pthread_attr_t attributes;
        if (pthread_getattr_np(pthread_self(), &attributes) != 0) {
            return nullptr;
        }
        void* lowest = nullptr;
        size_t size = 0;
        pthread_attr_getstack(&attributes, &lowest, &size);
        pthread_attr_destroy(&attributes);
        return static_cast<const char*>(lowest) + std::min(reserve, size / 4);
    }();
    return floor;
}

int dispatch(ClientData data, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    if (static_cast<const char*>(__builtin_frame_address(0)) < stack_floor()) {
        // Tcl's own words for the same mistake.
        Tcl_SetObjResult(interp, Tcl_NewStringObj("too many nested evaluations (infinite loop?)", -1));
        Tcl_SetErrorCode(interp, "TCL", "LIMIT", "STACK", nullptr);
        return TCL_ERROR;
    }
    command_entry& entry = *static_cast<command_entry*>(data);
    call_frame frame(entry, currentFrame);
    if (frame.outer == nullptr && topLevelDepth == 0 &&
        interrupts().requested.load(std::memory_order_relaxed) && Tcl_Canceled(interp, 0) == TCL_OK) {
        interrupts().requested = false;
    }
    currentFrame = &frame;
    const clock::time_point start = clock::now();
    int code = run(frame, interp, objc, objv);
    const clock::duration elapsed = clock::now() - start;
    currentFrame = frame.outer;
    if (frame.outer) {
        frame.outer->nested += elapsed;
    }
    // What a finished command has logged survives whatever ends the process next.
    HUTLogFileMgr::flush();
    com_msg_mgr::report_log_failures();
    task_statistics& statistics = entry.statistics;
    ++statistics.calls;
    statistics.failures += code == TCL_ERROR;
    statistics.time += elapsed;
    statistics.ownTime += elapsed - frame.nested;
    if (frame.quiet && code == TCL_ERROR && Tcl_Canceled(interp, 0) == TCL_OK) {
        Tcl_ResetResult(interp);
        code = TCL_OK;
    }
    return code;
}

void command_deleted(ClientData) {}

void interp_deleted(Tcl_Interp* interp) {
    std::lock_guard lock(table().mutex);
    for (auto& [name, entry] : table().entries) {
        entry->interps.erase(interp);
    }
}

command_entry* find_entry(const std::string& name) {
    auto& entries = table().entries;
    for (const std::string& spelled : {name, "common::" + name}) {
        const auto at = entries.find(spelled.starts_with("::") ? spelled.substr(2) : spelled);
        if (at != entries.end() && at->second->factory) {
            return at->second.get();
        }
    }
    return nullptr;
}

} // namespace

task_manager& task_manager::get_glb_task_manager() {
    static task_manager& instance = *new task_manager;
    return instance;
}

void task_manager::registerFactory(Tcl_Interp* interp, const std::shared_ptr<ifactory>& factory) {
    static std::once_flag listening;
    std::call_once(listening, [] { HTCTclInterp::onDelete(interp_deleted); });
    const std::string name = factory->task_name();
    command_entry* entry = nullptr;
    {
        std::lock_guard lock(table().mutex);
        auto& place = table().entries[name];
        if (!place) {
            place = std::make_unique<command_entry>();
            place->name = name;
        }
        entry = place.get();
        entry->factory = factory;
        entry->interps.insert(interp);
    }
    Tcl_CreateObjCommand(interp, name.c_str(), dispatch, entry, command_deleted);
}

bool task_manager::registerFactory(Tcl_Interp* interp, const std::string& name) {
    std::shared_ptr<ifactory> factory;
    {
        std::lock_guard lock(table().mutex);
        if (command_entry* entry = find_entry(name)) {
            factory = entry->factory;
        }
    }
    if (factory) {
        registerFactory(interp, factory);
    }
    return factory != nullptr;
}

bool task_manager::unregisterFactory(const std::string& name) {
    std::set<Tcl_Interp*> interps;
    std::shared_ptr<ifactory> gone; // dies outside of the lock
    {
        std::lock_guard lock(table().mutex);
        command_entry* entry = find_entry(name);
        if (!entry) {
            return false;
        }
        interps.swap(entry->interps);
        gone.swap(entry->factory);
    }
    for (Tcl_Interp* interp : interps) {
        if (HTCTclInterp::threadOf(interp) == Tcl_GetCurrentThread()) {
            Tcl_DeleteCommand(interp, gone->task_name());
        }
    }
    return true;
}

bool task_manager::unregisterFactory(Tcl_Interp* interp, const std::string& name) {
    std::string registered;
    {
        std::lock_guard lock(table().mutex);
        command_entry* entry = find_entry(name);
        if (!entry || entry->interps.erase(interp) == 0) {
            return false;
        }
        registered = entry->name;
    }
    Tcl_DeleteCommand(interp, registered.c_str());
    return true;
}

std::shared_ptr<itask> task_manager::createTask(const std::string& name) {
    std::shared_ptr<ifactory> factory;
    {
        std::lock_guard lock(table().mutex);
        if (command_entry* entry = find_entry(name)) {
            factory = entry->factory;
        }
    }
    return factory ? factory->create_task() : nullptr;
}

std::shared_ptr<itask> task_manager::createTask(Tcl_Interp* interp, const std::string& name) {
    {
        std::lock_guard lock(table().mutex);
        command_entry* entry = find_entry(name);
        if (!entry || entry->interps.count(interp) == 0) {
            return nullptr;
        }
    }
    return createTask(name);
}

void task_manager::getTaskNames(std::vector<std::string>& names) {
    std::lock_guard lock(table().mutex);
    for (const auto& [name, entry] : table().entries) {
        if (entry->factory) {
            names.push_back(name);
        }
    }
}

std::vector<task_statistics> task_manager::statistics() {
    std::lock_guard lock(table().mutex);
    std::vector<task_statistics> all;
    for (const auto& [name, entry] : table().entries) {
        if (entry->statistics.calls > 0) {
            all.push_back(entry->statistics);
            all.back().name = name;
        }
    }
    return all;
}

bool task_manager::isQuietMode() {
    for (const call_frame* frame = currentFrame; frame; frame = frame->outer) {
        if (frame->quiet) {
            return true;
        }
    }
    return false;
}

void task_manager::enterQuietMode() {
    if (currentFrame && !currentFrame->quiet) {
        currentFrame->quiet = true;
        currentFrame->quietScope.emplace();
    }
}

void task_manager::enterVerboseMode() {
    if (currentFrame && !currentFrame->verboseScope) {
        currentFrame->verboseScope.emplace();
    }
}

void task_manager::warnIfDeprecated(Tcl_Interp*, const itask* task) {
    std::string advice;
    if (task->is_deprecated(advice)) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-5013@%s%s\n", task->task_name(),
                           advice);
    }
}

void task_manager::write_error_result(const std::string& text, unsigned) {
    if (text.empty() || ComMsgMgr::wasIssued(text)) {
        return;
    }
    if (text.starts_with("ERROR: ")) {
        ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_ERROR, text);
    } else {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5020@%s\n", text);
    }
}

void task_manager::retrieve_and_send_except_msg_instance(std::string& text, unsigned) {
    text.clear();
    Tcl_Interp* interp = HTCTclInterp::getDefaultInterp();
    if (!interp || HTCTclInterp::threadOf(interp) != Tcl_GetCurrentThread()) {
        return;
    }
    const std::string result = HTCTclEncoding::tclGetString(Tcl_GetObjResult(interp));
    if (result.starts_with("ERROR: [")) {
        text = result;
        write_error_result(text, 0);
    }
}

namespace taskmgr {

bool isTaskDescriptionLoaded(const char* name) {
    std::lock_guard lock(table().mutex);
    return table().declared.find(std::string_view(name)) != table().declared.end();
}

void markTaskDescriptionLoaded(const std::string& name) {
    std::lock_guard lock(table().mutex);
    table().declared.insert(name);
}

} // namespace taskmgr

namespace {

// Tcl forgets a cancellation only at the end of a compiled script at its outermost level: a host that
// evaluates in another way would find every later command cancelled.
void forget_cancellation() {
    Tcl_Interp* interp = HTCTclInterp::getDefaultInterp();
    if (interp && HTCTclInterp::threadOf(interp) == Tcl_GetCurrentThread()) {
        TclResetCancellation(interp, 0);
    }
}

} // namespace

task_manager::top_level::top_level(const std::string& command) {
    if (topLevelDepth++ == 0) {
        interrupts().requested = false;
        forget_cancellation();
        ComMsgMgr::beginCommand();
    }
    HUTProcHandlers::recordCommand(command);
    ComMsgMgr::noteCommand(command);
}

task_manager::top_level::~top_level() {
    if (--topLevelDepth > 0) {
        return;
    }
    HUTLogFileMgr::flush();
    HUTLogFileMgr::checkFiles();
    com_msg_mgr::report_log_failures();
}

namespace {

// Runs on the interpreter's thread at a safe point of the evaluation, or in the event loop.
int deliver_interrupt(ClientData, Tcl_Interp* interp, int code) {
    interrupt_state& state = interrupts();
    for (const call_frame* frame = currentFrame; frame; frame = frame->outer) {
        if (!frame->interruptible) {
            return code;
        }
    }
    if (!interp && !currentFrame && topLevelDepth == 0) {
        state.requested = false;
        if (auto* idle = state.idle.load()) {
            idle();
        }
        return code;
    }
    state.requested = true;
    Tcl_Interp* running = HTCTclInterp::getDefaultInterp();
    running = running ? running : interp;
    if (running) {
        const HEXError interrupted({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5012@\n"});
        // Tcl_CancelEval discards the object that it is given.
        Tcl_CancelEval(running, HTCTclEncoding::tclNewStringObj(interrupted.what()), nullptr,
                       TCL_CANCEL_UNWIND);
    }
    return code;
}

// Tcl's own notification takes a lock, which a signal handler must not: it posts, and this thread notifies.
void watch_for_interrupts() {
    interrupt_state& state = interrupts();
    for (;;) {
        while (sem_wait(&state.signalled) != 0 && errno == EINTR) {
        }
        Tcl_AsyncMark(state.async);
        HTCTclWakeUp::notify();
    }
}

} // namespace

void task_manager::enableTaskInterruptHandling() {
    interrupt_state& state = interrupts();
    if (state.enabled) {
        return;
    }
    sem_init(&state.signalled, 0, 0);
    state.async = Tcl_AsyncCreate(deliver_interrupt, nullptr);
    state.enabled = true;
    std::thread(watch_for_interrupts).detach();
}

void task_manager::requestInterrupt() noexcept {
    interrupt_state& state = interrupts();
    state.requested = true;
    if (state.enabled) {
        sem_post(&state.signalled);
    }
}

bool task_manager::isTaskCanceled() {
    return interrupts().requested.load(std::memory_order_relaxed);
}

void task_manager::removeTaskInterruptHandler(const itask* task) {
    for (call_frame* frame = currentFrame; frame; frame = frame->outer) {
        if (frame->task == task) {
            frame->interruptible = false;
        }
    }
}

void task_manager::setIdleInterruptHandler(void (*handler)()) {
    interrupts().idle = handler;
}

namespace {

thread_local int completionCode = TCL_OK;
thread_local std::string completionResult;

// A command on its way from another thread. Shared by the waiting thread and the event.
struct evaluation {
    std::string command;
    const char* recordAs;
    std::string recordText;
    bool noUndo;
    Tcl_Interp* interp;

    std::mutex mutex;
    std::condition_variable finished;
    bool done = false; // guarded by mutex, with code and result
    int code = TCL_ERROR;
    std::string result;

    void finish(int withCode, std::string withResult) {
        std::lock_guard lock(mutex);
        if (!done) {
            done = true;
            code = withCode;
            result = std::move(withResult);
            finished.notify_all();
        }
    }
};

struct evaluation_queue {
    std::mutex mutex;
    bool accepting = true;                         // guarded by mutex
    std::set<std::shared_ptr<evaluation>> waiting; // guarded by mutex
};

evaluation_queue& evaluations() {
    static evaluation_queue& instance = *new evaluation_queue;
    return instance;
}

struct evaluation_event {
    Tcl_Event header; // Tcl's part, which it frees with the event
    std::shared_ptr<evaluation>* request;
};

int evaluate_here(Tcl_Interp* interp, const std::string& command, const char* recordAs, bool noUndo) {
    const task_manager::top_level scope(command);
    std::optional<HTCUndoRedo::Mgr::Suspend> suspended;
    if (noUndo) {
        suspended.emplace();
    }
    const bool recorded = recordAs != task_manager::dont_record_command;
    const std::string record = recordAs && recorded ? recordAs : command;
    if (recorded && !record.empty()) {
        ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_USER_COMMAND, record + "\n");
    }
    const tclobj_ref script(HTCTclEncoding::tclNewStringObj(command));
    return Tcl_EvalObjEx(interp, script.get(), TCL_EVAL_GLOBAL);
}

bool is_registered(Tcl_Interp* interp) {
    return HTCTclInterp::threadOf(interp) != nullptr;
}

int serve_evaluation(Tcl_Event* event, int) {
    auto* holder = reinterpret_cast<evaluation_event*>(event)->request;
    const std::shared_ptr<evaluation> request = *holder;
    delete holder;
    {
        std::lock_guard lock(evaluations().mutex);
        evaluations().waiting.erase(request);
    }
    {
        std::lock_guard lock(request->mutex);
        if (request->done) {
            return 1;
        }
    }
    if (!is_registered(request->interp)) {
        request->finish(TCL_ERROR, "the interpreter is gone");
        return 1;
    }
    const char* recordAs = request->recordAs && request->recordAs != task_manager::dont_record_command
                               ? request->recordText.c_str()
                               : request->recordAs;
    const int code = evaluate_here(request->interp, request->command, recordAs, request->noUndo);
    request->finish(code, HTCTclEncoding::tclGetString(Tcl_GetObjResult(request->interp)));
    return 1;
}

void evaluate_there(Tcl_ThreadId owner, const std::shared_ptr<evaluation>& request) {
    {
        std::lock_guard lock(evaluations().mutex);
        if (!evaluations().accepting) {
            request->finish(TCL_ERROR, "the session takes no more commands");
            return;
        }
        evaluations().waiting.insert(request);
        auto* event = reinterpret_cast<evaluation_event*>(Tcl_Alloc(sizeof(evaluation_event)));
        event->header.proc = serve_evaluation;
        event->request = new std::shared_ptr<evaluation>(request);
        Tcl_ThreadQueueEvent(owner, &event->header, TCL_QUEUE_TAIL);
        Tcl_ThreadAlert(owner);
        HTCTclWakeUp::notify();
    }
    std::unique_lock lock(request->mutex);
    request->finished.wait(lock, [&] { return request->done; });
}

} // namespace

const char* const task_manager::dont_record_command = "dont_record_command";

int task_manager::eval_in_tcl(const char* cmd, const char* recordAs, bool noUndo) {
    return eval_in_tcl(HTCTclInterp::getDefaultInterp(), cmd, recordAs, noUndo);
}

int task_manager::eval_in_tcl(Tcl_Interp* interp, const char* cmd, const char* recordAs, bool noUndo) {
    if (!interp) {
        completionCode = TCL_ERROR;
        completionResult = "there is no interpreter";
        return completionCode;
    }
    const Tcl_ThreadId owner = HTCTclInterp::threadOf(interp);
    if (!owner || owner == Tcl_GetCurrentThread()) {
        completionCode = evaluate_here(interp, cmd, recordAs, noUndo);
        completionResult = HTCTclEncoding::tclGetString(Tcl_GetObjResult(interp));
        return completionCode;
    }
    const auto request = std::make_shared<evaluation>();
    request->command = cmd;
    request->recordAs = recordAs;
    request->recordText = recordAs ? recordAs : "";
    request->noUndo = noUndo;
    request->interp = interp;
    evaluate_there(owner, request);
    std::lock_guard lock(request->mutex);
    completionCode = request->code;
    completionResult = request->result;
    return completionCode;
}

int task_manager::tcl_get_completion_code() {
    return completionCode;
}

const std::string& task_manager::tcl_get_result() {
    return completionResult;
}

void task_manager::acceptForeignEvaluations(bool accept) {
    std::set<std::shared_ptr<evaluation>> refused;
    {
        std::lock_guard lock(evaluations().mutex);
        evaluations().accepting = accept;
        if (!accept) {
            refused.swap(evaluations().waiting);
        }
    }
    for (const auto& request : refused) {
        request->finish(TCL_ERROR, "the session takes no more commands");
    }
}

} // namespace vek::tcltasks

void DefaultSignalHandlers::SigIntHandler(int) {
    vek::tcltasks::task_manager::requestInterrupt();
}
