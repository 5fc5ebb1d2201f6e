#include "platform/tcl/HTCTclChannel.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <tcl.h>
#include <unistd.h>

#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/ComMsgMgrStdout.h"
#include "platform/tcl/HTCTclWakeUp.h"

namespace {

/// The file behind descriptor 1, to see whether it has become another one.
struct StdoutFile {
    bool open = false;
    dev_t device = 0;
    ino_t inode = 0;

    static StdoutFile now() {
        struct stat info;
        if (::fstat(STDOUT_FILENO, &info) != 0)
            return {};
        return {true, info.st_dev, info.st_ino};
    }
    bool operator==(const StdoutFile&) const = default;
};

/// True if writing to descriptor 1 is the same as writing to this channel.
bool is_plain(Tcl_Channel channel) {
    const std::string_view type = Tcl_GetChannelType(channel)->typeName;
    ClientData handle = nullptr;
    return (type == "file" || type == "tty") && !Tcl_GetStackedChannel(Tcl_GetTopChannel(channel)) &&
           Tcl_GetChannelHandle(channel, TCL_WRITABLE, &handle) == TCL_OK &&
           reinterpret_cast<std::intptr_t>(handle) == STDOUT_FILENO;
}

/// Text goes out as bytes, unconverted: whatever a message holds reaches the reader.
void write_bytes(Tcl_Channel channel, std::string_view text) {
    constexpr std::size_t piece = INT_MAX / 2;
    for (; !text.empty(); text.remove_prefix(std::min(piece, text.size())))
        if (Tcl_Write(channel, text.data(), static_cast<int>(std::min(piece, text.size()))) < 0)
            return;
    Tcl_Flush(channel);
}

/// Texts of other threads on their way to the interpreter's; those that follow wait behind them.
std::atomic<int> s_queued{0};

class TclConsole : public ComMsgMgrSink {
public:
    explicit TclConsole(Tcl_ThreadId owner) : m_owner(owner), m_stdout(StdoutFile::now()) {}

    void write(std::string_view text) override {
        if (Tcl_GetCurrentThread() == m_owner)
            writeOnOwner(text);
        else if (!HTCTclWakeUp::isAtPrompt() && s_queued == 0 && m_plain && StdoutFile::now() == m_stdout)
            ComMsgMgrStdout::instance()->write(text);
        else
            queue(text);
    }

private:
    void writeOnOwner(std::string_view text) {
        // A channel made in Tcl may send a message while it writes one: that goes past the channel.
        static thread_local bool writing = false;
        if (writing) {
            ComMsgMgrStdout::instance()->write(text);
            return;
        }
        Tcl_Channel channel = Tcl_GetStdChannel(TCL_STDOUT);
        if (!channel)
            return;
        writing = true;
        const bool plain = is_plain(channel);
        m_plain = plain;
        if (plain) {
            Tcl_Flush(channel);
            ComMsgMgrStdout::instance()->write(text);
        } else {
            write_bytes(channel, text);
        }
        writing = false;
    }

    struct Event {
        Tcl_Event header;
        std::string* text;
    };

    void queue(std::string_view text) {
        auto* event = reinterpret_cast<Event*>(Tcl_Alloc(sizeof(Event)));
        event->header.proc = [](Tcl_Event* header, int) {
            std::unique_ptr<std::string> text(reinterpret_cast<Event*>(header)->text);
            if (Tcl_Channel channel = Tcl_GetStdChannel(TCL_STDOUT))
                write_bytes(channel, *text);
            --s_queued;
            return 1;
        };
        event->text = new std::string(text);
        ++s_queued;
        Tcl_ThreadQueueEvent(m_owner, &event->header, TCL_QUEUE_TAIL);
        Tcl_ThreadAlert(m_owner);
        HTCTclWakeUp::notify();
    }

    const Tcl_ThreadId m_owner;
    const StdoutFile m_stdout;
    /// Whether the interpreter's thread last found its stdout to be descriptor 1 itself.
    std::atomic<bool> m_plain{true};
};

/// The thread that messages are forwarded to, null for none.
std::atomic<Tcl_ThreadId> s_owner{nullptr};

} // namespace

void HTCTclChannel::forwardMsg2Stdout() {
    const Tcl_ThreadId self = Tcl_GetCurrentThread();
    s_owner = self;
    ComMsgMgr::setSink(ComMsgMgr::Destination::console, std::make_shared<TclConsole>(self));
    // The thread's channels end with it; messages do not.
    static thread_local bool watched = false;
    if (watched)
        return;
    watched = true;
    Tcl_CreateThreadExitHandler(
        [](ClientData) {
            watched = false;
            if (s_owner == Tcl_GetCurrentThread())
                stopMsg2Stdout();
        },
        nullptr);
}

void HTCTclChannel::stopMsg2Stdout() {
    s_owner = nullptr;
    ComMsgMgr::setSink(ComMsgMgr::Destination::console, nullptr);
}

void HTCTclChannel::setAllMsg2Stdout() {
    ComMsgMgr::setAllToConsole(true);
}

void HTCTclChannel::initConsoleChannels() {
    for (const int which : {TCL_STDIN, TCL_STDOUT, TCL_STDERR}) {
        Tcl_Channel channel = Tcl_GetStdChannel(which);
        if (!channel)
            continue;
        Tcl_SetChannelOption(nullptr, channel, "-blocking", "1");
        if (which == TCL_STDOUT)
            Tcl_SetChannelOption(nullptr, channel, "-buffering", "line");
        else if (which == TCL_STDERR)
            Tcl_SetChannelOption(nullptr, channel, "-buffering", "none");
    }
}
