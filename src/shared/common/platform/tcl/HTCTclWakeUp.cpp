#include "platform/tcl/HTCTclWakeUp.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

std::atomic<int> s_descriptor{-1}; // stays open as long as the process
std::atomic<bool> s_atPrompt{false};

} // namespace

int HTCTclWakeUp::descriptor() {
    static const int made = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    s_descriptor = made;
    return made;
}

void HTCTclWakeUp::notify() noexcept {
    const int fd = s_descriptor;
    if (fd < 0) {
        return;
    }
    const int error = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(fd, &one, sizeof one);
    errno = error;
}

void HTCTclWakeUp::clear() {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t taken = ::read(s_descriptor, &count, sizeof count);
}

bool HTCTclWakeUp::isAtPrompt() {
    return s_atPrompt;
}

void HTCTclWakeUp::setAtPrompt(bool atPrompt) {
    s_atPrompt = atPrompt;
}
