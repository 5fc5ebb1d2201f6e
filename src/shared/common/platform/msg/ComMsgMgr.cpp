#include "platform/msg/ComMsgMgr.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <deque>
#include <mutex>
#include <optional>
#include <system_error>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/env/HSTStringUtils.h"
#include "platform/env/HUTLogFileMgr.h"
#include "platform/msg/ComMsgMgrFile.h"
#include "platform/msg/ComMsgMgrStdout.h"
#include "platform/param/HPAParamMgr.h"

namespace {

using Mask = ComMsgMgr::MsgMask;

struct Severity {
    Mask mask;
    std::string_view word;
};

/// In order of weight: of a mask with several, the first one counts.
constexpr std::array<Severity, 6> severities{{
    {ComMsgMgr::MSGTYPE_ERROR, "ERROR"},
    {ComMsgMgr::MSGTYPE_CRITICAL_WARNING, "CRITICAL WARNING"},
    {ComMsgMgr::MSGTYPE_WARNING, "WARNING"},
    {ComMsgMgr::MSGTYPE_INFO, "INFO"},
    {ComMsgMgr::MSGTYPE_STATUS, "STATUS"},
    {ComMsgMgr::MSGTYPE_ADVISORY, "ADVISORY"},
}};
constexpr std::size_t no_severity = severities.size();

constexpr std::size_t severity_index(Mask mask) {
    std::size_t i = 0;
    while (i < severities.size() && !(mask & severities[i].mask))
        ++i;
    return i;
}

constexpr Mask command_echo =
    ComMsgMgr::MSGTYPE_TRACED_COMMAND | ComMsgMgr::MSGTYPE_USER_COMMAND | ComMsgMgr::MSGTYPE_SESSION_COMMAND;

/// Where a mask's text goes.
struct Route {
    bool console, log, journal, journalAsComment;

