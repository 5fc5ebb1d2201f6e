#include "platform/msg/detail/RuleIndex.h"

#include <algorithm>
#include <bit>
#include <unordered_set>

#include "platform/msg/detail/RuleText.h"

namespace com_msg_mgr {

namespace {

constexpr std::size_t gram_size = 3;

bool ranks_before(const RuleEntry* a, const RuleEntry* b) {
    return a->rank > b->rank;
}

IdRecord& record_of(const RuleEntry* entry) {
    return id_record(without_brackets(entry->rule->parts().id));
}

} // namespace

std::uint64_t RuleEntry::rankOf(const ComMsgMgrRuleParts& parts) {
    const std::uint64_t weight = (parts.id.empty() ? 0 : 8) + (parts.strings.empty() ? 0 : 4) +
                                 (parts.severity == ComMsgMgr::MSGTYPE_ANY ? 0 : 2) +
                                 (parts.suppress ? 1 : 0);
    return weight << 60 | parts.order;
}

template <class Visit>
void StringRuleIndex::forEachGram(std::string_view text, const Visit& visit) {
    Gram gram = 0;
    std::size_t read = 0;
    for (const char c : text) {
        gram = (gram << 8 | static_cast<unsigned char>(c)) & 0xFFFFFF;
        if (++read >= gram_size)
            visit(gram);
    }
}

void StringRuleIndex::add(const RuleEntry* entry) {
    const std::string_view required = entry->rule->requiredText();
    if (required.size() < gram_size) {
        m_unfiled.push_back(entry);
        return;
    }
    // Under the bytes that the fewest other rules are filed under.
    Gram best = 0;
    std::size_t fewest = SIZE_MAX;
    forEachGram(required, [&](Gram gram) {
        const auto found = m_byGram.find(gram);
        const std::size_t others = found == m_byGram.end() ? 0 : found->second.size();
        if (others < fewest) {
            fewest = others;
            best = gram;
        }
    });
    m_filed.emplace(entry, best);
    m_byGram[best].push_back(entry);
    m_filter.add(best);
}

void StringRuleIndex::remove(const RuleEntry* entry) {
    const auto filed = m_filed.find(entry);
    if (filed == m_filed.end()) {
        std::erase(m_unfiled, entry);
        return;
    }
    const auto place = m_byGram.find(filed->second);
    std::erase(place->second, entry);
    if (place->second.empty())
        m_byGram.erase(place);
    m_filed.erase(filed);
    if (m_filed.empty())
        m_filter.clear();
}

const RuleEntry* StringRuleIndex::find(ComMsgMgrMask severity, std::string_view text) const {
    const RuleEntry* best = nullptr;
    const auto consider = [&](const RuleEntry* entry) {
        if ((entry->rule->parts().severity & severity) && (!best || ranks_before(entry, best)) &&
            entry->rule->matchesText(text))
            best = entry;
    };
    std::for_each(m_unfiled.begin(), m_unfiled.end(), consider);
    if (m_filed.empty())
        return best;
    std::unordered_set<Gram> seen; // a long text repeats itself
    forEachGram(text, [&](Gram gram) {
        if (!m_filter.mayHave(gram))
            return;
        const auto found = m_byGram.find(gram);
        if (found != m_byGram.end() && seen.insert(gram).second)
            std::for_each(found->second.begin(), found->second.end(), consider);
    });
    return best;
}

std::size_t RuleIndex::severityIndex(ComMsgMgrMask severity) {
    constexpr int lowest = std::countr_zero(ComMsgMgr::MSGTYPE_STATUS);
    return static_cast<std::size_t>(std::countr_zero(severity) - lowest);
}

void RuleIndex::insert(Ranked& list, const RuleEntry* entry) {
    list.insert(std::upper_bound(list.begin(), list.end(), entry, ranks_before), entry);
}

void RuleIndex::add(const RuleEntry* entry) {
    const ComMsgMgrRuleParts& parts = entry->rule->parts();
    if (!parts.id.empty()) {
        IdRecord& record = record_of(entry);
        insert(m_byId[&record], entry);
        record.ruled = true;
        return;
    }
    for (std::size_t i = 0; i < severities; ++i) {
        if (!(parts.severity & ComMsgMgr::MSGTYPE_STATUS << i))
            continue;
        if (parts.strings.empty())
            insert(m_bySeverity[i], entry);
        else
            ++m_stringRules[i];
    }
    if (!parts.strings.empty())
        m_byString.add(entry);
}

void RuleIndex::remove(const RuleEntry* entry) {
    const ComMsgMgrRuleParts& parts = entry->rule->parts();
    if (!parts.id.empty()) {
        IdRecord& record = record_of(entry);
        const auto place = m_byId.find(&record);
        std::erase(place->second, entry);
        if (place->second.empty()) {
            m_byId.erase(place);
            record.ruled = false;
        }
        return;
    }
    for (std::size_t i = 0; i < severities; ++i) {
        if (!(parts.severity & ComMsgMgr::MSGTYPE_STATUS << i))
            continue;
        if (parts.strings.empty())
            std::erase(m_bySeverity[i], entry);
        else
            --m_stringRules[i];
    }
    if (!parts.strings.empty())
        m_byString.remove(entry);
}

RuleIndex::Verdict RuleIndex::judge(const IdRecord* id, ComMsgMgrMask severity,
                                    const std::string_view* text) const {
    if (const auto found = id ? m_byId.find(id) : m_byId.end(); found != m_byId.end()) {
        for (const RuleEntry* entry : found->second) {
            const ComMsgMgrRuleParts& parts = entry->rule->parts();
            if (!(parts.severity & severity))
                continue;
            if (!parts.strings.empty() && !text)
                return {nullptr, true};
            if (parts.strings.empty() || entry->rule->matchesText(*text))
                return {entry, false};
        }
    }
    const std::size_t index = severityIndex(severity);
    if (m_stringRules[index] > 0) {
        if (!text)
            return {nullptr, true};
        if (const RuleEntry* entry = m_byString.find(severity, *text))
            return {entry, false};
    }
    const Ranked& list = m_bySeverity[index];
    return {list.empty() ? nullptr : list.front(), false};
}

ComMsgMgrMask RuleIndex::severitiesWithoutId() const {
    ComMsgMgrMask mask = 0;
    for (std::size_t i = 0; i < severities; ++i)
        if (!m_bySeverity[i].empty() || m_stringRules[i] > 0)
            mask |= ComMsgMgr::MSGTYPE_STATUS << i;
    return mask;
}

} // namespace com_msg_mgr
