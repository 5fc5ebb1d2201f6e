#pragma once

#include <string>
#include <tcl.h>

/// The interpreters that the library was loaded into.
class HTCTclInterp {
public:
    /// Records an interpreter with its thread. The first one is the default interpreter of the process. An
    /// interpreter leaves by itself when it is deleted. Call on the interpreter's own thread.
    static void registerInterp(Tcl_Interp* interp);

    /// The first registered interpreter that still lives, or null. Any thread.
    static Tcl_Interp* getDefaultInterp();

    /// The thread that owns a registered interpreter; null if it is not registered. Any thread.
    static Tcl_ThreadId threadOf(Tcl_Interp* interp);

    /// True for an interpreter that another one made. Interpreter's thread.
    static bool isSlave(Tcl_Interp* interp);

    /// Deletes an interpreter that another one made. One that is running a command lives on until that ends.
    /// Interpreter's thread.
    static void deleteSlaveHelper(Tcl_Interp* slave);

    /// Gives `slave` a command of `master`, the interpreter that made it: a task becomes a task of the slave
    /// itself, any other command an alias that runs in the master. Returns a Tcl code, with the reason in the
    /// slave's result. Interpreter's thread.
    static int registerSlaveTask(Tcl_Interp* master, Tcl_Interp* slave, const std::string& name);

    /// Calls `listener(interp)` when a registered interpreter is deleted. Listeners are never removed.
    static void onDelete(void (*listener)(Tcl_Interp*));
};
