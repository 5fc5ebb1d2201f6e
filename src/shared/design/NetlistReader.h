#pragma once

#include "design/ByteSource.h"
#include "design/Netlist.h"

#include <functional>
#include <memory>
#include <string>

namespace design {

/// Reads the JSON netlist that Yosys writes. The file is parsed as it streams by; memory holds the netlist
/// and one block of text. Throws NetlistError with the place of what is refused, or Error(unreadable_file).
/// `name` is how messages call the file.
std::unique_ptr<Netlist> read_netlist(ByteSource& source, const std::string& name);

/// The same for a file, plain or in gzip form. `interrupted` is asked for each block of it; if it says yes,
/// Error(interrupted) is thrown.
std::unique_ptr<Netlist> read_netlist_file(const std::string& path,
                                           const std::function<bool()>& interrupted = {});

} // namespace design
