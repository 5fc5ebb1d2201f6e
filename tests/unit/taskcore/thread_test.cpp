// Interrupts, and evaluations that come from other threads.
#include "support.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

#include "platform/taskcore/DefaultSignalHandlers.h"
#include "platform/tcl/HTCTclInterp.h"

using namespace vek::tcltasks;

namespace {

/// A long task that asks whether it was interrupted.
class polling : public HTCITaskHelper<polling> {
public:
    static constexpr const char* command = "trial::polling";
    static void load_description() { description_instance("Work until interrupted.", ""); }
    bool install_sigint_handler() const override { return reachable; }
    int execute(Tcl_Interp* interp) override {
        running = true;
        for (int i = 0; i < 3000 && !task_manager::isTaskCanceled(); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return set_result(interp, task_manager::isTaskCanceled());
    }
    static inline std::atomic<bool> running{false};
    static inline bool reachable = true;
};

class Threads : public TaskTest {
protected:
    Threads() {
        task_manager::enableTaskInterruptHandling();
        task_manager::acceptForeignEvaluations(true);
        register_task<polling>(interp);
        polling::running = false;
        polling::reachable = true;
    }

    /// Runs the event loop until `done`.
    static void serve(const std::atomic<int>& done, int count) {
        while (done < count) {
            Tcl_DoOneEvent(TCL_ALL_EVENTS | TCL_DONT_WAIT);
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
    }
    static bool has(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
};

/// Asks for an interrupt as soon as a flag is up.
std::thread interrupter(const std::atomic<bool>& ready) {
    return std::thread([&ready] {
        while (!ready) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        task_manager::requestInterrupt();
    });
}

int raise_flag(ClientData flag, Tcl_Interp*, int, Tcl_Obj* const*) {
    *static_cast<std::atomic<bool>*>(flag) = true;
    return TCL_OK;
}

TEST_F(Threads, AnInterruptStopsAScriptThatNeverEnds) {
    for (const char* loop :
         {"started; while 1 {}", "started; while 1 {set x 1}",
          "proc forever {} {started; while 1 {incr n}}; forever", "started; while 1 {catch {while 1 {}}}"}) {
        std::atomic<bool> started{false};
        Tcl_CreateObjCommand(interp, "started", raise_flag, &started, nullptr);
        std::thread other = interrupter(started);
        {
            const task_manager::top_level scope(loop);
            EXPECT_TRUE(has(error(loop), "17-5012")) << loop << ": " << result();
        }
        other.join();
        Tcl_ResetResult(interp);
        const task_manager::top_level scope("next");
        EXPECT_FALSE(task_manager::isTaskCanceled());
        EXPECT_EQ(eval("expr {6 * 7}"), "42") << "the session lives on";
    }
}

TEST_F(Threads, TheSignalHandlerAsksForAnInterrupt) {
    std::atomic<bool> started{false};
    Tcl_CreateObjCommand(interp, "started", raise_flag, &started, nullptr);
    const auto before = std::signal(SIGINT, DefaultSignalHandlers::SigIntHandler);
    std::thread other([&] {
        while (!started) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        std::raise(SIGINT);
    });
    {
        const task_manager::top_level scope("loop");
        EXPECT_TRUE(has(error("started; while 1 {}"), "17-5012"));
    }
    other.join();
    std::signal(SIGINT, before);
}

TEST_F(Threads, ATaskSeesTheInterruptWhenItAsks) {
    const auto start = std::chrono::steady_clock::now();
    std::thread other = interrupter(polling::running);
    {
        const task_manager::top_level scope("trial::polling");
        Tcl_Eval(interp, "trial::polling");
    }
    other.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    const task_manager::top_level scope("next");
    EXPECT_FALSE(task_manager::isTaskCanceled());
    EXPECT_EQ(eval("set x 1"), "1");
}

TEST_F(Threads, ForeignThreadsEvaluateWhileTheInterpretersThreadRunsItsEvents) {
    constexpr int threads = 8, calls = 200;
    eval("set total 0");
    std::atomic<int> finished{0}, wrong{0};
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&, t] {
            for (int i = 0; i < calls; ++i) {
                const std::string value = std::to_string(t * calls + i);
                const int code = task_manager::eval_in_tcl(interp, ("incr total; list " + value).c_str(),
                                                           task_manager::dont_record_command, false);
                wrong += code != TCL_OK || task_manager::tcl_get_result() != value ||
                         task_manager::tcl_get_completion_code() != TCL_OK;
            }
            ++finished;
        });
    }
    serve(finished, threads);
    for (std::thread& worker : workers) {
        worker.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(eval("set total"), std::to_string(threads * calls));
}

TEST_F(Threads, AForeignErrorComesHomeWithItsCode) {
    std::atomic<int> finished{0};
    int code = 0;
    std::string text;
    std::thread worker([&] {
        code = task_manager::eval_in_tcl("error {no way}", task_manager::dont_record_command, false);
        text = task_manager::tcl_get_result();
        ++finished;
    });
    serve(finished, 1);
    worker.join();
    EXPECT_EQ(code, TCL_ERROR);
    EXPECT_EQ(text, "no way");
}

TEST_F(Threads, ForeignEvaluationsAreRefusedWhenTheSessionEnds) {
    std::atomic<int> finished{0};
    std::vector<std::thread> workers;
    std::atomic<int> refused{0};
    for (int t = 0; t < 4; ++t) {
        workers.emplace_back([&] {
            const int code =
                task_manager::eval_in_tcl(interp, "set x 1", task_manager::dont_record_command, false);
            refused +=
                code == TCL_ERROR && task_manager::tcl_get_result() == "the session takes no more commands";
            ++finished;
        });
    }
    // Nobody serves events: the waiting ones are answered all the same.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    task_manager::acceptForeignEvaluations(false);
    for (std::thread& worker : workers) {
        worker.join();
    }
    EXPECT_EQ(refused, 4);
    task_manager::acceptForeignEvaluations(true);
    while (Tcl_DoOneEvent(TCL_ALL_EVENTS | TCL_DONT_WAIT)) {
    }
}

TEST_F(Threads, AnEvaluationIsJournalledAsItselfAsOtherTextOrNotAtAll) {
    const auto journal = std::make_shared<RecordingSink>();
    const auto before = ComMsgMgr::setSink(ComMsgMgr::Destination::journal, journal);
    task_manager::eval_in_tcl(interp, "set a 1", nullptr, false);
    task_manager::eval_in_tcl(interp, "set b 1", "other text", false);
    task_manager::eval_in_tcl(interp, "set c 1", task_manager::dont_record_command, false);
    task_manager::eval_in_tcl(interp, "set d 1", "", false);
    ComMsgMgr::setSink(ComMsgMgr::Destination::journal, before);
    EXPECT_EQ(journal->all(), "set a 1\nother text\n");
}

TEST_F(Threads, EvaluationIsAtGlobalLevel) {
    eval("proc local {} {set x here; trial_eval; return [info exists ::made]}");
    Tcl_CreateObjCommand(
        interp, "trial_eval",
        [](ClientData, Tcl_Interp* i, int, Tcl_Obj* const*) {
            return task_manager::eval_in_tcl(i, "set made [info exists x]", task_manager::dont_record_command,
                                             false);
        },
        nullptr, nullptr);
    EXPECT_EQ(eval("local"), "1");
    EXPECT_EQ(eval("set ::made"), "0");
}

} // namespace
