#pragma once

#include <cstdint>
#include <string_view>

/// Memory of the machine and of this process. Safe from any thread.
class HUTMemUtils {
public:
    /// All in bytes.
    struct MemInfo {
        uint64_t physical = 0;
        uint64_t swap = 0;
        uint64_t totalVirtual = 0;     ///< physical and swap together
        uint64_t availableVirtual = 0; ///< what a process could still get of it without driving others out
    };

    /// The machine's memory now; zeroes where the system does not tell.
    static MemInfo getMemInfo();

    /// The same from the text of /proc/meminfo.
    static MemInfo parseMemInfo(std::string_view text);

    /// Bytes of this process in memory now, and the most there were so far. 0 when the system does not tell.
    static uint64_t getCurrentRss();
    static uint64_t getPeakRss();

    /// Turns on, for the rest of the process, the record that HUTMemWatcher keeps of time and memory.
    static void setMemLogMode();
    static bool isMemLogMode();
};
