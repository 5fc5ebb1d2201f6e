#include "platform/msg/ComMsgMgr.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <ctime>
#include <deque>
#include <map>
#include <mutex>
#include <system_error>
#include <unordered_set>
#include <utility>

#include "platform/env/HSTStringUtils.h"
#include "platform/msg/ComMsgMgrFile.h"
#include "platform/msg/ComMsgMgrProjIface.h"
#include "platform/msg/HEX.h"
#include "platform/msg/detail/MsgDb.h"
#include "platform/msg/detail/MsgDelivery.h"
#include "platform/msg/detail/MsgIds.h"
#include "platform/msg/detail/MsgRedirects.h"
#include "platform/msg/detail/MsgSource.h"
#include "platform/msg/detail/RuleFile.h"
#include "platform/msg/detail/RuleStore.h"
#include "platform/msg/detail/RuleText.h"
#include "platform/param/HPAParamMgr.h"

namespace {

using Mask = ComMsgMgr::MsgMask;
using com_msg_mgr::IdRecord;

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

/// The word that a line of this mask begins with, empty for a plain line.
constexpr std::string_view head_word(Mask mask) {
    if (const std::size_t i = severity_index(mask); i != no_severity)
        return severities[i].word;
    return mask & ComMsgMgr::MSGTYPE_TRACE ? "TRACE" : "";
}

constexpr Mask command_echo =
    ComMsgMgr::MSGTYPE_TRACED_COMMAND | ComMsgMgr::MSGTYPE_USER_COMMAND | ComMsgMgr::MSGTYPE_SESSION_COMMAND;

std::string_view without_line_end(std::string_view line) {
    return line.substr(0, line.size() - line.ends_with('\n'));
}

struct SeverityCount {
    std::atomic<unsigned> count{0};
    std::atomic<std::int64_t> limit{IdRecord::no_limit_of_its_own};
    std::atomic<unsigned> sent{0};          // never set back
    std::atomic<unsigned> sentAtCommand{0}; // `sent` when the current command began
};

/// An ERROR of the recent past, ready to be given as a command's result.
struct HeldError {
    std::uint64_t ordinal;
    std::shared_ptr<const ComMsgMgrInstance> message; ///< of one that was not shown
    std::string line;                                 ///< of one that was shown

    std::size_t bytes() const { return line.size() + (message ? message->bytes() : 0); }
};

/// What is kept of each message for queries.
enum class Caching { none, lines, whole };

struct Help {
    std::string words, description, resolution;
};

/// The manager's switches and what it remembers; ids, delivery and stored messages have places of their own.
/// `mutex` guards the members behind it.
struct State {
    static constexpr std::size_t max_held = 1024;
    static constexpr std::size_t max_held_bytes = 1 << 20;

    std::atomic<bool> echo{true};
    std::atomic<bool> issuedError{false};
    std::atomic<Caching> caching{Caching::none};
    std::atomic<bool> translating{false};
    std::atomic<bool> stamping{false};
    std::atomic<bool> limiting{true};
    std::atomic<bool> tracingInDetail{false};
    std::atomic<bool> maskingErrors{false};
    std::atomic<int> visibility{0};
    std::atomic<int> verbosity{0};
    std::atomic<ComMsgMgr::OperatingMode> modes{ComMsgMgr::MODE_DEFAULT};
    std::array<SeverityCount, severities.size()> bySeverity;

