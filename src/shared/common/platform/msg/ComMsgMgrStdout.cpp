#include "platform/msg/ComMsgMgrStdout.h"

#include <cerrno>
#include <cstdio>
#include <mutex>
#include <poll.h>
#include <unistd.h>

const std::shared_ptr<ComMsgMgrStdout>& ComMsgMgrStdout::instance() {
    static const auto& sink = *new std::shared_ptr<ComMsgMgrStdout>(std::make_shared<ComMsgMgrStdout>());
    return sink;
}

void ComMsgMgrStdout::write(std::string_view text) {
    static std::mutex& mutex = *new std::mutex; // keeps the texts of several threads apart
    std::lock_guard lock(mutex);
    std::fflush(stdout);
    while (!text.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            pollfd ready{STDOUT_FILENO, POLLOUT, 0};
            ::poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            return;
        }
    }
}
