#include "platform/taskcore/HTCUndoRedo.h"

#include <algorithm>

#include "platform/param/HPAParamMgr.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "tcltasks/core/itask.h"

namespace HTCUndoRedo {

using vek::tcltasks::tclobj_ref;

namespace {

size_t most_steps() {
    static const HPAParam* const bound = HPAParamMgr::getParamMgr().findParam("tcl.undoStackSize");
    return bound ? static_cast<size_t>(std::max(1, bound->int_value())) : 100;
}

int apply(vek::tcltasks::itask& task, Tcl_Interp* interp, Tcl_Obj* words, bool undoing) {
    int objc = 0;
    Tcl_Obj** objv = nullptr;
    Tcl_ListObjGetElements(nullptr, words, &objc, &objv);
    try {
        return undoing ? task.undo(interp, objc, objv) : task.redo(interp, objc, objv);
    } catch (const std::exception& failure) {
        Tcl_SetObjResult(interp, HTCTclEncoding::tclNewStringObj(failure.what()));
        return TCL_ERROR;
    }
}

} // namespace

Mgr& Mgr::instance() {
    // Never destroyed: tasks of libraries that are gone at exit must not be called again.
    static Mgr& manager = *new Mgr;
    return manager;
}

bool Mgr::undo(Tcl_Interp* interp) {
    if (!m_open.commands.empty()) {
        // What the open group holds came last, so it goes first; the group itself stays open.
        const bool display = m_open.display;
        push(std::move(m_open));
        m_open = step{{}, true, display};
    }
    return move_step(m_undo, m_redo, interp, true);
}

bool Mgr::redo(Tcl_Interp* interp) {
    return move_step(m_redo, m_undo, interp, false);
}

bool Mgr::move_step(stack& from, stack& to, Tcl_Interp* interp, bool undoing) {
    if (from.empty()) {
        return false;
    }
    const Suspend off;
    step moved = std::move(from.back());
    from.pop_back();
    auto& commands = moved.commands;
    const size_t count = commands.size();
    for (size_t i = 0; i < count; ++i) {
        command& next = commands[undoing ? count - 1 - i : i];
        if (apply(*next.task, interp, next.words.get(), undoing) == TCL_OK) {
            continue;
        }
        while (i-- > 0) {
            command& done = commands[undoing ? count - 1 - i : i];
            apply(*done.task, interp, done.words.get(), !undoing);
        }
        clearUndoRedo();
        return false;
    }
    to.push_back(std::move(moved));
    return true;
}

void Mgr::listUndo(std::string& text) const {
    list(m_undo, text);
}

void Mgr::listRedo(std::string& text) const {
    list(m_redo, text);
}

void Mgr::list(const stack& steps, std::string& text) {
    text.clear();
    for (auto at = steps.rbegin(); at != steps.rend(); ++at) {
        std::string line;
        for (const command& c : at->commands) {
            line += line.empty() ? "" : "; ";
            line += HTCTclEncoding::tclGetString(c.words.get());
        }
        text += line + "\n";
    }
}

void Mgr::clearUndoRedo() {
    m_undo.clear();
    m_redo.clear();
    m_open.commands.clear();
}

void Mgr::enableUndoStack() {
    m_enabled = true;
}

void Mgr::disableUndoStack() {
    m_enabled = false;
    clearUndoRedo();
}

void Mgr::startGroup(bool display) {
    if (m_groupDepth++ == 0) {
        m_open = step{{}, true, display};
    }
}

void Mgr::endGroup(bool display) {
    if (m_groupDepth == 0 || --m_groupDepth > 0) {
        return;
    }
    m_open.display = m_open.display && display;
    if (!m_open.commands.empty()) {
        push(std::move(m_open));
    }
    m_open = step{};
}

void Mgr::record(std::shared_ptr<vek::tcltasks::itask> task, int objc, Tcl_Obj* const* objv) {
    if (!recording()) {
        return;
    }
    m_redo.clear();
    command done{std::move(task), tclobj_ref(Tcl_NewListObj(objc, objv))};
    if (isInGroup()) {
        m_open.commands.push_back(std::move(done));
    } else {
        step single;
        single.commands.push_back(std::move(done));
        push(std::move(single));
    }
}

void Mgr::push(step finished) {
    m_undo.push_back(std::move(finished));
    while (m_undo.size() > most_steps()) {
        m_undo.pop_front();
    }
}

void Mgr::breakChain() {
    if (recording()) {
        clearUndoRedo();
    }
}

} // namespace HTCUndoRedo
