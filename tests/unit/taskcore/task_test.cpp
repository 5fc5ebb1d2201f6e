// The life of one call: dispatch, failures, statistics, registration.
#include "support.h"

#include <stdexcept>

#include "platform/env/HUTEnv.h"
#include "platform/msg/HEX.h"
#include "platform/taskcore/HTCErrors.h"
#include "platform/tcl/HTCTclInterp.h"

using namespace vek::tcltasks;

namespace {

/// A task whose body the test supplies.
class scripted : public HTCITaskHelper<scripted> {
public:
    static constexpr const char* command = "trial::scripted";
    static void load_description() {
        in_categories("One");
        in_categories("Two", "Three");
        description_instance("Do what the test says.", "")
            .add_options()
            .add_option("word", options::text(), "A word");
        positional_instance().add("word", 1);
    }
    std::string owner() const override { return "trial"; }
    bool is_deprecated(std::string& message) const override {
        message = advice;
        return !advice.empty();
    }
    bool halt_flow_if_error_msg_detected() const override { return halts; }
    int execute(Tcl_Interp* interp) override { return body(interp, *this); }

    static inline std::function<int(Tcl_Interp*, scripted&)> body;
    static inline std::string advice;
    static inline bool halts = true;
};

/// A task that does nothing of its own.
class bare : public HTCITaskHelper<bare> {
public:
    static constexpr const char* command = "trial::bare";
    static void load_description() { description_instance("Nothing.", ""); }
};

/// A task that was never declared.
class undeclared : public HTCITaskHelper<undeclared> {
public:
    static constexpr const char* command = "trial::undeclared";
    int execute(Tcl_Interp*) override { return TCL_OK; }
};

/// A task that works without an interpreter.
class plain : public HTCITaskHelper<plain> {
public:
    static constexpr const char* command = "trial::plain";
    static void load_description() { description_instance("Plain.", ""); }
    int execute() override { return TCL_OK; }
};

class Task : public TaskTest {
protected:
    Task() {
        scripted::body = [](Tcl_Interp*, scripted&) { return TCL_OK; };
        scripted::advice.clear();
        scripted::halts = true;
        register_task<scripted>(interp);
        register_task<bare>(interp);
        register_task<plain>(interp);
    }
    ~Task() override {
        for (const char* name : {"trial::scripted", "trial::bare", "trial::plain", "trial::undeclared"}) {
            task_manager::unregisterFactory(name);
        }
    }
    static bool has(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
    static task_statistics statistics(const std::string& name) {
        for (const task_statistics& s : task_manager::statistics()) {
            if (s.name == name) {
                return s;
            }
        }
        return {};
    }
};

TEST_F(Task, ABadOptionNeverReachesExecute) {
    int runs = 0;
    scripted::body = [&](Tcl_Interp*, scripted&) { return ++runs, TCL_OK; };
    error("trial::scripted -nosuch");
    EXPECT_EQ(runs, 0);
    eval("trial::scripted x");
    EXPECT_EQ(runs, 1);
}

TEST_F(Task, ATaskWithNeitherExecuteReturnsOne) {
    EXPECT_EQ(error("trial::bare"), "");
    const auto task = task_manager::createTask("trial::bare");
    EXPECT_EQ(dynamic_cast<bare&>(*task).execute(interp), 1);
    EXPECT_EQ(dynamic_cast<bare&>(*task).execute(), 1);
    EXPECT_EQ(eval("trial::plain"), "");
}

TEST_F(Task, DefaultsOfATaskAreThoseDocumented) {
    const auto task = task_manager::createTask("trial::bare");
    std::string message;
    EXPECT_STREQ(task->task_name(), "trial::bare");
    EXPECT_EQ(task->task_help_name("any name"), "any name");
    EXPECT_EQ(task->task_description(), "Nothing.");
    EXPECT_EQ(task->task_categories(), "");
    EXPECT_FALSE(task->is_hidden());
    EXPECT_FALSE(task->is_deprecated(message));
    EXPECT_TRUE(task->notify());
    EXPECT_FALSE(task->isComposite());
    EXPECT_FALSE(task->reportParams());
    EXPECT_TRUE(task->reportStats());
    EXPECT_TRUE(task->install_sigint_handler());
    EXPECT_TRUE(task->halt_flow_if_error_msg_detected());
    EXPECT_FALSE(task->affects_undo(interp, 0, nullptr));
    EXPECT_FALSE(task->can_undo(interp, 0, nullptr));
    EXPECT_FALSE(task->can_redo(interp, 0, nullptr));
    EXPECT_EQ(task->undo(interp, 0, nullptr), 1);
    EXPECT_EQ(task->redo(interp, 0, nullptr), 1);
    EXPECT_EQ(dynamic_cast<const task_options_base&>(*task).owner(), "unknown");
    EXPECT_EQ(dynamic_cast<const task_options_base&>(*task).long_help_name("n"), "n");
}

TEST_F(Task, CategoriesAreJoinedByColons) {
    EXPECT_EQ(task_manager::createTask("trial::scripted")->task_categories(), "One:Two:Three");
}

TEST_F(Task, AnUndeclaredTaskAnswersWithTheStandIn) {
    init_tcltask<undeclared::factory>(interp);
    EXPECT_FALSE(taskmgr::isTaskDescriptionLoaded("trial::undeclared"));
    EXPECT_EQ(task_manager::createTask("trial::undeclared")->task_description(), "dummy");
    EXPECT_EQ(eval("trial::undeclared"), "");
}

TEST_F(Task, EachCallHasATaskOfItsOwn) {
    std::string seen;
    scripted::body = [&](Tcl_Interp*, scripted& t) {
        seen += t.get_option<std::string>("word") + (t.specified_option("word") ? "!" : "?");
        return TCL_OK;
    };
    eval("trial::scripted a; trial::scripted; trial::scripted b");
    EXPECT_EQ(seen, "a!?b!");
}

TEST_F(Task, AMessageExceptionBecomesTheResult) {
    scripted::body = [](Tcl_Interp*, scripted&) -> int {
        throw HEXError(ComMsgMgrInstance{"common", ComMsgMgr::MSGTYPE_ERROR, "@17-153@%s\n", "nosuch"});
    };
    EXPECT_EQ(error("trial::scripted"), "ERROR: [Common 17-153] No parameter is named 'nosuch'.");
    EXPECT_EQ(eval("set errorCode"), "CORVANE {Common 17-153}");
    EXPECT_EQ(eval("catch trial::scripted"), "1");
    EXPECT_EQ(console->all(), "") << "an error that is caught is not shown";
}

TEST_F(Task, EveryKindOfExceptionNamesTheCommandAndTheReason) {
    const auto failing = [&](auto thrown) {
        scripted::body = [thrown](Tcl_Interp*, scripted&) -> int { throw thrown; };
        const std::string message = error("trial::scripted");
        EXPECT_TRUE(message.starts_with("ERROR: [Common 17-")) << message;
        EXPECT_TRUE(has(message, "trial::scripted")) << message;
        return message;
    };
    EXPECT_TRUE(has(failing(HTCErrors::command_failed("the disk is gone")), "the disk is gone"));
    EXPECT_TRUE(has(failing(HTCErrors::invalid_option_value("word", "x y")),
                    "'x y' is not a valid value for option '-word'"));
    EXPECT_TRUE(has(failing(HTCErrors::multiple_occurrences("word")), "more than once"));
    EXPECT_TRUE(has(failing(HTCErrors::type_error()), "another type"));
    EXPECT_TRUE(has(failing(HTCErrors::index_out_of_range(7)), "index 7 is out of range"));
    EXPECT_TRUE(has(failing(HTCErrors::append_typed_collection()), "own type"));
    EXPECT_TRUE(has(failing(HTCErrors::append_untyped_collection()), "17-5009"));
    EXPECT_TRUE(has(failing(HTCErrors::not_implemented()), "not implemented"));
    EXPECT_TRUE(has(failing(std::runtime_error("plain words")), "plain words"));
    EXPECT_TRUE(has(failing(std::bad_alloc()), "17-5011"));
    EXPECT_TRUE(has(failing(42), "an unknown fault"));
}

TEST_F(Task, AnExceptionThatSpeaksForTheProgramIsAnError) {
    scripted::body = [](Tcl_Interp*, scripted&) -> int { throw HEXInternalException("a table is empty"); };
    EXPECT_EQ(error("trial::scripted"), "ERROR: [Common 17-5150] Internal fault: a table is empty.");
}

TEST_F(Task, AnErrorMessageSentByATaskFailsTheCall) {
    scripted::body = [](Tcl_Interp* interp, scripted& t) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-153@%s\n", "first");
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-153@%s\n", "second");
        static_cast<void>(interp);
        static_cast<void>(t);
        return TCL_OK;
    };
    EXPECT_EQ(error("trial::scripted"), "ERROR: [Common 17-153] No parameter is named 'first'.");
    scripted::halts = false;
    EXPECT_EQ(eval("trial::scripted"), "");
}

TEST_F(Task, AResultThatStandsIsNotReplacedByTheMessage) {
    scripted::body = [](Tcl_Interp* interp, scripted&) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-153@%s\n", "x");
        Tcl_SetResult(interp, const_cast<char*>("own words"), TCL_STATIC);
        return TCL_ERROR;
    };
    EXPECT_EQ(error("trial::scripted"), "own words");
}

