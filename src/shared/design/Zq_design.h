#pragma once

#include <tcl.h>

/// The entry point of the netlist library: registers its object classes and commands in the interpreter.
extern "C" int Zq_design_Init(Tcl_Interp* interp);