    static constexpr Route of(Mask mask) {
        if (mask & (ComMsgMgr::MSGTYPE_SEVERITIES | ComMsgMgr::MSGTYPE_TRACE))
            return {true, true, false, false};
        const Mask shown = ComMsgMgr::MSGTYPE_LINE | ComMsgMgr::MSGTYPE_ERRORINFO |
                           ComMsgMgr::MSGTYPE_OUTPUT | ComMsgMgr::MSGTYPE_TRACED_COMMAND |
                           ComMsgMgr::MSGTYPE_SESSION_COMMAND;
        const Mask replayed = ComMsgMgr::MSGTYPE_USER_COMMAND | ComMsgMgr::MSGTYPE_SESSION_COMMAND;
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

std::string_view without_line_end(std::string_view line) {
    if (!line.empty() && line.back() == '\n')
        line.remove_suffix(1);
    return line;
}

class LogSink : public ComMsgMgrSink {
    void write(std::string_view text) override { HUTLogFileMgr::writeLog(text); }
};

class JournalSink : public ComMsgMgrSink {
    void write(std::string_view text) override { HUTLogFileMgr::writeJournal(text); }
};

struct Counter {
    unsigned count = 0;
    std::optional<unsigned> limit;
    bool noticed = false; ///< the user was told that the limit is reached

    void reset() {
        count = 0;
        noticed = false;
    }
};

/// An ERROR of the recent past, ready to be given as a command's result.
struct HeldError {
    std::uint64_t ordinal;
    std::shared_ptr<const ComMsgMgrInstance> message; ///< null for a text without an id
    std::string line;

    std::size_t bytes() const { return line.size() + (message ? message->argBytes() : 0); }
};

/// The file that shown messages are recorded in, one a line: mask in hexadecimal, id, text, separated by
/// tabs, with \t, \n, \r, \\ for these characters.
class Record {
public:
    explicit Record(const std::string& path) : m_path(path), m_file(std::fopen(path.c_str(), "wbe")) {
        if (!m_file)
            throw std::system_error(errno, std::generic_category());
    }
    ~Record() {
        if (m_file)
            std::fclose(m_file);
    }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    const std::string& path() const { return m_path; }

    /// Ends the file. False if something could not be written to it.
    bool close() {
        const bool sound = !std::ferror(m_file);
        return (std::fclose(std::exchange(m_file, nullptr)) == 0) && sound;
    }

    void add(Mask mask, std::string_view id, std::string_view text) {
        char head[16];
        std::snprintf(head, sizeof head, "%08x\t", mask);
        std::string line = head;
        escape(line, id);
        line += '\t';
        escape(line, without_line_end(text));
        line += '\n';
        if (m_file)
            std::fwrite(line.data(), 1, line.size(), m_file);
    }

private:
    static void escape(std::string& out, std::string_view text) {
        for (const char c : text) {
            const std::size_t special = std::string_view("\t\n\r\\").find(c);
            if (special == std::string_view::npos)
                out += c;
            else
                (out += '\\') += "tnr\\"[special];
        }
    }

    std::string m_path;
    std::FILE* m_file;
};

/// All of the manager's state. `mutex` guards every member but those that say otherwise; `output` is held
/// while log, journal and record are written, so that they get texts whole and in the same order. `output` is
/// never taken under `mutex`.
struct State {
    static constexpr std::size_t max_held = 1024;
    static constexpr std::size_t max_held_bytes = 1 << 20;

    std::mutex mutex;
    std::mutex output;

    std::atomic<bool> echo{true};          // unguarded
    std::atomic<bool> allToConsole{false}; // unguarded
    std::atomic<bool> issuedError{false};  // unguarded
    std::atomic<int> visibility{0};        // unguarded

    std::unordered_map<std::string, Counter> ids;
    std::array<Counter, severities.size()> bySeverity;
    std::deque<HeldError> held;
    std::size_t heldBytes = 0;
    std::unordered_set<std::size_t> issued;
    bool caching = false;
    std::vector<std::shared_ptr<const ComMsgMgrInstance>> cache;
    std::array<std::shared_ptr<ComMsgMgrSink>, 3> sinks; // null: the usual one
    std::shared_ptr<Record> record;

    static State& get() {
        static State& state = *new State; // messages are sent up to the very end of the process
        return state;
    }

    /// Keeps an ERROR; `shown` is the line that the user sees of it, empty for none.
    void noteError(HeldError error, std::string_view shown) {
        issuedError = true;
        if (!shown.empty())
            issued.insert(std::hash<std::string_view>()(shown));
        heldBytes += error.bytes();
        held.push_back(std::move(error));
        while (held.size() > 1 && (held.size() > max_held || heldBytes > max_held_bytes)) {
            heldBytes -= held.front().bytes();
            held.pop_front();
        }
    }
};

/// The limit of an id that has none of its own.
unsigned default_limit() {
    static constexpr unsigned fallback = 100;
    static std::atomic<HPAParam*> limit{nullptr};
    static std::atomic<bool> unavailable{false};
    if (!limit && !unavailable) {
        try {
            limit = HPAParamMgr::getParamMgr().findParam("messaging.defaultLimit");
        } catch (const std::exception&) {
            // Whoever reads a parameter for a purpose of its own hears about it.
        }
        unavailable = !limit;
    }
    return limit ? static_cast<unsigned>(std::max(0, limit.load()->int_value())) : fallback;
}

std::string id_of(std::string_view subsystem, std::string_view number) {
    std::string id = ComMsgMgrDb::of(subsystem)->alias();
    id += ' ';
    return id.append(number);
}

bool is_visible(Mask mask) {
    if (severity_index(mask) != no_severity)
        return true;
    if (mask & ComMsgMgr::MSGTYPE_TRACE)
        return static_cast<int>(mask & 0xF) <= State::get().visibility && State::get().visibility > 0;
    return !(mask & command_echo) || State::get().echo;
}

/// Gives the whole lines of `text` to the places of the mask.
void deliver(Mask mask, std::string_view id, std::string_view text) {
    State& state = State::get();
    Route route = Route::of(mask);
    route.console |= state.allToConsole;

    static auto& usualLog = *new std::shared_ptr<ComMsgMgrSink>(std::make_shared<LogSink>());
    static auto& usualJournal = *new std::shared_ptr<ComMsgMgrSink>(std::make_shared<JournalSink>());
    std::shared_ptr<ComMsgMgrSink> console, log, journal;
    std::shared_ptr<Record> record;
    {
        std::lock_guard lock(state.mutex);
        console = state.sinks[0] ? state.sinks[0] : ComMsgMgrStdout::instance();
        log = state.sinks[1] ? state.sinks[1] : usualLog;
        journal = state.sinks[2] ? state.sinks[2] : usualJournal;
        record = state.record;
    }
    {
        std::lock_guard lock(state.output);
        if (route.log)
            log->write(text);
        if (route.journal)
            route.journalAsComment ? journal->write(as_comment(text)) : journal->write(text);
        if (record)
            record->add(mask, id, text);
    }
    // Outside of all locks: a Tcl channel may run a script for this.
    if (route.console)
        console->write(text);
}

} // namespace

void ComMsgMgr::init(MsgCache cache, const std::string& file) {
    State& state = State::get();
    std::shared_ptr<Record> record;
    std::string failure;
    if (!file.empty()) {
        try {
            record = std::make_shared<Record>(file);
        } catch (const std::system_error& error) {
            failure = error.code().message();
        }
    }
    {
        std::lock_guard lock(state.mutex);
        state.caching = cache == MSGCACHE_ON;
        std::swap(state.record, record);
    }
    if (!failure.empty())
        throw ComMsgMgrInstance("common", MSGTYPE_ERROR, "@17-5152@%s%s\n", file, failure);
}

void ComMsgMgr::uninit() {
    State& state = State::get();
    std::shared_ptr<Record> record;
    {
        std::lock_guard lock(state.mutex);
        state.caching = false;
        std::swap(state.record, record);
    }
    if (record) {
        std::unique_lock lock(state.output);
        const bool sound = record->close();
        lock.unlock();
        if (!sound)
            sendMsg("common", MSGTYPE_WARNING, "@17-5154@%s\n", record->path());
    }
    {
        std::lock_guard lock(state.mutex);
        state.ids.clear();
        state.bySeverity = {};
        state.held.clear();
        state.heldBytes = 0;
        state.issued.clear();
        state.cache.clear();
        state.sinks[static_cast<std::size_t>(Destination::console)] = nullptr;
    }
    state.echo = true;
    state.allToConsole = false;
    state.issuedError = false;
    state.visibility = 0;
    ComMsgMgrDb::clear();
}

ComMsgMgr::Admission ComMsgMgr::admit(std::string_view subsystem, MsgMask mask, std::string_view number) {
    if (!is_visible(mask))
        return Admission::unseen;
    const std::size_t severity = severity_index(mask);
    if (severity == no_severity)
        return Admission::show;
    if (isQuiet())
        return Admission::unseen;
    const std::string id = number.empty() ? std::string() : id_of(subsystem, number);
    const unsigned usualLimit = default_limit();

    State& state = State::get();
    std::lock_guard lock(state.mutex);
    Counter& all = state.bySeverity[severity];
    ++all.count;
    Counter* same = id.empty() ? nullptr : &state.ids[id];
    if (same)
        ++same->count;
    if (s_verboseDepth > 0)
        return Admission::show;
    if (same && same->count > same->limit.value_or(usualLimit)) {
        const bool first = !std::exchange(same->noticed, true);
        return first ? Admission::first_stopped_by_limit : Admission::stopped_by_limit;
    }
    return all.limit && all.count > *all.limit ? Admission::stopped_by_limit : Admission::show;
}

void ComMsgMgr::noticeLimit(const std::string& id) {
    const unsigned limit = getMsgLimit(id);
    if (limit > 0)
        emit(ComMsgMgrInstance("common", MSGTYPE_INFO, "@17-5153@%s%u\n", id, limit), Admission::show);
}

void ComMsgMgr::emit(const ComMsgMgrInstance& message, Admission admission) {
    State& state = State::get();
    const Mask mask = message.getType();
    const bool isError = mask & MSGTYPE_ERROR;
    const bool show = admission == Admission::show;
    const std::string text = show ? message.getMessage() : std::string();
    {
        std::lock_guard lock(state.mutex);
        std::shared_ptr<const ComMsgMgrInstance> kept;
        if (isError || (show && state.caching))
            kept = std::make_shared<const ComMsgMgrInstance>(message);
        if (isError)
            state.noteError({++s_errorCount, kept, {}}, show ? without_line_end(text) : std::string_view());
        if (show && state.caching)
            state.cache.push_back(std::move(kept));
    }
    if (show)
        deliver(mask, message.id(), text);
    else if (admission == Admission::first_stopped_by_limit)
        noticeLimit(message.id());
}

void ComMsgMgr::sendMsg(const ComMsgMgrInstance& message) {
    const Admission admission = admit(message.subsystem(), message.getType(), message.number());
    if (isWanted(admission, message.getType()))
        emit(message, admission);
}

void ComMsgMgr::sendMsgString(const std::string& subsystem, MsgMask mask, std::string_view text) {
    if (text.empty())
        return;
    const Admission admission = admit(subsystem, mask, {});
    if (!isWanted(admission, mask))
        return;

    std::string made;
    if (const std::size_t severity = severity_index(mask); severity != no_severity) {
        const std::string prefix = std::string(severities[severity].word) + ": ";
        if (!text.starts_with(prefix))
            made = prefix;
    }
    if (!made.empty() || text.back() != '\n') {
        made += text;
        if (made.back() != '\n')
            made += '\n';
        text = made;
    }
    const bool show = admission == Admission::show;
    if (mask & MSGTYPE_ERROR) {
        State& state = State::get();
        const std::string_view line = without_line_end(text);
        std::lock_guard lock(state.mutex);
        state.noteError({++s_errorCount, nullptr, std::string(line)}, show ? line : std::string_view());
    }
    if (show)
        deliver(mask, {}, text);
}

ComMsgMgr::MsgMask ComMsgMgr::msgStr2Type(std::string_view word) {
    for (const Severity& severity : severities)
        if (severity.word == word)
            return severity.mask;
    return word == "ANY" || word == "ALL" ? MSGTYPE_ANY : 0;
}

std::string_view ComMsgMgr::msgType2Str(MsgMask mask) {
    if (mask == MSGTYPE_ANY)
        return "ANY";
    if (const std::size_t severity = severity_index(mask); severity != no_severity)
        return severities[severity].word;
    return mask & MSGTYPE_TRACE ? "TRACE" : "";
}

bool ComMsgMgr::isTclEchoOn() {
    return State::get().echo;
}
void ComMsgMgr::turnOffTclEcho() {
    State::get().echo = false;
}
void ComMsgMgr::turnOnTclEcho() {
    State::get().echo = true;
}

void ComMsgMgr::setVisibility(int level) {
    State::get().visibility = level;
}
int ComMsgMgr::getVisibility() {
    return State::get().visibility;
}

std::string ComMsgMgr::firstErrorLineSince(std::uint64_t count) {
    State& state = State::get();
    HeldError error;
    {
        std::lock_guard lock(state.mutex);
        const auto found =
            std::upper_bound(state.held.begin(), state.held.end(), count,
                             [](std::uint64_t n, const HeldError& e) { return n < e.ordinal; });
        if (found == state.held.end())
            return {};
        error = *found;
    }
    return error.message ? error.message->line() : std::move(error.line);
}

void ComMsgMgr::beginCommand() {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    state.issued.clear();
}

bool ComMsgMgr::wasIssued(std::string_view line) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    return state.issued.count(std::hash<std::string_view>()(without_line_end(line))) > 0;
}

bool ComMsgMgr::hasIssuedError() {
    return State::get().issuedError;
}
void ComMsgMgr::clearIssuedError() {
    State::get().issuedError = false;
}

unsigned ComMsgMgr::getMsgCount(MsgMask severity) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    unsigned count = 0;
    for (std::size_t i = 0; i < severities.size(); ++i)
        if (severity & severities[i].mask)
            count += state.bySeverity[i].count;
    return count;
}