TEST_F(Task, QuietHidesMessagesAndTheError) {
    scripted::body = [](Tcl_Interp* interp, scripted&) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-718@%s\n", "x");
        Tcl_SetResult(interp, const_cast<char*>("reason"), TCL_STATIC);
        return TCL_ERROR;
    };
    EXPECT_EQ(eval("trial::scripted -quiet"), "");
    EXPECT_EQ(console->all(), "");
    scripted::body = [](Tcl_Interp*, scripted&) -> int { throw HTCErrors::command_failed("x"); };
    EXPECT_EQ(eval("trial::scripted -quiet"), "");
}

TEST_F(Task, QuietCoversWhatTheCommandRuns) {
    std::vector<bool> quiet;
    scripted::body = [&](Tcl_Interp* interp, scripted& t) {
        quiet.push_back(task_manager::isQuietMode());
        return t.get_option<std::string>("word") == "outer" ? Tcl_Eval(interp, "trial::scripted inner")
                                                            : TCL_OK;
    };
    eval("trial::scripted -quiet outer; trial::scripted outer");
    EXPECT_EQ(quiet, (std::vector<bool>{true, true, false, false}));
}

TEST_F(Task, ADeprecatedTaskWarnsAndRuns) {
    scripted::advice = "Use trial::better.";
    eval("trial::scripted");
    EXPECT_TRUE(has(console->all(),
                    "WARNING: [Common 17-5013] 'trial::scripted' will be given up. Use trial::better."))
        << console->all();
}

