#include "platform/msg/detail/RuleStore.h"

#include <algorithm>

namespace com_msg_mgr {

namespace {

bool same_strings(const std::vector<std::string>& a, const std::vector<std::string>& b) {
    return a.size() == b.size() && std::is_permutation(a.begin(), a.end(), b.begin());
}

/// Whether two rules say the same, whoever made them.
bool alike(const ComMsgMgrRuleParts& a, const ComMsgMgrRuleParts& b) {
    return a.id == b.id && a.severity == b.severity && a.regexp == b.regexp && a.limit == b.limit &&
           a.suppress == b.suppress && a.newSeverity == b.newSeverity && a.source == b.source &&
           a.visible == b.visible && same_strings(a.strings, b.strings);
}

} // namespace

RuleStore& RuleStore::get() {
    static RuleStore& store = *new RuleStore; // messages are sent up to the very end of the process
    return store;
}

RuleStore::Judgement RuleStore::judge(const IdRecord* id, ComMsgMgrMask severity,
                                      const std::string_view* text) const {
    std::shared_lock lock(m_mutex);
    const RuleIndex::Verdict verdict = m_index.judge(id, severity, text);
    if (!verdict.entry)
        return {verdict.needsText ? Judgement::needs_text : Judgement::pass, severity};
    const ComMsgMgrMsgControlRule& rule = *verdict.entry->rule;
    const unsigned count = rule.count.fetch_add(1, std::memory_order_relaxed) + 1;
    const ComMsgMgrRuleParts& parts = rule.parts();
    if (parts.suppress)
        return {Judgement::suppressed, severity};
    const bool over = parts.limit >= 0 && count > static_cast<unsigned>(parts.limit);
    return {over ? Judgement::over_limit : Judgement::pass,
            parts.newSeverity == ComMsgMgr::MSGTYPE_ANY ? severity : parts.newSeverity};
}

std::size_t RuleStore::hashOf(const std::vector<std::string>& strings, std::string_view id,
                              ComMsgMgrMask severity) {
    std::size_t sum = std::hash<std::string_view>()(id) * 31 + severity;
    for (const std::string& text : strings)
        sum += std::hash<std::string_view>()(text) * 17; // in any order
    return sum;
}

std::string RuleStore::freeId() {
    std::string id;
    do
        id = "rule" + std::to_string(++m_lastMade);
    while (m_entries.contains(id));
    return id;
}

std::string RuleStore::add(ComMsgMgrRuleParts parts) {
    std::lock_guard changing(m_changing);
    const std::size_t hash = hashOf(parts.strings, parts.id, parts.severity);
    if (parts.ruleId.empty())
        for (auto [at, end] = m_alike.equal_range(hash); at != end; ++at)
            if (alike(at->second->rule->parts(), parts))
                return at->second->rule->ruleId();
    if (parts.ruleId.empty() || m_entries.contains(parts.ruleId))
        parts.ruleId = freeId();
    std::string ruleId = parts.ruleId;
    const bool ofProject = parts.kept && m_projectOpen;
    if (parts.order == 0)
        parts.order = m_lastOrder + 1;
    m_lastOrder = std::max(m_lastOrder, parts.order);
    const std::uint64_t rank = RuleEntry::rankOf(parts);
    auto rule = std::make_shared<const ComMsgMgrMsgControlRule>(std::move(parts));

    std::unique_lock lock(m_mutex);
    const RuleEntry& entry =
        m_entries.emplace(ruleId, RuleEntry{std::move(rule), rank, ofProject}).first->second;
    m_index.add(&entry);
    m_alike.emplace(hash, &entry);
    m_severities = m_index.severitiesWithoutId();
    m_projectChanges += ofProject;
    return ruleId;
}

RuleStore::Rule RuleStore::find(const std::string& ruleId) const {
    std::shared_lock lock(m_mutex);
    const auto found = m_entries.find(ruleId);
    return found == m_entries.end() ? nullptr : found->second.rule;
}

std::vector<RuleStore::Rule> RuleStore::findByQualifiers(const std::vector<std::string>& strings,
                                                         std::string_view id, ComMsgMgrMask severity) const {
    std::lock_guard changing(m_changing);
    std::vector<Rule> result;
    for (auto [at, end] = m_alike.equal_range(hashOf(strings, id, severity)); at != end; ++at) {
        const ComMsgMgrRuleParts& parts = at->second->rule->parts();
        if (parts.id == id && parts.severity == severity && same_strings(parts.strings, strings))
            result.push_back(at->second->rule);
    }
    return result;
}

RuleStore::Map RuleStore::all(bool ofProject) const {
    std::shared_lock lock(m_mutex);
    Map result;
    for (const auto& [ruleId, entry] : m_entries)
        if (entry.ofProject || !ofProject)
            result.emplace_hint(result.end(), ruleId, entry.rule);
    return result;
}

void RuleStore::erase(Entries::iterator place) {
    const RuleEntry* const entry = &place->second;
    const ComMsgMgrRuleParts& parts = entry->rule->parts();
    const auto [first, last] = m_alike.equal_range(hashOf(parts.strings, parts.id, parts.severity));
    m_alike.erase(std::find_if(first, last, [entry](const auto& one) { return one.second == entry; }));
    m_projectChanges += entry->ofProject;
    m_index.remove(entry);
    m_entries.erase(place);
    m_severities = m_index.severitiesWithoutId();
}

bool RuleStore::remove(const std::string& ruleId) {
    std::lock_guard changing(m_changing);
    std::unique_lock lock(m_mutex);
    const auto found = m_entries.find(ruleId);
    if (found == m_entries.end())
        return false;
    erase(found);
    return true;
}

void RuleStore::removeAll() {
    std::lock_guard changing(m_changing);
    std::unique_lock lock(m_mutex);
    while (!m_entries.empty())
        erase(m_entries.begin());
}

void RuleStore::endProject() {
    std::lock_guard changing(m_changing);
    std::unique_lock lock(m_mutex);
    m_projectOpen = false;
    for (auto at = m_entries.begin(); at != m_entries.end();) {
        const auto place = at++;
        if (place->second.ofProject)
            erase(place);
    }
}

} // namespace com_msg_mgr