    std::mutex mutex;
    std::deque<HeldError> held;
    std::size_t heldBytes = 0;
    std::unordered_set<std::size_t> issued; // hashes of the ERROR lines shown
    std::map<std::string, int, std::less<>> scopes;
    std::map<std::string, Help, std::less<>> help; // given by senders, by id
    std::map<std::string, std::string, std::less<>> checkFamilies{
        {"ADRC", "DRC"}, {"CDC", "CDC"}, {"DRC", "DRC"}, {"ERC", "ERC"}}; // of design rule checks, by prefix
    ComMsgMgrSrcHandle current;

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

/// What kept messages may take.
constexpr std::size_t little_memory = std::size_t(32) << 20;
constexpr std::size_t much_memory = std::size_t(256) << 20;

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

unsigned limit_of(const IdRecord& id) {
    const std::int64_t own = id.limit.load(std::memory_order_relaxed);
    return own == IdRecord::no_limit_of_its_own ? default_limit() : static_cast<unsigned>(own);
}

bool is_visible(Mask mask) {
    const State& state = State::get();
    if (severity_index(mask) != no_severity)
        return true;
    if (mask & ComMsgMgr::MSGTYPE_TRACE)
        return static_cast<int>(mask & 0xF) <= state.visibility && state.visibility > 0;
    return !(mask & command_echo) || state.echo;
}

/// Puts date and time behind the id of a message line, or behind its severity.
void stamp(std::string& line, Mask mask) {
    const std::string_view word = head_word(mask);
    if (word.empty() || !line.starts_with(word))
        return;
    std::size_t place = word.size() + 2;
    if (place < line.size() && line[place] == '[')
        if (const std::size_t end = line.find("] ", place); end != std::string::npos)
            place = end + 2;
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    char text[32];
    const std::size_t size =
        localtime_r(&now, &parts) ? std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S ", &parts) : 0;
    line.insert(std::min(place, line.size()), text, size);
}

void remember_help(std::string_view id, std::string_view words, const std::string& description,
                   const std::string& resolution) {
    if (id.empty() || (description.empty() && resolution.empty()))
        return;
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    state.help.insert_or_assign(std::string(id),
                                Help{std::string(without_line_end(words)), description, resolution});
}

/// Appends description and resolution of a message to its line, as far as the verbosity asks for them.
void append_details(std::string& line, std::string_view id, const ComMsgMgrInstance& message) {
    Help help{{}, message.getDescription(), message.getResolution()};
    State& state = State::get();
    if (help.description.empty() && help.resolution.empty()) {
        std::lock_guard lock(state.mutex);
        if (const auto found = state.help.find(id); found != state.help.end())
            help = found->second;
    }
    if (!help.description.empty())
        line.append("    Description: ").append(help.description).append(1, '\n');
    if (!help.resolution.empty() && state.verbosity > 1)
        line.append("    Resolution: ").append(help.resolution).append(1, '\n');
}

/// What stands behind severity and id in a shown line.
std::string_view text_of(std::string_view line, Mask mask, std::string_view id) {
    const std::string_view word = head_word(mask);
    const std::size_t size = word.empty() ? 0 : word.size() + 2 + (id.empty() ? 0 : id.size() + 3);
    return without_line_end(line.substr(line.starts_with(word) ? size : 0));
}

std::string help_text(std::string_view id, const Help& help, ComMsgMgr::MsgMask severity = 0) {
    std::string text = '[' + std::string(id) + "] " + help.words + '\n';
    if (severity)
        text.append("\nSeverity:\n").append(ComMsgMgr::msgType2Str(severity)).append("\n");
    if (!help.description.empty())
        text += "\nDescription:\n" + help.description + '\n';
    if (!help.resolution.empty())
        text += "\nResolution:\n" + help.resolution + '\n';
    return text;
}

} // namespace

void ComMsgMgr::init(MsgCache cache, const std::string& file) {
    com_msg_mgr::session_source().setLimit(cache == MSGCACHE_ON ? much_memory : little_memory);
    State::get().caching = cache == MSGCACHE_ON ? Caching::whole : Caching::lines;
    if (file.empty())
        return;
    try {
        createMsgDb(file);
    } catch (const HEXError& error) {
        throw error.message();
    }
}

void ComMsgMgr::uninit() {
    State& state = State::get();
    ComMsgMgrProjIface::closeProject();
    com_msg_mgr::release_all_threads();
    com_msg_mgr::set_sink(static_cast<std::size_t>(Destination::console), nullptr);
    com_msg_mgr::set_all_to_console(false);
    com_msg_mgr::RuleStore::get().removeAll();
    com_msg_mgr::MsgRedirects::get().removeAll();
    com_msg_mgr::for_each_id([](IdRecord& id) {
        id.reset_count();
        id.limit = IdRecord::no_limit_of_its_own;
    });
    for (SeverityCount& severity : state.bySeverity) {
        severity.count = 0;
        severity.limit = IdRecord::no_limit_of_its_own;
        severity.sentAtCommand = severity.sent.load();
    }
    {
        std::lock_guard lock(state.mutex);
        state.held.clear();
        state.heldBytes = 0;
        state.issued.clear();
        state.scopes.clear();
        state.help.clear();
        state.current = ComMsgMgrSrcHandle();
    }
    com_msg_mgr::close_all_dbs();
    com_msg_mgr::session_source().clear();
    com_msg_mgr::forget_sources();
    state.echo = true;
    state.issuedError = false;
    state.caching = Caching::none;
    state.translating = false;
    state.stamping = false;
    state.limiting = true;
    state.visibility = 0;
    state.verbosity = 0;
    state.tracingInDetail = false;
    state.maskingErrors = false;
    state.modes = MODE_DEFAULT;
    ComMsgMgrDb::clear();
    com_msg_mgr::forget_keys();
}

ComMsgMgr::Admission ComMsgMgr::count(MsgMask mask, IdRecord* id) {
    State& state = State::get();
    SeverityCount& all = state.bySeverity[severity_index(mask)];
    all.sent.fetch_add(1, std::memory_order_relaxed);
    const unsigned ofSeverity = all.count.fetch_add(1, std::memory_order_relaxed) + 1;
    const unsigned ofId = id ? id->count.fetch_add(1, std::memory_order_relaxed) + 1 : 0;
    if (s_verboseDepth > 0 || !state.limiting.load(std::memory_order_relaxed))
        return Admission::show;
    if (id && ofId > limit_of(*id)) {
        const bool told = id->noticed.load(std::memory_order_relaxed) || id->noticed.exchange(true);
        return told ? Admission::stopped_by_limit : Admission::first_stopped_by_limit;
    }
    const std::int64_t limit = all.limit.load(std::memory_order_relaxed);
    return limit != IdRecord::no_limit_of_its_own && ofSeverity > limit ? Admission::stopped_by_limit
                                                                        : Admission::show;
}

ComMsgMgr::Ticket ComMsgMgr::admit(std::string_view subsystem, MsgMask mask, std::string_view number) {
    if (!is_visible(mask))
        return {Admission::unseen};
    const bool counts = severity_index(mask) != no_severity;
    if (counts && isQuiet())
        return {Admission::unseen};
    const com_msg_mgr::KeyRecord& key = com_msg_mgr::key_record(subsystem, number);
    Ticket ticket{Admission::show, mask, key.id, &key};
    if (counts)
        judge(ticket, mask, nullptr);
    return ticket;
}

ComMsgMgr::Ticket ComMsgMgr::admitText(MsgMask mask, std::string_view id) {
    if (!is_visible(mask))
        return {Admission::unseen};
    const bool counts = severity_index(mask) != no_severity;
    if (counts && isQuiet())
        return {Admission::unseen};
    IdRecord* const record = id.empty() ? nullptr : &com_msg_mgr::id_record(id);
    Ticket ticket{Admission::show, mask, record};
    if (counts)
        judge(ticket, mask, nullptr);
    return ticket;
}

/// Says what becomes of a message with a severity, and counts it, unless rules have to see its text first.
void ComMsgMgr::judge(Ticket& ticket, MsgMask mask, const std::string_view* text) {
    using com_msg_mgr::RuleStore;
    const MsgMask severity = severities[severity_index(mask)].mask;
    RuleStore::Judgement verdict{RuleStore::Judgement::pass, severity};
    if (const RuleStore& rules = RuleStore::get(); rules.mayTouch(ticket.id, severity))
        verdict = rules.judge(ticket.id, severity, text);
    switch (verdict.what) {
    case RuleStore::Judgement::needs_text:
        ticket.admission = Admission::undecided;
        return;
    case RuleStore::Judgement::suppressed:
        ticket.admission = Admission::suppressed;
        return;
    default:
        break;
    }
    if (verdict.severity != severity) {
        ticket.type = (mask & ~MSGTYPE_SEVERITIES) | verdict.severity;
        ticket.before = mask;
    }
    ticket.admission = count(ticket.type, ticket.id);
    const bool limiting = s_verboseDepth == 0 && State::get().limiting.load(std::memory_order_relaxed);
    if (verdict.what == RuleStore::Judgement::over_limit && limiting && ticket.isShown())
        ticket.admission = Admission::stopped_by_limit;
}

/// Has the rules judge an undecided message by its text. False if there is nothing more to do with it.
bool ComMsgMgr::decide(Ticket& ticket, MsgMask mask, std::string_view text) {
    const std::string_view judged = without_line_end(text);
    if (ticket.admission == Admission::undecided)
        judge(ticket, mask, &judged);
    return ticket.isWanted();
}

void ComMsgMgr::noticeLimit(const IdRecord& id) {
    const unsigned limit = limit_of(id);
    if (limit > 0)
        sendMsg("common", MSGTYPE_INFO, "@17-5153@%s%u\n", id.id, limit);
}

/// Keeps a message for queries, and in the open databases.
template <class MakeInstance>
void ComMsgMgr::keep(const Ticket& ticket, std::string_view line, const MakeInstance& makeInstance) {
    const Caching caching = State::get().caching.load(std::memory_order_relaxed);
    const bool isShown = ticket.isShown();
    if (caching == Caching::whole) {
        auto kept = std::make_shared<ComMsgMgrInstance>(makeInstance());
        kept->setSuppressed(!isShown);
        com_msg_mgr::session_source().add(std::move(kept));
    }
    const bool recording = com_msg_mgr::is_any_db_open();
    if (caching != Caching::lines && !recording)
        return;
    const std::string_view id = ticket.id ? std::string_view(ticket.id->id) : std::string_view();
    const std::string hiddenText = isShown ? std::string() : makeInstance().text();
    const com_msg_mgr::MessageLine kept{ticket.type,
                                        ticket.before ? ticket.before : ticket.type,
                                        ticket.id,
                                        ticket.key ? std::string_view(ticket.key->subsystem)
                                                   : ticket.subsystem,
                                        isShown ? text_of(line, ticket.type, id) : hiddenText,
                                        !isShown};
    if (caching == Caching::lines)
        com_msg_mgr::session_source().add(kept);
    if (recording) {
        // The line of a traced script tells which of its commands has begun.
        if (ticket.type & MSGTYPE_TRACED_COMMAND)
            noteCommand(kept.text.substr(kept.text.starts_with("# ") ? 2 : 0));
        com_msg_mgr::add_to_dbs(kept);
    }
}

template <class MakeInstance>
void ComMsgMgr::conclude(const Ticket& ticket, std::string_view line, const MakeInstance& makeInstance) {
    State& state = State::get();
    const MsgMask mask = ticket.type;
    const bool shown = ticket.isShown();
    const bool hidden =
        ticket.admission == Admission::hidden_by_mode || ticket.admission == Admission::suppressed;
    const auto instance = [&] {
        ComMsgMgrInstance message = makeInstance();
        message.setType(mask);
        return message;
    };
    if (mask & MSGTYPE_ERROR) {
        HeldError error{0, nullptr, std::string(without_line_end(line))};
        if (!shown)
            error.message = std::make_shared<const ComMsgMgrInstance>(instance());
        std::lock_guard lock(state.mutex);
        error.ordinal = ++s_errorCount;
        state.noteError(std::move(error), without_line_end(line));
    }
    if (shown || hidden)
        keep(ticket, line, instance);
    const std::string_view id = ticket.id ? std::string_view(ticket.id->id) : std::string_view();
    const bool showsId = !id.empty() && !head_word(mask).empty();
    if (shown && showsId && state.verbosity.load(std::memory_order_relaxed) > 0) {
        std::string detailed(line);
        if (state.stamping.load(std::memory_order_relaxed))
            stamp(detailed, mask);
        append_details(detailed, id, instance());
        com_msg_mgr::deliver(mask, id, detailed);
    } else if (shown && state.stamping.load(std::memory_order_relaxed)) {
        std::string stamped(line);
        stamp(stamped, mask);
        com_msg_mgr::deliver(mask, id, stamped);
    } else if (shown) {
        com_msg_mgr::deliver(mask, id, line);
    } else if (ticket.admission == Admission::first_stopped_by_limit) {
        noticeLimit(*ticket.id);
    }
}

void ComMsgMgr::emit(Ticket ticket, MsgMask mask, std::string_view key,
                     std::span<const com_msg_mgr::ArgView> args) {
    const auto append_text = [&](std::string& out) {
        const bool translate = ticket.key->translated && isMsgXlationOn();
        if (const std::string* words = translate ? ticket.key->translated : ticket.key->words)
            com_msg_mgr::append_words(out, *words, args);
        else
            com_msg_mgr::append_missing(out, args);
    };
    std::string text;
    if (ticket.admission == Admission::undecided) {
        text.reserve(240);
        append_text(text);
        if (!decide(ticket, mask, text))
            return;
    }
    std::string line;
    if (ticket.isShown()) {
        line.reserve(240);
        appendHead(line, ticket.type, ticket.id->id);
        text.empty() ? append_text(line) : void(line += text);
        line += '\n';
    }
    conclude(ticket, line, [&] {
        std::vector<ComMsgMgrArg> owned;
        for (const com_msg_mgr::ArgView& arg : args)
            owned.push_back(std::visit([](const auto& value) { return com_msg_mgr::to_arg(value); }, arg));
        return ComMsgMgrInstance::fromKey(ticket.key->subsystem, mask, key, std::move(owned));
    });
}

void ComMsgMgr::emitText(Ticket ticket, MsgMask mask, std::string_view text) {
    if (!decide(ticket, mask, text))
        return;
    std::string line;
    if (ticket.isShown()) {
        const std::string_view id = ticket.id->id;
        line.reserve(id.size() + text.size() + 24);
        appendHead(line, ticket.type, id);
        line += text;
        if (!text.ends_with('\n'))
            line += '\n';
    }
    conclude(ticket, line, [&] { return ComMsgMgrInstance::fromText("common", mask, ticket.id->id, text); });
}

void ComMsgMgr::sendMsg(const ComMsgMgrInstance& message) {
    const MsgMask mask = message.getType();
    const std::string ownId = message.number().empty() ? message.id() : std::string();
    Ticket ticket = message.number().empty() ? admitText(mask, ownId)
                                             : admit(message.subsystem(), mask, message.number());
    if (ticket.admission == Admission::undecided)
        decide(ticket, mask, message.text());
    if (ticket.isShown() && !(message.displayInModes() & State::get().modes))
        ticket.admission = Admission::hidden_by_mode;
    if (!ticket.isWanted())
        return;
    ticket.subsystem = message.subsystem();
    if (!ownId.empty())
        remember_help(ownId, message.text(), message.getDescription(), message.getResolution());
    std::string line;
    if (ticket.isShown() && ticket.type == mask) {
        line = message.getMessage();
    } else if (ticket.isShown()) {
        ComMsgMgrInstance changed = message;
        changed.setType(ticket.type);
        line = changed.getMessage();
    }
    conclude(ticket, line, [&] { return message; });
}

void ComMsgMgr::sendMsgString(const std::string& subsystem, MsgMask mask, std::string_view text) {
    if (text.empty())
        return;
    Ticket ticket = admitText(mask, {});
    ticket.subsystem = subsystem;
    if (!decide(ticket, mask, text))
        return;

    std::string made;
    if (const std::size_t severity = severity_index(mask); severity != no_severity) {
        const std::string_view word = severities[severity].word;
        const bool told = text.starts_with(word) && text.substr(word.size()).starts_with(": ");
        if (ticket.type != mask)
            appendHead(made, ticket.type, {});
        else if (!told)
            appendHead(made, mask, {});
        if (ticket.type != mask && told)
            text.remove_prefix(word.size() + 2);
    }
    if (!made.empty() || text.back() != '\n') {
        made += text;
        if (made.back() != '\n')
            made += '\n';
    }
    conclude(ticket, made.empty() ? text : made,
             [&] { return ComMsgMgrInstance::fromText(subsystem, mask, {}, text); });
}

void ComMsgMgr::sendMsgById(std::string_view prefix, int number, MsgMask mask, std::string_view text) {
    char shortId[64];
    std::string longId;
    std::string_view id;
    char digits[16];
    const std::size_t size =
        static_cast<std::size_t>(std::to_chars(digits, digits + sizeof digits, number).ptr - digits);
    if (prefix.size() + 1 + size <= sizeof shortId) {
        char* const dash = std::copy(prefix.begin(), prefix.end(), shortId);
        *dash = '-';
        id = {shortId, std::copy(digits, digits + size, dash + 1)};
    } else {
        id = longId.append(prefix).append(1, '-').append(digits, size);
    }
    if (const Ticket ticket = admitText(mask, id); ticket.isWanted())
        emitText(ticket, mask, text);
}

void ComMsgMgr::sendFormattedMsg(const char*, int, std::string_view ssname, MsgMask mask,
                                 std::string_view gid, std::string_view text, const std::string& description,
                                 const std::string& resolution) {
    const std::string id = std::string(ssname) + ' ' + std::string(gid);
    const Ticket ticket = admitText(mask, id);
    if (!ticket.isWanted())
        return;
    remember_help(id, text, description, resolution);
    emitText(ticket, mask, text);
}

void ComMsgMgr::sendScopedMsg(std::string_view scope, MsgMask mask, std::string_view text) {
    if (hasScope(scope) < static_cast<int>(mask & 0xF) && !is_visible(mask))
        return;
    std::string line;
    if (State::get().tracingInDetail)
        line = "TRACE: [" + std::string(scope) + ", level " + std::to_string(mask & 0xF) + ", thread " +
               std::to_string(com_msg_mgr::thread_number()) + "] ";
    line.append(text).append(text.ends_with('\n') ? "" : "\n");
    conclude({Admission::show, mask}, line,
             [&] { return ComMsgMgrInstance::fromText("common", mask, {}, text); });
}

void ComMsgMgr::appendHead(std::string& line, MsgMask mask, std::string_view id) {
    const std::string_view word = head_word(mask);
    if (word.empty())
        return;
    line.append(word).append(": ");
    if (!id.empty())
        line.append(1, '[').append(id).append("] ");
}

ComMsgMgr::MsgMask ComMsgMgr::msgStr2Type(std::string_view word) {
    for (const Severity& severity : severities)
        if (severity.word == word)
            return severity.mask;
    return word == "ANY" || word == "ALL" ? MSGTYPE_ANY : 0;
}

std::string_view ComMsgMgr::msgType2Str(MsgMask mask) {
    return mask == MSGTYPE_ANY ? "ANY" : head_word(mask);
}

ComMsgMgr::MetaType ComMsgMgr::metaStr2Type(std::string_view word) {
    static constexpr std::pair<std::string_view, MetaType> types[] = {
        {"file", MetaType::file},   {"line", MetaType::line_number}, {"pin", MetaType::pin},
        {"block", MetaType::block}, {"reg", MetaType::reg},          {"operator", MetaType::operator_},
        {"net", MetaType::net},     {"io_port", MetaType::io_port},  {"instance", MetaType::instance},
        {"site", MetaType::site},
    };
    for (const auto& [name, type] : types)
        if (name == word)
            return type;
    return MetaType::none;
}

bool ComMsgMgr::getHelpOnMessage(const std::string& given, std::string& text) {
    std::string_view id = HSTStringUtils::trim(given);
    if (id.starts_with('[') && id.ends_with(']'))
        id = HSTStringUtils::trim(id.substr(1, id.size() - 2));
    const std::size_t blank = id.rfind(' ');
    if (blank != std::string_view::npos) {
        const std::string_view alias = id.substr(0, blank), number = id.substr(blank + 1);
        for (const std::string& subsystem : ComMsgMgrDb::subsystems()) {
            const auto db = ComMsgMgrDb::of(subsystem);
            if (!HSTStringUtils::iequals(db->alias(), alias))
                continue;
            if (const ComMsgMgrFile::Entry* entry = db->find(number)) {
                text =
                    help_text(db->alias() + ' ' + entry->number,
                              {*db->words(number, isMsgXlationOn()), entry->description, entry->resolution},
                              entry->severity);
                return true;
            }
        }
    }
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    if (const auto found = state.help.find(id); found != state.help.end()) {
        text = help_text(found->first, found->second);
        return true;
    }
    text = "No message has the id '" + given +
           "'. An id is what stands between brackets in a message, such as 'Common 17-153'.";
    return false;
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

void ComMsgMgr::addScope(const std::string& scope, int level) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    state.scopes.insert_or_assign(scope, level);
}

int ComMsgMgr::hasScope(std::string_view scope) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    const auto found = state.scopes.find(scope);
    return found == state.scopes.end() ? 0 : found->second;
}