TEST_F(Task, TheNoActionCodeIsNoErrorAndKeepsTheResult) {
    scripted::body = [](Tcl_Interp* interp, scripted& t) {
        static_cast<void>(t);
        Tcl_SetObjResult(interp, Tcl_NewIntObj(0));
        return task_manager::code_no_action;
    };
    EXPECT_EQ(task_manager::code_no_action, 9000);
    EXPECT_EQ(eval("trial::scripted"), "0");
}

TEST_F(Task, OtherCodesOfTclPass) {
    scripted::body = [](Tcl_Interp*, scripted&) { return TCL_BREAK; };
    EXPECT_EQ(eval("set n 0; while 1 {incr n; trial::scripted}; set n"), "1");
}

TEST_F(Task, CallsFailuresAndTimeAreCounted) {
    const task_statistics before = statistics("trial::scripted");
    eval("trial::scripted; trial::scripted");
    error("trial::scripted -nosuch");
    const task_statistics after = statistics("trial::scripted");
    EXPECT_EQ(after.calls - before.calls, 3u);
    EXPECT_EQ(after.failures - before.failures, 1u);
    EXPECT_GT(after.time.count(), before.time.count());
}

TEST_F(Task, TheTimeOfNestedCommandsCountsApart) {
    scripted::body = [](Tcl_Interp* interp, scripted& t) {
        return t.get_option<std::string>("word") == "outer" ? Tcl_Eval(interp, "trial::plain; after 30")
                                                            : TCL_OK;
    };
    eval("trial::scripted outer");
    const task_statistics s = statistics("trial::scripted");
    EXPECT_LE(s.ownTime, s.time);
}