unsigned ComMsgMgr::getMsgCount(const std::string& id) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    const auto found = state.ids.find(id);
    return found == state.ids.end() ? 0 : found->second.count;
}

void ComMsgMgr::resetMsgCount(const std::string& pattern) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    for (auto& [id, counter] : state.ids)
        if (HSTStringUtils::glob_match(pattern, id))
            counter.reset();
}

void ComMsgMgr::resetAllMsgCounts(bool ids, bool bySeverity) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    if (ids)
        for (auto& [id, counter] : state.ids)
            counter.reset();
    if (bySeverity)
        for (Counter& counter : state.bySeverity)
            counter.reset();
}

void ComMsgMgr::setLifetimeErrorCount(unsigned count) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    state.bySeverity[severity_index(MSGTYPE_ERROR)].count = count;
}

void ComMsgMgr::setMsgLimit(unsigned limit, const std::string& id) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    state.ids[id].limit = limit;
}

unsigned ComMsgMgr::getMsgLimit(const std::string& id) {
    const unsigned usualLimit = default_limit();
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    const auto found = state.ids.find(id);
    return found == state.ids.end() ? usualLimit : found->second.limit.value_or(usualLimit);
}

void ComMsgMgr::resetMsgLimit(const std::string& id) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    if (const auto found = state.ids.find(id); found != state.ids.end())
        found->second.limit.reset();
}

