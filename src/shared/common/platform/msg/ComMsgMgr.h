#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/msg/ComMsgMgrInstance.h"
#include "platform/msg/ComMsgMgrSink.h"
#include "platform/msg/ComMsgMgrSrcHandle.h"

namespace com_msg_mgr {
struct IdRecord;
struct KeyRecord;
} // namespace com_msg_mgr

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
/// never mix. Counts and switches are atomic; one lock is held while the log and the journal are written, so
/// that both see one order. No lock is held while the console is written.
///
/// Visibility, operating mode, rules (ComMsgMgrRuleIface) and limits are looked at before a message is
/// formatted: what is not shown costs little. Only a rule that asks for strings has to see the text.
class ComMsgMgr {
public:
    using MsgMask = ComMsgMgrMask;
    using MetaType = ComMsgMgrInstance::MetaType;
    using OperatingMode = ComMsgMgrInstance::OperatingMode;

    /// Operating modes.
    static constexpr OperatingMode MODE_DEFAULT = 1;
    static constexpr OperatingMode MODE_OOC = 2;
    static constexpr OperatingMode MODE_ALL = -1;

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

    /// Where a message rule comes from.
    enum RuleSource {
        ANY_RULE_SOURCE = -1, ///< of queries
        CREATED_FROM_TCL = 1,
        CREATED_FROM_OTHER = 2,
        CREATED_FROM_INTERNAL_CLIENT = 4,
        GUI_CREATED_FROM_MSG = 8,
        GUI_CREATED_FROM_RULE = 16,
        CREATED_FROM_EXTENSION = 32,
    };
    /// What a message rule does.
    enum RuleTypes { SUPPRESS_RULE = 0, SEVERITY_RULE = 1 };

    /// How much memory the messages of the session may take that are kept for later queries: 32 MiB, enough
    /// for what a script has just done, or 256 MiB.
    enum MsgCache { MSGCACHE_LATEST = 0, MSGCACHE_ON = 1 };

    /// Starts message handling for a session. Calling it again without uninit() between changes the settings.
    /// \param file a message database for the messages of the session, as createMsgDb() makes one; empty for
    /// none. Throws a ComMsgMgrInstance (an ERROR naming file and reason) if the database cannot be made;
    /// messages are handled without it then.
    static void init(MsgCache cache, const std::string& file);
    /// Ends message handling: closes databases, forgets counts, limits, kept messages and message files, and
    /// gives the console back to the process's standard output. Messages sent afterwards are still shown.
    /// Harmless when called twice; init() may follow.
    static void uninit();

    /// Sends a message by its key, `sendMsg("common", MSGTYPE_WARNING, "@17-138@%s\n", name)`. The arguments
    /// are checked against the key when the code is compiled. Nothing is copied or formatted for a message
    /// that is not shown; only an ERROR is kept for firstErrorLineSince().
    template <class... Args>
    static void sendMsg(std::string_view subsystem, MsgMask mask,
                        com_msg_mgr::Key<std::type_identity_t<Args>...> key, const Args&... args) {
        const Ticket ticket = admit(subsystem, mask, key.number());
        if (ticket.isWanted()) {
            const com_msg_mgr::ArgView views[sizeof...(Args) + 1] = {com_msg_mgr::to_view(args)...};
            emit(ticket, mask, key.text(), {views, sizeof...(Args)});
        }
    }
    /// Sends a prepared message. Outside of its operating modes it is counted and kept, but not shown.
    static void sendMsg(const ComMsgMgrInstance& message);
    static void sendMessage(const ComMsgMgrInstance& message) { sendMsg(message); }
    /// Sends a text without an id. With a severity in the mask the line is "<SEVERITY>: <text>", unless the
    /// text begins that way already (it is then a message line made elsewhere, and is shown as it is). A line
    /// end is added where there is none. An empty text shows nothing.
    static void sendMsgString(const std::string& subsystem, MsgMask mask, std::string_view text);
    /// Sends a complete text under the id "<prefix>-<number>", such as "Common 17" and 1. A line end is added
    /// where there is none.
    static void sendMsgById(std::string_view prefix, int number, MsgMask mask, std::string_view text);
    /// Sends a complete text under the id "<ssname> <gid>". Description and resolution, which may be empty,
    /// are what getHelpOnMessage() tells of the id from now on. File and line are those of the sender.
    static void sendFormattedMsg(const char* file, int line, std::string_view ssname, MsgMask mask,
                                 std::string_view gid, std::string_view text, const std::string& description,
                                 const std::string& resolution);
    /// Sends a trace text of the level in the mask's low bits, shown while the scope has been added with at
    /// least this level, or the level is visible at large.
    static void sendScopedMsg(std::string_view scope, MsgMask mask, std::string_view text);