TEST_F(Task, ATaskMayUnregisterItselfWithinItsOwnCall) {
    scripted::body = [](Tcl_Interp* interp, scripted& t) {
        EXPECT_TRUE(task_manager::unregisterFactory("trial::scripted"));
        EXPECT_EQ(Tcl_FindCommand(interp, "trial::scripted", nullptr, 0), nullptr);
        return Tcl_SetObjResult(interp, HTCTclEncoding::tclNewStringObj(t.get_option<std::string>("word"))),
               TCL_OK;
    };
    EXPECT_EQ(eval("trial::scripted still"), "still");
    EXPECT_TRUE(has(error("trial::scripted"), "invalid command name"));
    register_task<scripted>(interp);
    EXPECT_EQ(eval("trial::plain"), "");
}

TEST_F(Task, ACommandMayBeDeletedByAScriptAndRegisteredAgain) {
    eval("rename trial::scripted {}");
    error("trial::scripted");
    register_task<scripted>(interp);
    EXPECT_EQ(eval("trial::scripted"), "");
    EXPECT_EQ(console->all(), "") << "the options are not declared twice";
}

TEST_F(Task, UnregisteringInOneInterpreterLeavesTheOthers) {
    Tcl_Interp* other = Tcl_CreateInterp();
    HTCTclInterp::registerInterp(other);
    register_task<scripted>(other);
    EXPECT_TRUE(task_manager::unregisterFactory(other, "trial::scripted"));
    EXPECT_FALSE(task_manager::unregisterFactory(other, "trial::scripted"));
    EXPECT_EQ(Tcl_Eval(other, "trial::scripted"), TCL_ERROR);
    EXPECT_EQ(eval("trial::scripted"), "");
    EXPECT_EQ(task_manager::createTask(other, "trial::scripted"), nullptr);
    EXPECT_NE(task_manager::createTask(interp, "trial::scripted"), nullptr);
    register_task<scripted>(other);
    EXPECT_TRUE(task_manager::unregisterFactory("trial::scripted"));
    EXPECT_EQ(Tcl_Eval(other, "trial::scripted"), TCL_ERROR);
    error("trial::scripted");
    Tcl_DeleteInterp(other);
}

TEST_F(Task, AnInterpreterThatIsDeletedWithItsCommandsIsForgotten) {
    Tcl_Interp* other = Tcl_CreateInterp();
    HTCTclInterp::registerInterp(other);
    register_task<scripted>(other);
    Tcl_DeleteInterp(other);
    EXPECT_EQ(HTCTclInterp::threadOf(other), nullptr);
    EXPECT_TRUE(task_manager::unregisterFactory("trial::scripted"));
}

