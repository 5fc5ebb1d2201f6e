#pragma once

#include <tcl.h>

/// The entry points of the library. Each call makes all commands in the interpreter, sources
/// "scripts/builtin.tcl" from the application root unless the parameter tcl.launchTclThread forbids it,
/// exports
/// ::common and provides the package omu::commontasks. Process-wide work is done at the first call only,
/// which must not run at the same time as another. Call on the interpreter's thread. Returns a Tcl code; on
/// TCL_ERROR the reason is the interpreter's result, and what was registered before stays.
extern "C" int Omu_commontasks_Init(Tcl_Interp* interp);

/// Forwards to Omu_commontasks_Init.
extern "C" int Zq_commontasks_Init(Tcl_Interp* interp);
