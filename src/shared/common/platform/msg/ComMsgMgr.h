#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/msg/ComMsgMgrInstance.h"

/// Where messages end: the console, the log, the journal. A seam that tests stand in for.
class ComMsgMgrSink {
public:
    virtual ~ComMsgMgrSink() = default;
    /// Takes whole lines: `text` ends in a line end. May be called on any thread, one call at a time for the
    /// log and the journal; calls for the console may overlap. Must not throw.
    virtual void write(std::string_view text) = 0;
};

/// The message manager: every line that the tool shows goes through it. It gives a message its id and words,
/// counts it, and takes it to console, log and journal by the bits of its mask:
///
/// | mask | console | log | journal |
/// |---|---|---|---|
/// | the six severities, raised TRACE levels | yes | yes | |
/// | MSGTYPE_HEADER | | yes | as comment lines |
/// | MSGTYPE_LINE, MSGTYPE_ERRORINFO, MSGTYPE_OUTPUT | yes | yes | |
/// | MSGTYPE_TRACED_COMMAND | yes | yes | |
/// | MSGTYPE_USER_COMMAND | | yes | yes |
/// | MSGTYPE_SESSION_COMMAND | yes | yes | yes |
///
/// A mask of several destination bits goes once to each place that one of them names; a severity bit outranks
/// them. All operations may be called on any thread. Every message is written whole: lines of two threads
/// never mix. State is guarded by one mutex inside the implementation; a second one is held while the log and
/// the journal are written, so that both see one order. No lock is held while the console is written.
class ComMsgMgr {
public:
    using MsgMask = ComMsgMgrMask;

    static constexpr MsgMask MSGTYPE_ADVISORY = 0x40000000;
    static constexpr MsgMask MSGTYPE_ERROR = 0x20000000;
    static constexpr MsgMask MSGTYPE_CRITICAL_WARNING = 0x10000000;
    static constexpr MsgMask MSGTYPE_WARNING = 0x08000000;
    static constexpr MsgMask MSGTYPE_INFO = 0x04000000;
    static constexpr MsgMask MSGTYPE_STATUS = 0x02000000;
    /// A trace message; its level stands in the low four bits.
    static constexpr MsgMask MSGTYPE_TRACE = 0x01000000;
    /// A command that the session itself issues.
    static constexpr MsgMask MSGTYPE_SESSION_COMMAND = 0x00200000;
    /// A command that the user typed or evaluated.
    static constexpr MsgMask MSGTYPE_USER_COMMAND = 0x00100000;
    /// A command of a script that is being traced.
    static constexpr MsgMask MSGTYPE_TRACED_COMMAND = 0x00080000;
    /// A line of a report.
    static constexpr MsgMask MSGTYPE_OUTPUT = 0x00040000;
    /// The stack of a Tcl error.
    static constexpr MsgMask MSGTYPE_ERRORINFO = 0x00020000;
    /// A plain line of output.
    static constexpr MsgMask MSGTYPE_LINE = 0x00010000;
    /// Session header: log, and journal as comment.
    static constexpr MsgMask MSGTYPE_HEADER = 0x00001000;
    /// Any severity.
    static constexpr MsgMask MSGTYPE_ANY = 0xFFFFFFF0;
    /// All six severities.
    static constexpr MsgMask MSGTYPE_SEVERITIES = 0x7E000000;

    /// Whether shown messages are kept in memory for later queries.
    enum MsgCache { MSGCACHE_OFF = 0, MSGCACHE_ON = 1 };

    /// Starts message handling for a session. Calling it again without uninit() between changes the settings.
    /// \param file a file to record every shown message in, empty for none; it is written anew.
    /// Throws a ComMsgMgrInstance (an ERROR naming file and reason) if the file cannot be written; messages
    /// are handled without it then.
    static void init(MsgCache cache, const std::string& file);
    /// Ends message handling: closes the record, forgets counts, limits, kept messages and the database, and
    /// gives the console back to the process's standard output. Messages sent afterwards are still shown.
    /// Harmless when called twice; init() may follow.
    static void uninit();

    /// Sends a message by its key, `sendMsg("common", MSGTYPE_WARNING, "@17-138@%s\n", name)`. The arguments
    /// are checked against the key when the code is compiled. Nothing is copied or formatted for a message
    /// that is not shown; only an ERROR is kept for firstErrorLineSince().
    template <class... Args>
    static void sendMsg(std::string_view subsystem, MsgMask mask,
                        com_msg_mgr::Key<std::type_identity_t<Args>...> key, const Args&... args) {
        const Admission admission = admit(subsystem, mask, key.number());
        if (isWanted(admission, mask))
            emit(ComMsgMgrInstance(subsystem, mask, key, args...), admission);
    }
    /// Sends a prepared message.
    static void sendMsg(const ComMsgMgrInstance& message);
    static void sendMessage(const ComMsgMgrInstance& message) { sendMsg(message); }
    /// Sends a text without an id. With a severity in the mask the line is "<SEVERITY>: <text>", unless the
    /// text begins that way already (it is then a message line made elsewhere, and is shown as it is). A line
    /// end is added where there is none. An empty text shows nothing.
    static void sendMsgString(const std::string& subsystem, MsgMask mask, std::string_view text);