    /// The mask of a severity word in upper case ("ERROR", "CRITICAL WARNING", ...; "ANY" and "ALL" give
    /// MSGTYPE_ANY), 0 for any other word.
    static MsgMask msgStr2Type(std::string_view word);
    /// The word of the most serious severity in the mask ("TRACE" for a trace message, "ANY" for
    /// MSGTYPE_ANY), empty without one.
    static std::string_view msgType2Str(MsgMask mask);
    /// What a meta type word ("file", "line", "pin", "block", "reg", "operator", "net", "io_port",
    /// "instance", "site") stands for; none for any other word.
    static MetaType metaStr2Type(std::string_view word);

    /// Makes `text` the words, the description and the resolution of a message, `id` being what the user saw
    /// between the brackets, with or without them. False for an unknown message; `text` then says so.
    static bool getHelpOnMessage(const std::string& id, std::string& text);

    /// Command echo: while off, MSGTYPE_TRACED_COMMAND, MSGTYPE_USER_COMMAND and MSGTYPE_SESSION_COMMAND
    /// go nowhere. On at the start.
    static bool isTclEchoOn();
    static void turnOffTclEcho();
    static void turnOnTclEcho();

    /// TRACE messages of a level up to this one are shown. 0 at the start: none.
    static void setVisibility(int level);
    static int getVisibility();
    static void resetVisibility() { setVisibility(0); }

    /// Scopes: names under which trace texts are sent, each visible up to a level of its own. hasScope gives
    /// the level, 0 for a scope that was not added.
    static void addScope(const std::string& scope, int level);
    static int hasScope(std::string_view scope);
    static void removeScope(std::string_view scope);
    static void resetScope();

    /// How much is shown of each message that has an id: 0 its line alone, 1 its description as well, 2 and
    /// more also its resolution. 0 at the start.
    static void setVerbosity(int level);
    static int getVerbosity();

    /// While on, each trace text tells its level, its scope and the number of the thread that sent it. Off at
    /// the start.
    static void setTraceVerbosity();
    static void resetTraceVerbosity();
    static bool getTraceVerbosity();

    /// From now on the manager keeps to itself what it finds wrong in message files while it looks words up.
    static void maskMsgMgrErrors();
    static bool areMsgMgrErrorsMasked();

    /// Whether the words of messages are translated to the user's language where the installation has them.
    /// Off at the start.
    static bool isMsgXlationOn();
    static void turnOnMsgXlation();
    static void turnOffMsgXlation();

    /// Whether the date and time stand behind the id of each message. Off at the start.
    static bool isTimeStampOn();
    static void turnOnTimeStamp();
    static void turnOffTimeStamp();

    /// ERROR messages sent in this process, shown or stopped by a limit, but not those under a QuietScope.
    /// One atomic read: the dispatcher samples it around each command.
    static std::uint64_t errorCount() { return s_errorCount.load(std::memory_order_relaxed); }
    /// The line of the first ERROR sent after errorCount() had the value `count`, without a line end; of
    /// those still held when that one has been displaced by very many others; empty when there was none.
    static std::string firstErrorLineSince(std::uint64_t count);

    /// Tells the manager that a top-level command begins: wasIssued() starts afresh.
    static void beginCommand();
    /// Tells which command has begun last, at any level; message databases name it with each message.
    static void noteCommand(std::string_view command);
    /// Whether exactly this ERROR line (line end or not) has been shown since the last beginCommand().
    static bool wasIssued(std::string_view line);

    /// The issued-error mark, set by every ERROR that errorCount() counts.
    static bool hasIssuedError();
    static void clearIssuedError();

    /// Messages sent with a severity since the start, or with an id ("Common 17-153"), also those that a
    /// limit stopped, not those that a rule suppressed. The lifetime count of errors can be set back by a
    /// command that keeps its errors to itself.
    static unsigned getMsgCount(MsgMask severity);
    static unsigned getMsgCount(const std::string& id);
    /// Sets the counts of all ids that match a glob pattern back to 0.
    static void resetMsgCount(const std::string& pattern);
    static void resetAllMsgCounts(bool ids, bool severities, bool rules = false);
    static unsigned getLifetimeErrorCount() { return getMsgCount(MSGTYPE_ERROR); }
    static void setLifetimeErrorCount(unsigned count);
    /// Messages with a severity that were sent since the last beginCommand(). No reset touches this count.
    static unsigned getTclMsgCount(MsgMask severity);

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
    /// The family of design rule checks that a message belongs to by the first word of its id, "DRC" for
    /// "DRC 23-20"; empty for a message of none. Whoever brings checks of its own adds their words.
    static std::string matchesDRCPrefix(std::string_view id);
    static void addDRCPrefix(const std::string& prefix, const std::string& family);

    /// Whether limits count at all. They do at the start.
    static void disableMsgLimitCheck();
    static void enableMsgLimitCheck();

