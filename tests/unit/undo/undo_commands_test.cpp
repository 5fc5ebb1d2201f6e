// undo, redo, startgroup and endgroup as a script uses them, on commands that change a small state.
#include <deque>
#include <map>
#include <optional>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../support/ConsoleTest.h"
#include "../support/RecordingSink.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/taskcore/HTCUndoRedo.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

using values = std::map<std::string, std::string>;

values& state() {
    static values& instance = *new values;
    return instance;
}

/// The name whose changes back and forth are refused.
std::string& stuck() {
    static std::string& instance = *new std::string;
    return instance;
}

struct undoable : has_undo {};

/// sample::put NAME VALUE: gives a name a value, or takes it away with an empty one.
class put : public HTCITaskHelper<put, undoable> {
public:
    static constexpr const char* command = "sample::put";

    static void load_description() {
        description_instance("Give a name a value.", "")
            .add_options()
            .add_option("name", options::text(), "The name")
            .add_option("value", options::text(), "Its value");
        positional_instance().add("name", 1).add("value", 1);
    }

    using HTCITaskHelper::redo;
    using HTCITaskHelper::undo;

    int execute(Tcl_Interp*) override {
        m_name = get_option<std::string>("name");
        m_after = get_option<std::string>("value");
        m_before = state().count(m_name) ? state()[m_name] : "";
        assign(m_after);
        if (m_name == "half") {
            assign(m_before);
            throw HTCErrors::command_failed("it cannot be finished");
        }
        return TCL_OK;
    }
    int undo() override { return change(m_before); }
    int redo() override { return change(m_after); }

private:
    int change(const std::string& value) {
        if (m_name == stuck()) {
            throw HTCErrors::command_failed("the value is held");
        }
        assign(value);
        return TCL_OK;
    }
    void assign(const std::string& value) {
        if (value.empty()) {
            state().erase(m_name);
        } else {
            state()[m_name] = value;
        }
    }

    std::string m_name, m_before, m_after;
};

/// sample::script WORD: runs a script when it is undone.
class script : public HTCITaskHelper<script, undoable> {
public:
    static constexpr const char* command = "sample::script";

    static void load_description() {
        description_instance("Run a script later.", "")
            .add_options()
            .add_option("script", options::text(), "The script");
        positional_instance().add("script", 1);
    }

    using HTCITaskHelper::redo;
    using HTCITaskHelper::undo;

    int execute(Tcl_Interp* interp) override {
        m_interp = interp;
        m_script = get_option<std::string>("script");
        return TCL_OK;
    }
    int undo() override { return Tcl_Eval(m_interp, m_script.c_str()); }
    int redo() override { return TCL_OK; }

private:
    Tcl_Interp* m_interp = nullptr;
    std::string m_script;
};

class UndoCommands : public ConsoleTest {
protected:
    UndoCommands() {
        register_task<put>(interp);
        register_task<script>(interp);
        ComMsgMgr::uninit();
        ComMsgMgr::setSink(ComMsgMgr::Destination::console, console);
        state().clear();
        stuck().clear();
        eval("undo -enable; undo -clear");
    }
    ~UndoCommands() override {
        HTCUndoRedo::Mgr& stack = HTCUndoRedo::Mgr::instance();
        while (stack.isInGroup()) {
            stack.endGroup(true);
        }
        stack.clearUndoRedo();
        ComMsgMgr::setSink(ComMsgMgr::Destination::console, nullptr);
    }

    std::shared_ptr<RecordingSink> console = std::make_shared<RecordingSink>();
};

TEST_F(UndoCommands, UndoTakesBackAndRedoBringsBack) {
    eval("sample::put a 1; sample::put a 2");
    EXPECT_EQ(eval("undo"), "");
    EXPECT_EQ(state(), (values{{"a", "1"}}));
    EXPECT_EQ(eval("undo; undo -size"), "0");
    EXPECT_EQ(state(), values{});
    EXPECT_EQ(eval("redo -size"), "2");
    EXPECT_EQ(eval("redo; redo"), "");
    EXPECT_EQ(state(), (values{{"a", "2"}}));
}

TEST_F(UndoCommands, AnEmptyStackIsToldAndChangesNothing) {
    state()["a"] = "1";
    EXPECT_EQ(error("undo"), "");
    EXPECT_EQ(error("redo"), "");
    EXPECT_EQ(console->all(), "INFO: [Common 17-174] There is nothing to undo.\n"
                              "INFO: [Common 17-173] There is nothing to redo.\n");
    EXPECT_EQ(state(), (values{{"a", "1"}}));
    EXPECT_EQ(eval("undo -quiet"), "");
}