void ComMsgMgr::removeScope(std::string_view scope) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    if (const auto found = state.scopes.find(scope); found != state.scopes.end())
        state.scopes.erase(found);
}

void ComMsgMgr::resetScope() {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    state.scopes.clear();
}

void ComMsgMgr::setVerbosity(int level) {
    State::get().verbosity = level;
}
int ComMsgMgr::getVerbosity() {
    return State::get().verbosity;
}

void ComMsgMgr::setTraceVerbosity() {
    State::get().tracingInDetail = true;
}
void ComMsgMgr::resetTraceVerbosity() {
    State::get().tracingInDetail = false;
}
bool ComMsgMgr::getTraceVerbosity() {
    return State::get().tracingInDetail;
}

void ComMsgMgr::maskMsgMgrErrors() {
    State::get().maskingErrors = true;
}
bool ComMsgMgr::areMsgMgrErrorsMasked() {
    return State::get().maskingErrors;
}

bool ComMsgMgr::isMsgXlationOn() {
    return State::get().translating;
}
void ComMsgMgr::turnOnMsgXlation() {
    State::get().translating = true;
}
void ComMsgMgr::turnOffMsgXlation() {
    State::get().translating = false;
}

bool ComMsgMgr::isTimeStampOn() {
    return State::get().stamping;
}
void ComMsgMgr::turnOnTimeStamp() {
    State::get().stamping = true;
}
void ComMsgMgr::turnOffTimeStamp() {
    State::get().stamping = false;
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
    com_msg_mgr::save_changed_rules();
    for (SeverityCount& severity : state.bySeverity)
        severity.sentAtCommand = severity.sent.load();
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
    unsigned count = 0;
    for (std::size_t i = 0; i < severities.size(); ++i)
        if (severity & severities[i].mask)
            count += State::get().bySeverity[i].count;
    return count;
}

