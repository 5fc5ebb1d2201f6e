#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/msg/detail/RuleIndex.h"

namespace com_msg_mgr {

/// The message rules in force. Any thread. Reading is meant for very many threads at once; a message that no
/// rule can touch costs two atomic loads.
class RuleStore {
public:
    using Rule = std::shared_ptr<const ComMsgMgrMsgControlRule>;
    using Map = std::map<std::string, Rule>;

    static RuleStore& get();

    /// False if no rule can touch a message of this id (null for none) and severity.
    bool mayTouch(const IdRecord* id, ComMsgMgrMask severity) const {
        return (m_severities.load(std::memory_order_relaxed) & severity) ||
               (id && id->ruled.load(std::memory_order_relaxed));
    }
    struct Judgement {
        enum What { pass, suppressed, over_limit, needs_text } what;
        ComMsgMgrMask severity; ///< the one that the message has from now on
    };
    /// Asks the rules about a message, and counts what they do. \param text null as long as it is not made
    Judgement judge(const IdRecord* id, ComMsgMgrMask severity, const std::string_view* text) const;

    /// Adds a rule and returns its rule id: the one asked for if it is free, else one made here. Without a
    /// wish the id of a rule that says the same already. Throws as the rule's constructor.
    std::string add(ComMsgMgrRuleParts parts);
    /// Null if there is none.
    Rule find(const std::string& ruleId) const;
    /// Those of exactly these qualifiers; the order of the strings does not matter.
    std::vector<Rule> findByQualifiers(const std::vector<std::string>& strings, std::string_view id,
                                       ComMsgMgrMask severity) const;
    /// All rules by rule id, as they are now; with `ofProject` those alone that belong to the open project.
    Map all(bool ofProject = false) const;
    /// False if there was none.
    bool remove(const std::string& ruleId);
    void removeAll();

    /// Rules that are to be kept belong, from now on, to a project; ended, its rules are gone.
    void beginProject() { m_projectOpen = true; }
    void endProject();
    /// Counts the changes of the project's rules.
    std::uint64_t projectChanges() const { return m_projectChanges.load(std::memory_order_relaxed); }

private:
    using Entries = std::map<std::string, RuleEntry>;

    static std::size_t hashOf(const std::vector<std::string>& strings, std::string_view id,
                              ComMsgMgrMask severity);
    std::string freeId();
    void erase(Entries::iterator entry);

    // Whoever changes the rules holds m_changing, and m_mutex only while they are in between: what is slow,
    // or may send messages, is done under the first alone.
    mutable std::mutex m_changing;
    mutable std::shared_mutex m_mutex;
    Entries m_entries;                                              // guarded by m_mutex
    RuleIndex m_index;                                              // guarded by m_mutex
    std::unordered_multimap<std::size_t, const RuleEntry*> m_alike; // guarded by m_changing
    std::uint64_t m_lastOrder = 0;                                  // guarded by m_changing
    std::uint64_t m_lastMade = 0;                                   // guarded by m_changing
    std::atomic<ComMsgMgrMask> m_severities{0};
    std::atomic<bool> m_projectOpen{false};
    std::atomic<std::uint64_t> m_projectChanges{0};
};

} // namespace com_msg_mgr