    /// The mask of a severity word in upper case ("ERROR", "CRITICAL WARNING", ...; "ANY" and "ALL" give
    /// MSGTYPE_ANY), 0 for any other word.
    static MsgMask msgStr2Type(std::string_view word);
    /// The word of the most serious severity in the mask ("TRACE" for a trace message, "ANY" for
    /// MSGTYPE_ANY), empty without one.
    static std::string_view msgType2Str(MsgMask mask);

    /// Command echo: while off, MSGTYPE_TRACED_COMMAND, MSGTYPE_USER_COMMAND and MSGTYPE_SESSION_COMMAND
    /// go nowhere. On at the start.
    static bool isTclEchoOn();
    static void turnOffTclEcho();
    static void turnOnTclEcho();

    /// TRACE messages of a level up to this one are shown. 0 at the start: none.
    static void setVisibility(int level);
    static int getVisibility();
    static void resetVisibility() { setVisibility(0); }

    /// ERROR messages sent in this process, shown or stopped by a limit, but not those under a QuietScope.
    /// One atomic read: the dispatcher samples it around each command.
    static std::uint64_t errorCount() { return s_errorCount.load(std::memory_order_relaxed); }
    /// The line of the first ERROR sent after errorCount() had the value `count`, without a line end; of
    /// those still held when that one has been displaced by very many others; empty when there was none.
    static std::string firstErrorLineSince(std::uint64_t count);

    /// Tells the manager that a top-level command begins: wasIssued() starts afresh.
    static void beginCommand();
    /// Whether exactly this ERROR line (line end or not) has been shown since the last beginCommand().
    static bool wasIssued(std::string_view line);

    /// The issued-error mark, set by every ERROR that errorCount() counts.
    static bool hasIssuedError();
    static void clearIssuedError();

    /// Messages sent with a severity since the start, or with an id ("Common 17-153"), whether a limit
    /// stopped them or not. The lifetime count of errors can be set back by a command that keeps its errors
    /// to itself.
    static unsigned getMsgCount(MsgMask severity);
    static unsigned getMsgCount(const std::string& id);
    /// Sets the counts of all ids that match a glob pattern back to 0.
    static void resetMsgCount(const std::string& pattern);
    static void resetAllMsgCounts(bool ids, bool severities);
    static unsigned getLifetimeErrorCount() { return getMsgCount(MSGTYPE_ERROR); }
    static void setLifetimeErrorCount(unsigned count);

    /// How often a message of an id is shown before it falls silent (one notice tells so). An id without a
    /// limit of its own has that of the parameter messaging.defaultLimit; 0 means no message at all,
    /// unlimited is UINT_MAX.
    static void setMsgLimit(unsigned limit, const std::string& id);
    static unsigned getMsgLimit(const std::string& id);
    static void resetMsgLimit(const std::string& id);
    /// The same for all messages of a severity; there is no limit until one is set.
    static void setMsgLimit(unsigned limit, MsgMask severity);
    static unsigned getMsgLimit(MsgMask severity);
    static void resetMsgLimit(MsgMask severity);

    /// Messages with an id kept since MSGCACHE_ON, of any severity in the mask, in the order of sending.
    static std::vector<std::shared_ptr<const ComMsgMgrInstance>> getMessages(MsgMask mask);
    /// Switch the keeping of messages during a session.
    static void turnOnMsgCache();
    static void turnOffMsgCache();

    /// While one lives on a thread, messages with a severity that this thread sends are neither shown nor
    /// counted; plain output is shown. They nest.
    class QuietScope {
    public:
        QuietScope() { ++s_quietDepth; }
        ~QuietScope() { --s_quietDepth; }
        QuietScope(const QuietScope&) = delete;
        QuietScope& operator=(const QuietScope&) = delete;
    };
    /// While one lives on a thread, its messages are shown whatever their limits say. They nest.
    class VerboseScope {
    public:
        VerboseScope() { ++s_verboseDepth; }
        ~VerboseScope() { --s_verboseDepth; }
        VerboseScope(const VerboseScope&) = delete;
        VerboseScope& operator=(const VerboseScope&) = delete;
    };
    /// True on a thread inside a QuietScope.
    static bool isQuiet() { return s_quietDepth > 0; }

    enum class Destination { console, log, journal };
    /// Replaces the end of one road; null gives back the usual one. Returns the sink that stood there, null
    /// for the usual one.
    static std::shared_ptr<ComMsgMgrSink> setSink(Destination where, std::shared_ptr<ComMsgMgrSink> sink);
    /// With true every message goes to the console too, whatever its mask.
    static void setAllToConsole(bool all);

private:
    enum class Admission { show, stopped_by_limit, first_stopped_by_limit, unseen };

    /// Counts a message and says whether it is shown. `number` is empty for a text without an id.
    static Admission admit(std::string_view subsystem, MsgMask mask, std::string_view number);
    /// Whether there is anything to do for a message: an ERROR is noted even when it is not shown.
    static bool isWanted(Admission admission, MsgMask mask) {
        return admission == Admission::show || admission == Admission::first_stopped_by_limit ||
               (admission == Admission::stopped_by_limit && (mask & MSGTYPE_ERROR));
    }
    static void emit(const ComMsgMgrInstance& message, Admission admission);
    static void noticeLimit(const std::string& id);

    inline static std::atomic<std::uint64_t> s_errorCount{0};
    inline static thread_local int s_quietDepth = 0;
    inline static thread_local int s_verboseDepth = 0;
};