TEST_F(Task, TasksAreMadeByNameAndUnknownNamesGiveNone) {
    EXPECT_NE(task_manager::createTask("trial::scripted"), nullptr);
    EXPECT_NE(task_manager::createTask("::trial::scripted"), nullptr);
    EXPECT_EQ(task_manager::createTask("trial::nosuch"), nullptr);
    EXPECT_FALSE(task_manager::unregisterFactory("trial::nosuch"));
    std::vector<std::string> names;
    task_manager::getTaskNames(names);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_EQ(std::count(names.begin(), names.end(), "trial::scripted"), 1);
}

TEST_F(Task, ASecondInterpreterFindsTheOptionsDeclared) {
    Tcl_Interp* other = Tcl_CreateInterp();
    HTCTclInterp::registerInterp(other);
    register_task<scripted>(other);
    EXPECT_EQ(Tcl_Eval(other, "trial::scripted x"), TCL_OK);
    EXPECT_EQ(console->all(), "");
    Tcl_DeleteInterp(other);
}

TEST_F(Task, AResultOfEveryTypeHasAForm) {
    scripted::body = [](Tcl_Interp* interp, scripted& t) {
        struct access : scripted {
            using scripted::set_result;
        };
        auto& a = static_cast<access&>(t);
        EXPECT_EQ(a.set_result(interp, 5), 0);
        EXPECT_STREQ(Tcl_GetStringResult(interp), "5");
        EXPECT_EQ(a.set_result(interp, true), 0);
        EXPECT_STREQ(Tcl_GetStringResult(interp), "1");
        EXPECT_EQ(a.set_result(interp, static_cast<gate*>(nullptr)), 1);
        EXPECT_STREQ(Tcl_GetStringResult(interp), "1") << "no object, so the result stays";
        EXPECT_EQ(a.set_result(interp, "text"), 0);
        return TCL_OK;
    };
    EXPECT_EQ(eval("trial::scripted"), "text");
}

TEST_F(Task, HelpComesInThreeForms) {
    const auto task = task_manager::createTask("trial::scripted");
    EXPECT_EQ(task->task_help(interp, "syntax"), "SYNTAX\n  trial::scripted [-quiet] [-verbose] [<word>]\n");
    EXPECT_TRUE(has(task->task_help(interp, "args"), "A word."));
    EXPECT_TRUE(has(task->task_help(interp, "long"), "Do what the test says."));
}

TEST_F(Task, AnErrorIsShownOnceInACommand) {
    const task_manager::top_level scope("trial");
    task_manager::write_error_result("words of a script", 0);
    task_manager::write_error_result("", 0);
    EXPECT_EQ(console->all(), "ERROR: [Common 17-5020] words of a script\n");
    console->clear();
    task_manager::write_error_result("ERROR: [Common 17-153] as it is.", 0);
    task_manager::write_error_result("ERROR: [Common 17-153] as it is.", 0);
    EXPECT_EQ(console->all(), "ERROR: [Common 17-153] as it is.\n");
}

TEST_F(Task, TheMessageBehindAResultIsSentOnce) {
    scripted::body = [](Tcl_Interp*, scripted&) -> int {
        throw HEXError(ComMsgMgrInstance{"common", ComMsgMgr::MSGTYPE_ERROR, "@17-153@%s\n", "x"});
    };
    const task_manager::top_level scope("trial");
    error("trial::scripted");
    std::string line;
    task_manager::retrieve_and_send_except_msg_instance(line, 0);
    EXPECT_EQ(line, "ERROR: [Common 17-153] No parameter is named 'x'.");
    EXPECT_EQ(console->all(), line + "\n");
    eval("set x 1");
    task_manager::retrieve_and_send_except_msg_instance(line, 0);
    EXPECT_EQ(line, "");
}

TEST_F(Task, AScriptThatRecursesWithoutEndIsAnError) {
    scripted::body = [](Tcl_Interp* interp, scripted&) { return Tcl_Eval(interp, "trial::scripted"); };
    EXPECT_TRUE(has(error("trial::scripted"), "too many nested evaluations"));
}

} // namespace
