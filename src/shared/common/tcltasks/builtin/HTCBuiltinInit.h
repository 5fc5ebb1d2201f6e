#pragma once

#include <tcl.h>

/// Registration of the commands that replace Tcl's own and of those that stand beside them.
namespace HTCBuiltinInit {

/// A unit of object commands, which die with their interpreter.
struct object_commands {
    static void uninit() {}
};

struct source_cmds {
    static void init(Tcl_Interp* interp);
    static void uninit();
};
struct HTCCatch : object_commands {
    static void init(Tcl_Interp* interp);
};
struct HTCOmuSubst : object_commands {
    static void init(Tcl_Interp* interp);
};
struct HTCForeach : object_commands {
    static void init(Tcl_Interp* interp);
};
struct HTCAlias : object_commands {
    static void init(Tcl_Interp* interp);
};
struct HTCJoin : object_commands {
    static void init(Tcl_Interp* interp);
};
struct HTCLappend : object_commands {
    static void init(Tcl_Interp* interp);
};
struct HTCLindex : object_commands {
    static void init(Tcl_Interp* interp);
};
struct HTCLlength : object_commands {
    static void init(Tcl_Interp* interp);
};
struct HTCLsearch : object_commands {
    static void init(Tcl_Interp* interp);
};
struct HTCSlave {
    static void init(Tcl_Interp* interp);
    static void uninit();
};
struct HTCShell : object_commands {
    static void init(Tcl_Interp* interp);
};
struct HTCLoad : object_commands {
    static void init(Tcl_Interp* interp);
};
struct HTCSubst : object_commands {
    static void init(Tcl_Interp* interp);
};

/// The commands that write encrypted scripts.
struct script_cmds {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

} // namespace HTCBuiltinInit