unsigned ComMsgMgr::getTclMsgCount(MsgMask severity) {
    unsigned count = 0;
    for (std::size_t i = 0; i < severities.size(); ++i)
        if (severity & severities[i].mask)
            count += State::get().bySeverity[i].sent - State::get().bySeverity[i].sentAtCommand;
    return count;
}

unsigned ComMsgMgr::getMsgCount(const std::string& id) {
    const IdRecord* record = com_msg_mgr::find_id(id);
    return record ? record->count.load() : 0;
}

void ComMsgMgr::resetMsgCount(const std::string& pattern) {
    com_msg_mgr::for_each_id([&pattern](IdRecord& id) {
        if (HSTStringUtils::glob_match(pattern, id.id))
            id.reset_count();
    });
}

void ComMsgMgr::resetAllMsgCounts(bool ids, bool bySeverity, bool rules) {
    if (ids)
        com_msg_mgr::for_each_id([](IdRecord& id) { id.reset_count(); });
    if (bySeverity)
        for (SeverityCount& severity : State::get().bySeverity)
            severity.count = 0;
    if (rules)
        for (const auto& [ruleId, rule] : com_msg_mgr::RuleStore::get().all())
            rule->count = 0;
}

void ComMsgMgr::setLifetimeErrorCount(unsigned count) {
    State::get().bySeverity[severity_index(MSGTYPE_ERROR)].count = count;
}