TEST_F(UndoCommands, UndoPastTheEndStopsAtTheStart) {
    eval("sample::put a 1; sample::put b 2");
    EXPECT_EQ(eval("set n 0; while {![catch undo]} {incr n}; set n"), "2");
    EXPECT_EQ(state(), values{});
    EXPECT_EQ(eval("set n 0; while {![catch redo]} {incr n}; set n"), "2");
    EXPECT_EQ(state(), (values{{"a", "1"}, {"b", "2"}}));
}

TEST_F(UndoCommands, ListsNameTheStepsNextFirst) {
    eval(
        "sample::put a 1; startgroup; sample::put b 2; sample::put c {3 4}; endgroup; sample::put d 5; undo");
    EXPECT_EQ(eval("undo -list"), "sample::put b 2; sample::put c {3 4}\nsample::put a 1\n");
    EXPECT_EQ(eval("redo -list"), "sample::put d 5\n");
    EXPECT_EQ(eval("undo -size"), "2");
    EXPECT_EQ(eval("redo -size"), "1");
}

TEST_F(UndoCommands, ClearForgetsBothWays) {
    eval("sample::put a 1; sample::put b 2; undo; undo -clear");
    EXPECT_EQ(eval("list [undo -size] [redo -size]"), "0 0");
    eval("sample::put a 1; sample::put b 2; undo; redo -clear");
    EXPECT_EQ(eval("list [undo -size] [redo -size]"), "0 0");
}

TEST_F(UndoCommands, WhileDisabledNothingIsRecorded) {
    eval("sample::put a 1; undo -disable; sample::put a 2");
    EXPECT_EQ(eval("undo -size"), "0");
    eval("undo -enable; sample::put a 3");
    EXPECT_EQ(eval("undo -size"), "1");
    eval("undo");
    EXPECT_EQ(state(), (values{{"a", "2"}}));
}

TEST_F(UndoCommands, TheFirstOfSeveralRequestsCounts) {
    eval("sample::put a 1");
    EXPECT_EQ(eval("undo -list -size"), "1");
    EXPECT_EQ(eval("undo -size -clear"), "");
    EXPECT_EQ(eval("undo -size"), "0");
    EXPECT_EQ(eval("undo -disable -clear"), "");
    eval("sample::put a 2");
    EXPECT_EQ(eval("undo -size"), "1") << "-clear came before -disable";
}

TEST_F(UndoCommands, AGroupIsOneStepHoweverItNests) {
    EXPECT_EQ(eval("startgroup"), "1");
    EXPECT_EQ(eval("sample::put a 1; startgroup"), "1");
    EXPECT_EQ(eval("sample::put b 2; endgroup; sample::put c 3; endgroup"), "");
    EXPECT_EQ(eval("undo -size"), "1");
    eval("undo");
    EXPECT_EQ(state(), values{});
    eval("redo");
    EXPECT_EQ(state(), (values{{"a", "1"}, {"b", "2"}, {"c", "3"}}));
}

TEST_F(UndoCommands, TryStartsOneGroupOnly) {
    EXPECT_EQ(eval("startgroup -try"), "1");
    EXPECT_EQ(eval("startgroup -try"), "0");
    eval("sample::put a 1; endgroup; sample::put b 2");
    EXPECT_EQ(eval("undo -size"), "2") << "one endgroup ended the group";
}

TEST_F(UndoCommands, AGroupWithoutCommandsIsNoStep) {
    eval("startgroup; endgroup; endgroup; set x 1");
    EXPECT_EQ(eval("undo -size"), "0");
}

TEST_F(UndoCommands, UndoInAnOpenGroupWarnsAndTakesBackWhatItHolds) {
    eval("sample::put a 1; startgroup; sample::put a 2; sample::put b 3");
    EXPECT_EQ(eval("undo -size"), "2");
    EXPECT_EQ(eval("undo -list"), "sample::put a 2; sample::put b 3\nsample::put a 1\n");
    eval("undo");
    EXPECT_THAT(console->all(), HasSubstr("WARNING: [Common 17-378]"));
    EXPECT_EQ(state(), (values{{"a", "1"}}));
    eval("redo");
    EXPECT_THAT(console->all(), HasSubstr("WARNING: [Common 17-377]"));
    EXPECT_EQ(state(), (values{{"a", "2"}, {"b", "3"}}));
    eval("sample::put c 4; endgroup; undo; undo; undo");
    EXPECT_EQ(state(), values{});
}