void ComMsgMgr::setMsgLimit(unsigned limit, MsgMask severity) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    for (std::size_t i = 0; i < severities.size(); ++i)
        if (severity & severities[i].mask)
            state.bySeverity[i].limit = limit;
}

unsigned ComMsgMgr::getMsgLimit(MsgMask severity) {
    const std::size_t i = severity_index(severity);
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    return i == no_severity ? UINT_MAX : state.bySeverity[i].limit.value_or(UINT_MAX);
}

void ComMsgMgr::resetMsgLimit(MsgMask severity) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    for (std::size_t i = 0; i < severities.size(); ++i)
        if (severity & severities[i].mask)
            state.bySeverity[i].limit.reset();
}

std::vector<std::shared_ptr<const ComMsgMgrInstance>> ComMsgMgr::getMessages(MsgMask mask) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    std::vector<std::shared_ptr<const ComMsgMgrInstance>> result;
    std::copy_if(state.cache.begin(), state.cache.end(), std::back_inserter(result),
                 [mask](const auto& message) { return (message->getType() & mask) != 0; });
    return result;
}

void ComMsgMgr::turnOnMsgCache() {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    state.caching = true;
}

void ComMsgMgr::turnOffMsgCache() {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    state.caching = false;
}

std::shared_ptr<ComMsgMgrSink> ComMsgMgr::setSink(Destination where, std::shared_ptr<ComMsgMgrSink> sink) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    std::swap(state.sinks[static_cast<std::size_t>(where)], sink);
    return sink;
}

void ComMsgMgr::setAllToConsole(bool all) {
    State::get().allToConsole = all;
}