void ComMsgMgr::setMsgLimit(unsigned limit, const std::string& id) {
    com_msg_mgr::id_record(id).limit = limit;
}

unsigned ComMsgMgr::getMsgLimit(const std::string& id) {
    const IdRecord* record = com_msg_mgr::find_id(id);
    return record ? limit_of(*record) : default_limit();
}

void ComMsgMgr::resetMsgLimit(const std::string& id) {
    if (IdRecord* record = com_msg_mgr::find_id(id))
        record->limit = IdRecord::no_limit_of_its_own;
}

void ComMsgMgr::setMsgLimit(unsigned limit, MsgMask severity) {
    for (std::size_t i = 0; i < severities.size(); ++i)
        if (severity & severities[i].mask)
            State::get().bySeverity[i].limit = limit;
}

unsigned ComMsgMgr::getMsgLimit(MsgMask severity) {
    const std::size_t i = severity_index(severity);
    const std::int64_t limit =
        i == no_severity ? IdRecord::no_limit_of_its_own : State::get().bySeverity[i].limit.load();
    return limit == IdRecord::no_limit_of_its_own ? UINT_MAX : static_cast<unsigned>(limit);
}

void ComMsgMgr::resetMsgLimit(MsgMask severity) {
    for (std::size_t i = 0; i < severities.size(); ++i)
        if (severity & severities[i].mask)
            State::get().bySeverity[i].limit = IdRecord::no_limit_of_its_own;
}

