#pragma once

#include <map>
#include <string>
#include <tcl.h>

namespace vek::tcltasks::detail {

/// The bridge from the option model, whose tokens are strings, to the Tcl values of the call being parsed: a
/// token is only a key, the argument itself stays a Tcl_Obj*, so that lists and collections reach a task
/// without passing through their text. One parse at a time on a thread; each thread has its own.
struct tcl_globals {
    static thread_local Tcl_Interp* interp;
    static thread_local std::map<std::string, Tcl_Obj*> objv;

    /// The argument behind a token. A token that stands for no argument is taken as text of its own.
    static Tcl_Obj* argument(const std::string& token);
};

} // namespace vek::tcltasks::detail
