#pragma once

#include "design/Design.h"

#include <string>

namespace design {

/// Writes a design in the JSON form of Yosys, with all modules of its file; compressed if the name ends in
/// ".gz". Reading the file gives the same design with the same properties. What was set on a cell, or on a
/// net that is no bit of a bus, is written as its attribute if its module is used once; all else that was set
/// goes into one attribute of the top module, `object_values`, which the reader takes apart again.
///
/// The file appears under its name only when it is complete. Throws Error(unwritable_file), also for a file
/// that exists when `overwrite` is false.
void write_netlist(const Design& design, const std::string& path, bool overwrite);

} // namespace design