std::string ComMsgMgr::matchesDRCPrefix(std::string_view id) {
    id = com_msg_mgr::without_brackets(id);
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    const auto found = state.checkFamilies.find(id.substr(0, id.find_first_of(" -")));
    return found == state.checkFamilies.end() ? std::string() : found->second;
}

void ComMsgMgr::addDRCPrefix(const std::string& prefix, const std::string& family) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    state.checkFamilies.insert_or_assign(prefix, family);
}

void ComMsgMgr::disableMsgLimitCheck() {
    State::get().limiting = false;
}
void ComMsgMgr::enableMsgLimitCheck() {
    State::get().limiting = true;
}

std::vector<std::shared_ptr<const ComMsgMgrInstance>> ComMsgMgr::getMessages(MsgMask mask) {
    std::vector<std::shared_ptr<const ComMsgMgrInstance>> result;
    getMessages(result, getRootMsgSrcHandle(), mask);
    return result;
}

void ComMsgMgr::getMessages(std::vector<std::shared_ptr<const ComMsgMgrInstance>>& list,
                            const ComMsgMgrSrcHandle& source, MsgMask mask) {
    forEachMessage(source, mask, [&list](const auto& message) { list.push_back(message); });
}

void ComMsgMgr::forEachMessage(
    const ComMsgMgrSrcHandle& source, MsgMask mask,
    const std::function<void(const std::shared_ptr<const ComMsgMgrInstance>&)>& visit) {
    source.source().visit(mask, visit);
}

