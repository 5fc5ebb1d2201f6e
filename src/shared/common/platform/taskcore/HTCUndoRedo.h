#pragma once

#include <deque>
#include <memory>
#include <string>
#include <tcl.h>
#include <vector>

#include "platform/tcl/tclobj_ref.h"

namespace vek::tcltasks {
class itask;
}

namespace HTCUndoRedo {

/// What can be undone and redone. A step is one command or one group of commands; a group counts as one step
/// however groups nest in it. Interpreter's thread only.
class Mgr {
public:
    static Mgr& instance();

    /// Takes back the last step, or brings it back; `interp` receives the reason when that fails. In an open
    /// group the commands that it holds so far are the last step. True if there was one and all of it
    /// succeeded; a step that fails half-way is first brought to where it was, and both stacks are then
    /// cleared, since nothing is known of the state behind them. Tells what was undone by an INFO and what
    /// failed by an ERROR. Within an undo or redo that is under way both do nothing and give false.
    bool undo(Tcl_Interp* interp);
    bool redo(Tcl_Interp* interp);

    /// The number of steps; what an open group holds counts as one.
    unsigned undoSize() const {
        return static_cast<unsigned>(m_undo.size()) + (m_open.commands.empty() ? 0 : 1);
    }
    unsigned redoSize() const { return static_cast<unsigned>(m_redo.size()); }
    /// One line for each step, the next one first.
    void listUndo(std::string& text) const;
    void listRedo(std::string& text) const;
    void clearUndoRedo();

    /// While disabled, nothing is recorded, and what was recorded is gone.
    void enableUndoStack();
    void disableUndoStack();

    /// Groups nest; commands between the outermost pair form one step. A group in which nothing happened
    /// leaves no step. \param display whether it is told when the group is undone or redone; both must say so
    void startGroup(bool display);
    void endGroup(bool display);
    bool isInGroup() const { return m_groupDepth > 0; }

    /// Notes a finished command that can be undone, and keeps its task alive for that. Drops what could be
    /// redone.
    void record(std::shared_ptr<vek::tcltasks::itask> task, int objc, Tcl_Obj* const* objv);
    /// Notes a finished command that changed what cannot be undone: nothing before it can be undone any more.
    void breakChain();
    /// True while commands are to be recorded at all.
    bool recording() const { return m_enabled && m_suspended == 0; }

    /// Keeps commands off the stack while it lives.
    class Suspend {
    public:
        Suspend() { ++instance().m_suspended; }
        ~Suspend() { --instance().m_suspended; }
        Suspend(const Suspend&) = delete;
        Suspend& operator=(const Suspend&) = delete;
    };

private:
    struct command {
        std::shared_ptr<vek::tcltasks::itask> task;
        vek::tcltasks::tclobj_ref words;
    };
    struct step {
        std::vector<command> commands;
        bool group = false;
        bool display = true;
    };
    using stack = std::deque<step>;

    bool move_step(stack& from, stack& to, Tcl_Interp* interp, bool undoing);
    void push(step finished);
    static std::string text_of(const command& one);
    static std::string text_of(const step& one);
    static void list(const stack& steps, std::string& text);
    static void tell(const step& moved, bool undoing);
    static void tell_failure(const command& failed, Tcl_Interp* interp, bool undoing);

    stack m_undo; // the newest at the back
    stack m_redo;
    step m_open; // the group that is being filled
    int m_groupDepth = 0;
    int m_suspended = 0;
    bool m_moving = false; // an undo or redo is under way
    bool m_enabled = true;
};

} // namespace HTCUndoRedo
