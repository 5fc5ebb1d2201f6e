// The undo stack and the three shapes of a task that it knows.
#include "support.h"

#include <deque>
#include <random>

#include "platform/taskcore/HTCUndoRedo.h"

using namespace vek::tcltasks;
using HTCUndoRedo::Mgr;

namespace {

struct undoable : null_tag, has_undo {};
struct breaking : null_tag, breaks_undo {};

std::vector<std::string>& state() {
    static std::vector<std::string> words;
    return words;
}
bool refuseUndo = false;

/// Adds a word to the state, and can take it back.
class push : public HTCITaskHelper<push, undoable> {
public:
    static constexpr const char* command = "trial::push";
    static void load_description() {
        description_instance("Add a word.", "").add_options().add_option("word", options::text(), "The word");
        positional_instance().add("word", 1);
    }
    using HTCITaskHelper::redo;
    using HTCITaskHelper::undo;
    int execute(Tcl_Interp*) override {
        m_word = get_option<std::string>("word");
        return m_word == "fail" ? TCL_ERROR : redo();
    }
    int undo() override {
        if (refuseUndo && m_word == "stuck") {
            return TCL_ERROR;
        }
        EXPECT_EQ(state().back(), m_word) << "commands are undone in the wrong order";
        state().pop_back();
        return TCL_OK;
    }
    int redo() override {
        state().push_back(m_word);
        return TCL_OK;
    }

private:
    std::string m_word;
};

/// Pushes several words through other commands, and can take all of them back itself.
class push_all : public HTCITaskHelper<push_all, undoable> {
public:
    static constexpr const char* command = "trial::push_all";
    static void load_description() {
        description_instance("Add words.", "")
            .add_options()
            .add_option("words", options::words(), "The words");
        positional_instance().add("words", -1);
    }
    using HTCITaskHelper::redo;
    using HTCITaskHelper::undo;
    int execute(Tcl_Interp* interp) override {
        m_words = get_option<std::vector<std::string>>("words");
        for (const std::string& word : m_words) {
            tclcmd(interp, word);
        }
        return TCL_OK;
    }
    int undo() override {
        state().resize(state().size() - m_words.size());
        return TCL_OK;
    }
    int redo() override {
        state().insert(state().end(), m_words.begin(), m_words.end());
        return TCL_OK;
    }

private:
    static void tclcmd(Tcl_Interp* interp, const std::string& word) {
        Tcl_Eval(interp, ("trial::push " + word).c_str());
    }
    std::vector<std::string> m_words;
};

/// Changes what cannot be taken back.
class settle : public HTCITaskHelper<settle, breaking> {
public:
    static constexpr const char* command = "trial::settle";
    static void load_description() { description_instance("Settle.", ""); }
    int execute(Tcl_Interp*) override { return TCL_OK; }
};

/// Has nothing to do with undo.
class look : public HTCITaskHelper<look> {
public:
    static constexpr const char* command = "trial::look";
    static void load_description() { description_instance("Look.", ""); }
    int execute(Tcl_Interp*) override { return TCL_OK; }
};

class Undo : public TaskTest {
protected:
    Undo() {
        register_task<push>(interp);
        register_task<push_all>(interp);
        register_task<settle>(interp);
        register_task<look>(interp);
        state().clear();
        refuseUndo = false;
        undo.clearUndoRedo();
        undo.enableUndoStack();
    }
    using words = std::vector<std::string>;
    Mgr& undo = Mgr::instance();
};

TEST_F(Undo, TheShapesAnswerAsTheirTagsSay) {
    const auto shape = [&](const char* name) {
        const auto task = task_manager::createTask(name);
        return std::vector<bool>{task->affects_undo(interp, 0, nullptr), task->can_undo(interp, 0, nullptr),
                                 task->can_redo(interp, 0, nullptr)};
    };
    EXPECT_EQ(shape("trial::push"), (std::vector<bool>{true, true, true}));
    EXPECT_EQ(shape("trial::settle"), (std::vector<bool>{true, false, false}));
    EXPECT_EQ(shape("trial::look"), (std::vector<bool>{false, false, false}));
    push real;
    EXPECT_TRUE(real.affects_undo());
    EXPECT_TRUE(real.affects_undo(interp));
    settle half;
    EXPECT_FALSE(half.affects_undo());
    EXPECT_TRUE(half.affects_undo(interp));
}

TEST_F(Undo, EveryFormOfUndoAndRedoReachesTheTask) {
    push task;
    task.redo();
    EXPECT_EQ(task.undo(interp), TCL_OK);
    EXPECT_EQ(task.redo(interp, 0, nullptr), TCL_OK);
    EXPECT_EQ(task.undo(interp, 0, nullptr), TCL_OK);
    EXPECT_EQ(state(), words{});
}

TEST_F(Undo, ATaskLivesOnAndIsUndoneAndRedone) {
    eval("trial::push a; trial::push b");
    EXPECT_EQ(undo.undoSize(), 2u);
    EXPECT_TRUE(undo.undo(interp));
    EXPECT_EQ(state(), words{"a"});
    EXPECT_TRUE(undo.redo(interp));
    EXPECT_EQ(state(), (words{"a", "b"}));
    EXPECT_FALSE(undo.redo(interp));
    undo.undo(interp);
    undo.undo(interp);
    EXPECT_FALSE(undo.undo(interp));
    EXPECT_EQ(undo.redoSize(), 2u);
}

TEST_F(Undo, ANewCommandDropsWhatCouldBeRedone) {
    eval("trial::push a");
    undo.undo(interp);
    eval("trial::push b");
    EXPECT_EQ(undo.redoSize(), 0u);
}

TEST_F(Undo, AFailedCommandIsNotRecorded) {
    error("trial::push fail");
    EXPECT_EQ(undo.undoSize(), 0u);
}

TEST_F(Undo, ACommandThatCannotBeUndoneBreaksTheChain) {
    eval("trial::push a; trial::look");
    EXPECT_EQ(undo.undoSize(), 1u);
    eval("trial::settle");
    EXPECT_EQ(undo.undoSize(), 0u);
}

TEST_F(Undo, ListsNameTheNextStepFirst) {
    eval("trial::push a; trial::push {b c}");
    std::string text;
    undo.listUndo(text);
    EXPECT_EQ(text, "trial::push {b c}\ntrial::push a\n");
    undo.undo(interp);
    undo.listRedo(text);
    EXPECT_EQ(text, "trial::push {b c}\n");
}

TEST_F(Undo, AGroupIsOneStepHoweverItNests) {
    undo.startGroup(true);
    EXPECT_TRUE(undo.isInGroup());
    eval("trial::push a");
    undo.startGroup(true);
    eval("trial::push b");
    undo.endGroup(true);
    EXPECT_TRUE(undo.isInGroup());
    eval("trial::push c");
    undo.endGroup(true);
    EXPECT_FALSE(undo.isInGroup());
    EXPECT_EQ(undo.undoSize(), 1u);
    undo.undo(interp);
    EXPECT_EQ(state(), words{});
    undo.redo(interp);
    EXPECT_EQ(state(), (words{"a", "b", "c"}));
}

TEST_F(Undo, AGroupInWhichNothingHappenedLeavesNoStep) {
    undo.startGroup(true);
    eval("trial::look");
    undo.endGroup(true);
    undo.endGroup(true);
    EXPECT_EQ(undo.undoSize(), 0u);
    EXPECT_FALSE(undo.isInGroup());
}

TEST_F(Undo, InAnOpenGroupWhatItHoldsIsUndoneFirst) {
    eval("trial::push a");
    undo.startGroup(true);
    eval("trial::push b; trial::push c");
    EXPECT_TRUE(undo.undo(interp));
    EXPECT_EQ(state(), words{"a"});
    EXPECT_TRUE(undo.isInGroup());
    eval("trial::push d");
    undo.endGroup(true);
    undo.undo(interp);
    EXPECT_EQ(state(), words{"a"});
    undo.undo(interp);
    EXPECT_EQ(state(), words{});
}

TEST_F(Undo, ACommandThatUndoesWhatItRanIsOneStep) {
    eval("trial::push_all a b c");
    EXPECT_EQ(undo.undoSize(), 1u);
    undo.undo(interp);
    EXPECT_EQ(state(), words{});
    undo.redo(interp);
    EXPECT_EQ(state().size(), 3u);
}

TEST_F(Undo, AStepThatFailsHalfWayIsBroughtBackAndNothingIsKept) {
    undo.startGroup(true);
    eval("trial::push stuck; trial::push b");
    undo.endGroup(true);
    refuseUndo = true;
    EXPECT_FALSE(undo.undo(interp));
    EXPECT_EQ(state(), (words{"stuck", "b"}));
    EXPECT_EQ(undo.undoSize(), 0u);
}

TEST_F(Undo, WhileDisabledNothingIsRecorded) {
    eval("trial::push a");
    undo.disableUndoStack();
    EXPECT_EQ(undo.undoSize(), 0u);
    eval("trial::push b");
    EXPECT_EQ(undo.undoSize(), 0u);
    undo.enableUndoStack();
    eval("trial::push c");
    EXPECT_EQ(undo.undoSize(), 1u);
}

TEST_F(Undo, AnEvaluationMayStayOffTheStack) {
    task_manager::eval_in_tcl(interp, "trial::push a", task_manager::dont_record_command, true);
    EXPECT_EQ(undo.undoSize(), 0u);
    task_manager::eval_in_tcl(interp, "trial::push b", task_manager::dont_record_command, false);
    EXPECT_EQ(undo.undoSize(), 1u);
}

TEST_F(Undo, StepsOfAnInterpreterThatIsGoneAreStillUndone) {
    Tcl_Interp* other = Tcl_CreateInterp();
    register_task<push>(other);
    Tcl_Eval(other, "trial::push a");
    Tcl_DeleteInterp(other);
    EXPECT_TRUE(undo.undo(interp));
    EXPECT_EQ(state(), words{});
}

TEST_F(Undo, RandomSequencesAgreeWithAModel) {
    const ParamScope bound("tcl.undoStackSize", "6");
    std::mt19937 random(11);
    const auto below = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); };
    // Each step of the model is the state before and after it.
    struct step {
        words before, after;
    };
    std::deque<step> done, undone;
    words groupStart;
    bool groupUsed = false;
    int depth = 0;
    const auto close = [&] {
        if (groupUsed) {
            done.push_back({groupStart, state()});
        }
        if (done.size() > 6) {
            done.pop_front();
        }
        groupUsed = false;
        groupStart = state();
    };
    for (int i = 0; i < 20000; ++i) {
        switch (below(12)) {
        case 0:
        case 1:
        case 2:
        case 3: {
            const words before = state();
            eval("trial::push w" + std::to_string(below(5)));
            undone.clear();
            if (depth > 0) {
                groupUsed = true;
            } else {
                groupStart = before;
                groupUsed = true;
                close();
            }
            break;
        }
        case 4:
        case 5:
        case 6: {
            close();
            ASSERT_EQ(undo.undo(interp), !done.empty());
            if (!done.empty()) {
                ASSERT_EQ(state(), done.back().before) << "step " << i;
                undone.push_back(done.back());
                done.pop_back();
            }
            groupStart = state();
            break;
        }
        case 7:
        case 8:
            ASSERT_EQ(undo.redo(interp), !undone.empty());
            if (!undone.empty()) {
                ASSERT_EQ(state(), undone.back().after) << "step " << i;
                done.push_back(undone.back());
                undone.pop_back();
            }
            groupStart = groupUsed ? groupStart : state();
            break;
        case 9:
            if (depth++ == 0) {
                groupStart = state();
            }
            undo.startGroup(true);
            break;
        case 10:
            undo.endGroup(true);
            if (depth > 0 && --depth == 0) {
                close();
            }
            break;
        case 11:
            if (below(40) == 0) {
                eval("trial::settle");
                done.clear();
                undone.clear();
                groupUsed = false;
                groupStart = state();
            }
            break;
        }
        ASSERT_EQ(undo.undoSize(), done.size() + (groupUsed ? 1 : 0)) << "step " << i;
        ASSERT_EQ(undo.redoSize(), undone.size()) << "step " << i;
        ASSERT_EQ(undo.isInGroup(), depth > 0);
    }
    while (undo.isInGroup()) {
        undo.endGroup(true);
    }
}

} // namespace