TEST_F(UndoCommands, AnOpenGroupAloneCanBeUndone) {
    eval("startgroup; sample::put a 1; undo");
    EXPECT_EQ(state(), values{});
}

TEST_F(UndoCommands, WhatWasUndoneIsTold) {
    eval("sample::put a {1 2}; undo; redo; startgroup; sample::put b 1; sample::put c 2; endgroup; undo");
    EXPECT_THAT(console->all(), HasSubstr("INFO: [Common 17-5040] Undone: 'sample::put a {1 2}'.\n"));
    EXPECT_THAT(console->all(), HasSubstr("INFO: [Common 17-5041] Redone: 'sample::put a {1 2}'.\n"));
    EXPECT_THAT(console->all(), HasSubstr("Undone: a group of commands (2).\n"));
    console->clear();
    eval("sample::put a [string repeat \\u4e2d 100000]; undo");
    EXPECT_LT(console->all().size(), 300u);
    EXPECT_THAT(console->all(), HasSubstr("\u4e2d...'."));
}

TEST_F(UndoCommands, NodisplayKeepsAGroupFromBeingTold) {
    eval("startgroup; sample::put a 1; endgroup -nodisplay; undo; redo");
    EXPECT_EQ(console->all(), "");
    EXPECT_EQ(state(), (values{{"a", "1"}}));
}

TEST_F(UndoCommands, SetParamBreaksTheChain) {
    eval("sample::put a 1; set_param general.maxThreads 3");
    EXPECT_EQ(eval("undo -size"), "0");
    eval("sample::put a 2; undo");
    EXPECT_EQ(state(), (values{{"a", "1"}})) << "what comes after it is undone as ever";
    eval("redo; undo; set_param general.maxThreads 4");
    EXPECT_EQ(eval("redo -size"), "0");
    const auto task = task_manager::createTask("common::set_param");
    EXPECT_TRUE(task->affects_undo(interp, 0, nullptr));
    EXPECT_FALSE(task->can_undo(interp, 0, nullptr));
    eval("reset_param general.maxThreads");
}

TEST_F(UndoCommands, AFailedSetParamLeavesTheChain) {
    eval("sample::put a 1; catch {set_param general.maxThreads nosense}");
    EXPECT_EQ(eval("undo -size"), "1");
}

TEST_F(UndoCommands, GetParamAndReportsLeaveTheChain) {
    eval("sample::put a 1; get_param tcl.notrace; report_param -return_string; list_param; history add x");
    EXPECT_EQ(eval("undo -size"), "1");
}

TEST_F(UndoCommands, ACommandThatFailsHalfWayIsNoStep) {
    eval("sample::put a 1");
    EXPECT_THAT(error("sample::put half 2"), HasSubstr("it cannot be finished"));
    EXPECT_EQ(eval("undo -size"), "1");
    eval("undo");
    EXPECT_EQ(state(), values{});
}

TEST_F(UndoCommands, AGroupThatFailsHalfWayIsBroughtBackAndTold) {
    eval("sample::put z 0; startgroup; sample::put a 1; sample::put b 2; sample::put c 3; endgroup");
    const values before = state();
    stuck() = "b";
    EXPECT_EQ(error("undo"),
              "ERROR: [Common 17-5042] 'sample::put b 2' could not be undone: the value is held. "
              "Nothing can be undone or redone any more.");
    EXPECT_EQ(state(), before);
    EXPECT_EQ(eval("list [undo -size] [redo -size]"), "0 0");
    EXPECT_THAT(console->all(), Not(HasSubstr("Undone")));
    stuck().clear();
    eval("startgroup; sample::put d 4; sample::put e 5; endgroup; undo");
    stuck() = "e";
    EXPECT_THAT(error("redo"), HasSubstr("17-5043"));
    EXPECT_EQ(state(), before);
}

TEST_F(UndoCommands, AnUndoWithinAnUndoDoesNothing) {
    eval("sample::put a 1; sample::script {catch common::undo; catch common::redo}; undo");
    EXPECT_EQ(state(), (values{{"a", "1"}}));
    EXPECT_EQ(eval("list [undo -size] [redo -size]"), "1 1");
}