    /// Messages and texts of the session kept since init(), of any bit in the mask, in the order of sending:
    /// all that was shown, and what was suppressed. Of more than MsgCache allows the oldest are given up.
    static std::vector<std::shared_ptr<const ComMsgMgrInstance>> getMessages(MsgMask mask);
    /// The same of one source, appended to the list. Throws HEXError if a message database cannot be read.
    static void getMessages(std::vector<std::shared_ptr<const ComMsgMgrInstance>>& list,
                            const ComMsgMgrSrcHandle& source, MsgMask mask);
    /// Calls `visit` for each of these messages, without holding those of a file in memory. Throws as
    /// getMessages().
    static void
    forEachMessage(const ComMsgMgrSrcHandle& source, MsgMask mask,
                   const std::function<void(const std::shared_ptr<const ComMsgMgrInstance>&)>& visit);
    /// Switch the keeping of messages during a session. On means MSGCACHE_ON, off none at all.
    static void turnOnMsgCache();
    static void turnOffMsgCache();
    /// The session's own messages.
    static ComMsgMgrSrcHandle getRootMsgSrcHandle();
    /// The source that queries without a source look at; the session's own at the start.
    static ComMsgMgrSrcHandle getCurrentMsgSrcHandle();
    static void setCurrentMsgSrcHandle(const ComMsgMgrSrcHandle& source);

    /// Writes from now on every message that getMessages() would keep into a new message database;
    /// docs/messages.md tells what is in the file. It is written in batches by a thread of its own and is
    /// whole up to the last batch whatever happens to the process. A message database of that name is
    /// replaced; any other file is not. Several may be open. Throws HEXError if the file cannot be made.
    static void createMsgDb(const std::string& file);
    /// Completes and closes the database. Throws HEXError if none of that name is open, or if not all
    /// messages could be written to it.
    static void closeMsgDb(const std::string& file);
    /// Whether the file is a message database that can be read here.
    static bool isMsgDb(const std::string& file);
    /// Opens a message database as a source; one of its own, still open, is brought up to date before each
    /// query. The name is what the source is called, empty for the file's. Throws HEXError naming the file
    /// and what is wrong with it.
    static ComMsgMgrSrcHandle loadMsgSrc(const std::string& file, const std::string& name);

    /// A line of counts for the source with this number (0 is the session, UINT_MAX stands for all), by
    /// severity; with `dump` the messages are shown on the console.
    static std::string getSrcHandleStatistics(unsigned handle, MsgMask severity, bool dump);
    /// Shows, as output, how many messages were sent, kept and written, and which ids came most often.
    static void showStatistics();

    /// Shows a text on the console alone: it is neither logged nor kept.
    static void writeToConsole(std::string_view text);

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

    /// Appends "<SEVERITY>: [<id>] ", without the brackets for an empty id; nothing for a mask that is a
    /// plain line of output.
    static void appendHead(std::string& line, MsgMask mask, std::string_view id);

private:
    enum class Admission {
        show,
        stopped_by_limit,
        first_stopped_by_limit,
        hidden_by_mode,
        suppressed,
        undecided, ///< rules have to see the text
        unseen
    };

    /// What became of a message before it was formatted.
    struct Ticket {
        Admission admission;
        MsgMask type = 0;                            ///< the mask, with the severity that rules gave it
        com_msg_mgr::IdRecord* id = nullptr;         ///< null for a text without an id
        const com_msg_mgr::KeyRecord* key = nullptr; ///< null without a key
        std::string_view subsystem = "common";       ///< of a message without a key
        MsgMask before = 0;                          ///< the mask that rules have changed, 0 if they have not

        bool isShown() const { return admission == Admission::show; }
        /// Whether there is anything to do: an ERROR is noted even when it is not shown.
        bool isWanted() const {
            return admission != Admission::unseen &&
                   (admission != Admission::stopped_by_limit || (type & MSGTYPE_ERROR));
        }
    };

    /// Counts a message and says whether it is shown. `number` is empty for a text without an id.
    static Ticket admit(std::string_view subsystem, MsgMask mask, std::string_view number);
    static Ticket admitText(MsgMask mask, std::string_view id);
    static void judge(Ticket& ticket, MsgMask mask, const std::string_view* text);
    static bool decide(Ticket& ticket, MsgMask mask, std::string_view text);
    static Admission count(MsgMask mask, com_msg_mgr::IdRecord* id);
    static void emit(Ticket ticket, MsgMask mask, std::string_view key,
                     std::span<const com_msg_mgr::ArgView> args);
    static void emitText(Ticket ticket, MsgMask mask, std::string_view text);
    template <class MakeInstance>
    static void conclude(const Ticket& ticket, std::string_view line, const MakeInstance& makeInstance);
    template <class MakeInstance>
    static void keep(const Ticket& ticket, std::string_view line, const MakeInstance& makeInstance);
    static void noticeLimit(const com_msg_mgr::IdRecord& id);

    inline static std::atomic<std::uint64_t> s_errorCount{0};
    inline static thread_local int s_quietDepth = 0;
    inline static thread_local int s_verboseDepth = 0;
};
