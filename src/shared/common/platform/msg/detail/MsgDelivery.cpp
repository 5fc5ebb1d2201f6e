#include "platform/msg/detail/MsgDelivery.h"

#include <array>
#include <atomic>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/env/HUTLogFileMgr.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/ComMsgMgrStdout.h"
#include "platform/msg/detail/MsgRedirects.h"

namespace com_msg_mgr {

namespace {

/// Where a mask's text goes.
struct Route {
    bool console, log, journal, journalAsComment;

    static constexpr Route of(ComMsgMgrMask mask) {
        if (mask & (ComMsgMgr::MSGTYPE_SEVERITIES | ComMsgMgr::MSGTYPE_TRACE))
            return {true, true, false, false};
        const ComMsgMgrMask shown = ComMsgMgr::MSGTYPE_LINE | ComMsgMgr::MSGTYPE_ERRORINFO |
                                    ComMsgMgr::MSGTYPE_OUTPUT | ComMsgMgr::MSGTYPE_TRACED_COMMAND |
                                    ComMsgMgr::MSGTYPE_SESSION_COMMAND;
        const ComMsgMgrMask replayed = ComMsgMgr::MSGTYPE_USER_COMMAND | ComMsgMgr::MSGTYPE_SESSION_COMMAND;
        const bool header = mask & ComMsgMgr::MSGTYPE_HEADER;
        return {(mask & shown) != 0, (mask & (shown | replayed)) != 0 || header,
                (mask & replayed) != 0 || header, header};
    }
};

std::string as_comment(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const std::string_view line =
            text.substr(0, text.find('\n') == std::string_view::npos ? text.size() : text.find('\n') + 1);
        if (line.front() != '#')
            out += "# ";
        out += line;
        text.remove_prefix(line.size());
    }
    return out;
}

struct Delivery {
    std::atomic<bool> allToConsole{false};

    std::mutex output; // held while log and journal are written, so that all get one order
    std::array<std::shared_ptr<ComMsgMgrSink>, 3> sinks; // guarded by output; null: the usual one

    static Delivery& get() {
        static Delivery& delivery = *new Delivery; // messages are sent up to the very end of the process
        return delivery;
    }
};

/// The messages of held threads.
struct Holding {
    struct Message {
        ComMsgMgrMask mask;
        std::string id, text;
    };
    struct Thread {
        std::vector<Message> messages;
        std::size_t bytes = 0;
    };
    /// More than this of one thread is not kept back.
    static constexpr std::size_t max_bytes = std::size_t(64) << 20;

    std::atomic<bool> any{false};
    std::mutex mutex;
    std::map<int, Thread> threads; // guarded by mutex

    static Holding& get() {
        static Holding& holding = *new Holding;
        return holding;
    }

    /// True if the message waits. What is too much to wait is given back in `overflow`.
    bool keep(ComMsgMgrMask mask, std::string_view id, std::string_view text,
              std::vector<Message>& overflow) {
        std::lock_guard lock(mutex);
        const auto found = threads.find(thread_number());
        if (found == threads.end())
            return false;
        Thread& thread = found->second;
        thread.messages.push_back({mask, std::string(id), std::string(text)});
        thread.bytes += text.size();
        if (thread.bytes > max_bytes) {
            overflow.swap(thread.messages);
            thread.bytes = 0;
        }
        return true;
    }
};

void deliver_now(ComMsgMgrMask mask, std::string_view id, std::string_view text) {
    Delivery& delivery = Delivery::get();
    const Route route = Route::of(mask);
    const bool toConsole = route.console || delivery.allToConsole.load(std::memory_order_relaxed);
    // The command before has finished; most of those that a script runs have nothing else to say so.
    if (mask & ComMsgMgr::MSGTYPE_TRACED_COMMAND)
        HUTLogFileMgr::flush();
    std::shared_ptr<ComMsgMgrSink> console;
    {
        std::lock_guard lock(delivery.output);
        if (route.log && !MsgRedirects::get().write(id, text))
            delivery.sinks[1] ? delivery.sinks[1]->write(text) : HUTLogFileMgr::writeLog(text);
        if (route.journal) {
            const std::string comment = route.journalAsComment ? as_comment(text) : std::string();
            const std::string_view replay = route.journalAsComment ? comment : text;
            delivery.sinks[2] ? delivery.sinks[2]->write(replay) : HUTLogFileMgr::writeJournal(replay);
        }
        if (toConsole)
            console = delivery.sinks[0];
    }
    // Outside of all locks: a Tcl channel may run a script for this.
    if (console)
        console->write(text);
    else if (toConsole)
        ComMsgMgrStdout::instance()->write(text);
}

void deliver_all(const std::vector<Holding::Message>& messages) {
    for (const Holding::Message& message : messages)
        deliver_now(message.mask, message.id, message.text);
}

} // namespace

void deliver(ComMsgMgrMask mask, std::string_view id, std::string_view text) {
    Holding& holding = Holding::get();
    if (holding.any.load(std::memory_order_relaxed)) {
        std::vector<Holding::Message> overflow;
        const bool kept = holding.keep(mask, id, text, overflow);
        deliver_all(overflow);
        if (kept)
            return;
    }
    deliver_now(mask, id, text);
}

void write_console(std::string_view text) {
    Delivery& delivery = Delivery::get();
    std::shared_ptr<ComMsgMgrSink> console;
    {
        std::lock_guard lock(delivery.output);
        console = delivery.sinks[0];
    }
    if (console)
        console->write(text);
    else
        ComMsgMgrStdout::instance()->write(text);
}

std::shared_ptr<ComMsgMgrSink> set_sink(std::size_t where, std::shared_ptr<ComMsgMgrSink> sink) {
    Delivery& delivery = Delivery::get();
    std::lock_guard lock(delivery.output);
    std::swap(delivery.sinks[where], sink);
    return sink;
}

void set_all_to_console(bool all) {
    Delivery::get().allToConsole = all;
}

int thread_number() {
    static std::atomic<int> last{0};
    static thread_local const int number = ++last;
    return number;
}

void hold_thread(int number) {
    Holding& holding = Holding::get();
    std::lock_guard lock(holding.mutex);
    holding.threads.try_emplace(number);
    holding.any = true;
}

void release_thread(int number) {
    Holding& holding = Holding::get();
    Holding::Thread released;
    {
        std::lock_guard lock(holding.mutex);
        const auto found = holding.threads.find(number);
        if (found == holding.threads.end())
            return;
        released = std::move(found->second);
        holding.threads.erase(found);
        holding.any = !holding.threads.empty();
    }
    deliver_all(released.messages);
}

void release_all_threads() {
    Holding& holding = Holding::get();
    std::map<int, Holding::Thread> released;
    {
        std::lock_guard lock(holding.mutex);
        released.swap(holding.threads);
        holding.any = false;
    }
    for (const auto& [number, thread] : released)
        deliver_all(thread.messages);
}

} // namespace com_msg_mgr