TEST_F(UndoCommands, TheStackIsBoundByItsParameter) {
    eval("set_param tcl.undoStackSize 3; for {set i 1} {$i <= 10} {incr i} {sample::put a $i}");
    EXPECT_EQ(eval("undo -size"), "3");
    eval("undo; undo; undo");
    EXPECT_EQ(state(), (values{{"a", "7"}}));
    eval("reset_param tcl.undoStackSize");
}

TEST_F(UndoCommands, UnknownOptionsAndWordsAreRefused) {
    EXPECT_THAT(error("undo 3"), HasSubstr("17-5006"));
    EXPECT_THAT(error("redo -disable"), HasSubstr("17-5001"));
    EXPECT_THAT(error("endgroup -try"), HasSubstr("17-5001"));
}

/// What the commands should do, with whole states in place of steps.
class Model {
public:
    explicit Model(size_t bound) : m_bound(bound) {}

    void put(const std::string& name, const std::string& value) {
        m_redo.clear();
        if (m_depth == 0) {
            remember(m_now);
        } else if (!m_groupStart) {
            m_groupStart = m_now;
        }
        m_now[name] = value;
    }
    void start() { ++m_depth; }
    void end() {
        if (m_depth > 0 && --m_depth == 0) {
            close();
        }
    }
    bool undo() {
        close();
        return move(m_undo, m_redo);
    }
    bool redo() { return move(m_redo, m_undo); }
    void forget() {
        m_undo.clear();
        m_redo.clear();
        m_groupStart.reset();
    }
    const values& now() const { return m_now; }
    size_t undoSize() const { return m_undo.size() + (m_groupStart ? 1 : 0); }
    size_t redoSize() const { return m_redo.size(); }
    bool inGroup() const { return m_depth > 0; }

private:
    void remember(const values& before) {
        m_undo.push_back(before);
        if (m_undo.size() > m_bound) {
            m_undo.pop_front();
        }
    }
    void close() {
        if (m_groupStart) {
            remember(*m_groupStart);
            m_groupStart.reset();
        }
    }
    bool move(std::deque<values>& from, std::deque<values>& to) {
        if (from.empty()) {
            return false;
        }
        to.push_back(m_now);
        m_now = from.back();
        from.pop_back();
        return true;
    }

    size_t m_bound;
    values m_now;
    std::deque<values> m_undo, m_redo;
    std::optional<values> m_groupStart; // the state before the open group's first command
    int m_depth = 0;
};

TEST_F(UndoCommands, ThousandsOfSetsGroupsUndosAndRedosRestoreTheExactState) {
    eval("set_param tcl.undoStackSize 25");
    for (const unsigned seed : {1u, 2u, 3u, 4u}) {
        std::mt19937 random(seed);
        const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
        eval("undo -clear");
        state().clear();
        Model model(25);
        for (int i = 0; i < 5000; ++i) {
            const unsigned choice = below(100);
            if (choice < 40) {
                const std::string name(1, static_cast<char>('a' + below(6)));
                const std::string value = std::to_string(below(1000));
                eval("sample::put " + name + ' ' + value);
                model.put(name, value);
            } else if (choice < 62) {
                const bool moved = model.undo();
                EXPECT_EQ(Tcl_Eval(interp, "undo"), moved ? TCL_OK : TCL_ERROR);
            } else if (choice < 78) {
                const bool moved = model.redo();
                EXPECT_EQ(Tcl_Eval(interp, "redo"), moved ? TCL_OK : TCL_ERROR);
            } else if (choice < 86) {
                eval("startgroup");
                model.start();
            } else if (choice < 90) {
                const bool within = model.inGroup();
                EXPECT_EQ(eval("startgroup -try"), within ? "0" : "1");
                if (!within) {
                    model.start();
                }
            } else if (choice < 98) {
                eval(below(2) ? "endgroup" : "endgroup -nodisplay");
                model.end();
            } else if (choice == 98) {
                eval("catch {sample::put half x}");
            } else if (below(10) == 0) {
                eval("set_param general.maxThreads 5");
                model.forget();
            }
            ASSERT_EQ(state(), model.now()) << "seed " << seed << ", step " << i;
            ASSERT_EQ(eval("list [undo -size] [redo -size]"),
                      std::to_string(model.undoSize()) + ' ' + std::to_string(model.redoSize()))
                << "seed " << seed << ", step " << i;
        }
        while (model.inGroup()) {
            eval("endgroup");
            model.end();
        }
    }
    eval("reset_param tcl.undoStackSize; reset_param general.maxThreads");
}

} // namespace
