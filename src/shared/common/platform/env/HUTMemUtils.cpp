#include "platform/env/HUTMemUtils.h"

#include "platform/env/HUTFile.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <string>
#include <sys/resource.h>
#include <system_error>
#include <unistd.h>

namespace {

std::atomic<bool> mem_log_mode{false};

std::string read_or_empty(const char* path) {
    try {
        return HUTFile::read(path);
    } catch (const std::system_error&) {
        return {};
    }
}

// The value of a line as "MemTotal:  16384 kB", in bytes.
uint64_t kilobytes_of(std::string_view text, std::string_view label) {
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        std::string_view line = text.substr(at, end - at);
        at = end + 1;
        if (line.substr(0, label.size()) != label)
            continue;
        line.remove_prefix(label.size());
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        uint64_t value = 0;
        std::from_chars(line.data(), line.data() + line.size(), value);
        return value * 1024;
    }
    return 0;
}

} // namespace

HUTMemUtils::MemInfo HUTMemUtils::parseMemInfo(std::string_view text) {
    MemInfo info;
    info.physical = kilobytes_of(text, "MemTotal:");
    info.swap = kilobytes_of(text, "SwapTotal:");
    info.totalVirtual = info.physical + info.swap;
    info.availableVirtual = kilobytes_of(text, "MemAvailable:") + kilobytes_of(text, "SwapFree:");
    return info;
}

HUTMemUtils::MemInfo HUTMemUtils::getMemInfo() {
    return parseMemInfo(read_or_empty("/proc/meminfo"));
}

uint64_t HUTMemUtils::getCurrentRss() {
    const std::string text = read_or_empty("/proc/self/statm");
    const size_t blank = text.find(' ');
    uint64_t pages = 0;
    if (blank != std::string::npos)
        std::from_chars(text.data() + blank + 1, text.data() + text.size(), pages);
    return pages * static_cast<uint64_t>(::sysconf(_SC_PAGESIZE));
}

uint64_t HUTMemUtils::getPeakRss() {
    struct rusage usage;
    return ::getrusage(RUSAGE_SELF, &usage) == 0 ? static_cast<uint64_t>(usage.ru_maxrss) * 1024 : 0;
}

void HUTMemUtils::setMemLogMode() {
    mem_log_mode = true;
}

bool HUTMemUtils::isMemLogMode() {
    return mem_log_mode.load(std::memory_order_relaxed);
}
