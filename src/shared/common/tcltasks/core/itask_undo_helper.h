#pragma once

#include <type_traits>

#include "tcltasks/core/itask.h"

namespace vek::tcltasks {

/// Marker for tasks that need no other.
struct null_tag {};

/// Derive a task's tag from this one if running the command breaks the undo chain although it cannot be
/// undone itself.
struct breaks_undo {};

/// Derive a task's tag from this one if the command can be undone: the task then has undo() and redo(), and
/// lives on after its call as long as the undo stack holds it.
struct has_undo {};

namespace detail {

/// The undo part of a task in three shapes: <false, false> leaves the undo stack alone, <true, false> breaks
/// the undo chain, <false, true> is a real undo.
template <class T, bool Breaks, bool Real>
class itask_undo_helper : public virtual itask {
public:
    using itask::affects_undo;
    using itask::undo;
    virtual bool affects_undo() const { return Real; }
    virtual bool affects_undo(Tcl_Interp*) const { return Breaks || Real; }
    bool affects_undo(Tcl_Interp* interp, int, Tcl_Obj* const*) const override {
        return affects_undo(interp);
    }
};

template <class T>
class itask_undo_helper<T, false, true> : public virtual itask {
public:
    virtual bool affects_undo() const { return true; }
    virtual bool affects_undo(Tcl_Interp*) const { return affects_undo(); }
    bool affects_undo(Tcl_Interp* interp, int, Tcl_Obj* const*) const override {
        return affects_undo(interp);
    }
    bool can_undo(Tcl_Interp*, int, Tcl_Obj* const*) const override { return true; }
    /// Takes the command's effect back. Returns a Tcl code.
    virtual int undo() = 0;
    virtual int undo(Tcl_Interp*) { return undo(); }
    int undo(Tcl_Interp*, int, Tcl_Obj* const*) override { return undo(); }
};

/// The redo part: nothing, or a real redo.
template <class T, bool Real>
class itask_redo_helper : public virtual itask {};

template <class T>
class itask_redo_helper<T, true> : public virtual itask {
public:
    bool can_redo(Tcl_Interp*, int, Tcl_Obj* const*) const override { return true; }
    /// Brings the effect back that undo() took away. Returns a Tcl code.
    virtual int redo() = 0;
    int redo(Tcl_Interp*, int, Tcl_Obj* const*) override { return redo(); }
};

template <class T, class Tags>
using undo_helper_of =
    itask_undo_helper<T, std::is_base_of_v<breaks_undo, Tags>, std::is_base_of_v<has_undo, Tags>>;

template <class T, class Tags>
using redo_helper_of = itask_redo_helper<T, std::is_base_of_v<has_undo, Tags>>;

} // namespace detail
} // namespace vek::tcltasks
