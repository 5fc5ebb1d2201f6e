#include "platform/taskcore/HTCUndoRedo.h"

#include <algorithm>

#include "platform/msg/ComMsgMgr.h"
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

// Enough of a command to know it by; commands may be of any length.
std::string beginning_of(const std::string& text) {
    constexpr size_t most = 200;
    if (text.size() <= most) {
        return text;
    }
    size_t end = most;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        --end;
    }
    return text.substr(0, end) + "...";
}

class set_and_restore {
public:
    set_and_restore(bool& place, bool value) : m_place(place), m_before(place) { m_place = value; }
    ~set_and_restore() { m_place = m_before; }
    set_and_restore(const set_and_restore&) = delete;
    set_and_restore& operator=(const set_and_restore&) = delete;

private:
    bool& m_place;
    const bool m_before;
};

int apply(vek::tcltasks::itask& task, Tcl_Interp* interp, Tcl_Obj* words, bool undoing) {
    int objc = 0;
    Tcl_Obj** objv = nullptr;
    Tcl_ListObjGetElements(nullptr, words, &objc, &objv);
    Tcl_ResetResult(interp);
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
    if (!m_moving && !m_open.commands.empty()) {
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
    if (m_moving || from.empty()) {
        return false;
    }
    const Suspend off;
    const set_and_restore moving(m_moving, true);
    step moved = std::move(from.back());
    from.pop_back();
    auto& commands = moved.commands;
    const size_t count = commands.size();
    for (size_t i = 0; i < count; ++i) {
        command& next = commands[undoing ? count - 1 - i : i];
        if (apply(*next.task, interp, next.words.get(), undoing) == TCL_OK) {
            continue;
        }
        tell_failure(next, interp, undoing);
        while (i-- > 0) {
            command& done = commands[undoing ? count - 1 - i : i];
            apply(*done.task, interp, done.words.get(), !undoing);
        }
        clearUndoRedo();
        return false;
    }
    to.push_back(std::move(moved));
    tell(to.back(), undoing);
    return true;
}

void Mgr::listUndo(std::string& text) const {
    list(m_undo, text);
    if (!m_open.commands.empty()) {
        text = text_of(m_open) + "\n" + text;
    }
}

void Mgr::listRedo(std::string& text) const {
    list(m_redo, text);
}

std::string Mgr::text_of(const command& one) {
    return HTCTclEncoding::tclGetString(one.words.get());
}

std::string Mgr::text_of(const step& one) {
    std::string text;
    for (const command& c : one.commands) {
        text += text.empty() ? "" : "; ";
        text += text_of(c);
    }
    return text;
}

void Mgr::list(const stack& steps, std::string& text) {
    text.clear();
    for (auto at = steps.rbegin(); at != steps.rend(); ++at) {
        text += text_of(*at) + "\n";
    }
}

void Mgr::tell(const step& moved, bool undoing) {
    if (!moved.display) {
        return;
    }
    const std::string what = moved.group
                                 ? "a group of commands (" + std::to_string(moved.commands.size()) + ")"
                                 : "'" + beginning_of(text_of(moved.commands.front())) + "'";
    if (undoing) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_INFO, "@17-5040@%s\n", what);
    } else {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_INFO, "@17-5041@%s\n", what);
    }
}

void Mgr::tell_failure(const command& failed, Tcl_Interp* interp, bool undoing) {
    const std::string reason = HTCTclEncoding::tclGetString(Tcl_GetObjResult(interp));
    const std::string why = reason.empty() ? "the command gives no reason" : reason;
    if (undoing) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5042@%s%s\n",
                           beginning_of(text_of(failed)), why);
    } else {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5043@%s%s\n",
                           beginning_of(text_of(failed)), why);
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