void ComMsgMgr::turnOnMsgCache() {
    com_msg_mgr::session_source().setLimit(much_memory);
    State::get().caching = Caching::whole;
}
void ComMsgMgr::turnOffMsgCache() {
    State::get().caching = Caching::none;
}

void ComMsgMgr::createMsgDb(const std::string& file) {
    com_msg_mgr::create_db(file);
}
void ComMsgMgr::closeMsgDb(const std::string& file) {
    com_msg_mgr::close_db(file);
}
bool ComMsgMgr::isMsgDb(const std::string& file) {
    return com_msg_mgr::is_db(file);
}
ComMsgMgrSrcHandle ComMsgMgr::loadMsgSrc(const std::string& file, const std::string& name) {
    return com_msg_mgr::load_db(file, name);
}
void ComMsgMgr::noteCommand(std::string_view command) {
    com_msg_mgr::note_db_command(command);
}

std::string ComMsgMgr::getSrcHandleStatistics(unsigned handle, MsgMask mask, bool dump) {
    std::vector<ComMsgMgrSrcHandle> handles;
    getRootMsgSrcHandle().getMsgMgrHandles(handles);
    std::string text;
    for (std::size_t i = 0; i < handles.size(); ++i) {
        if (handle != UINT_MAX && handle != i)
            continue;
        std::array<std::size_t, severities.size() + 1> counts{}; // lines without a severity come last
        forEachMessage(handles[i], mask, [&](const auto& message) {
            ++counts[severity_index(message->getType())];
            if (dump)
                writeToConsole(message->getMessage());
        });
        text += (text.empty() ? "" : "\n") + std::to_string(i) + ' ' + handles[i].name() + ':';
        for (std::size_t severity = 0; severity < severities.size(); ++severity)
            text +=
                ' ' + std::string(severities[severity].word) + ' ' + std::to_string(counts[severity]) + ',';
        text += " other lines " + std::to_string(counts.back());
    }
    return text;
}

