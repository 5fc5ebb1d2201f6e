#pragma once

#include <tcl.h>

/// The entry point of the netlist library: registers its object classes and commands in the interpreter.
/// Tcl's `load libzq_design.so Zq_design` calls it.
extern "C" int Zq_design_Init(Tcl_Interp* interp);
