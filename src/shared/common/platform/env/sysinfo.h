#pragma once

#include <string>

namespace isl::sysinfo {

/// What the machine is, as one reads it in a log's banner. Read once from the system; safe from any thread.
class info_t {
public:
    /// The system's name, as "Debian GNU/Linux"; "Linux" where the system has none.
    static std::string osname();

    /// The system's full release, as "Debian GNU/Linux 12 (bookworm)"; the kernel's release where it has
    /// none.
    static std::string osrelease();

    /// The model name of logical processor `i`, counted from 0; empty if there is no such processor.
    static std::string processor_architecture(unsigned i);

    /// The clock of logical processor `i`, as "2500.000 MHz"; empty if it is not known.
    static std::string processor_speed(unsigned i);
};

} // namespace isl::sysinfo