void ComMsgMgr::showStatistics() {
    constexpr std::size_t most = 20;
    State& state = State::get();
    std::string text = "Messages sent by severity:\n";
    for (std::size_t i = 0; i < severities.size(); ++i)
        text += "    " + std::string(severities[i].word) + ": " + std::to_string(state.bySeverity[i].count) +
                '\n';
    std::vector<std::pair<unsigned, std::string>> ids;
    com_msg_mgr::for_each_id([&ids](const IdRecord& id) {
        if (id.count > 0)
            ids.emplace_back(id.count, id.id);
    });
    const std::size_t listed = std::min(most, ids.size());
    std::partial_sort(ids.begin(), ids.begin() + static_cast<std::ptrdiff_t>(listed), ids.end(),
                      [](const auto& a, const auto& b) {
                          return a.first != b.first ? a.first > b.first : a.second < b.second;
                      });
    text += "Ids that came most often, of " + std::to_string(ids.size()) + ":\n";
    for (std::size_t i = 0; i < listed; ++i)
        text += "    " + ids[i].second + ": " + std::to_string(ids[i].first) + '\n';
    text += "Memory of kept messages: " + std::to_string(com_msg_mgr::session_source().bytes()) + " bytes\n";
    text += "Open message databases:\n";
    for (const com_msg_mgr::OpenDb& db : com_msg_mgr::open_dbs())
        text += "    " + db.path + ": " + std::to_string(db.messages) + '\n';
    sendMsgString("common", MSGTYPE_OUTPUT, text);
}

void ComMsgMgr::writeToConsole(std::string_view text) {
    com_msg_mgr::write_console(text);
}

ComMsgMgrSrcHandle ComMsgMgr::getRootMsgSrcHandle() {
    return ComMsgMgrSrcHandle();
}

ComMsgMgrSrcHandle ComMsgMgr::getCurrentMsgSrcHandle() {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    return state.current;
}

void ComMsgMgr::setCurrentMsgSrcHandle(const ComMsgMgrSrcHandle& source) {
    State& state = State::get();
    std::lock_guard lock(state.mutex);
    state.current = source;
}

std::shared_ptr<ComMsgMgrSink> ComMsgMgr::setSink(Destination where, std::shared_ptr<ComMsgMgrSink> sink) {
    return com_msg_mgr::set_sink(static_cast<std::size_t>(where), std::move(sink));
}

void ComMsgMgr::setAllToConsole(bool all) {
    com_msg_mgr::set_all_to_console(all);
}

ComMsgMgr::OperatingMode ComMsgMgrProjIface::getOperatingMode() {
    return State::get().modes;
}

void ComMsgMgrProjIface::setOperatingMode(ComMsgMgr::OperatingMode modes) {
    State::get().modes = modes;
}
