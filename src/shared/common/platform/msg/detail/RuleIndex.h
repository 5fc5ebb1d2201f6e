#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/msg/ComMsgMgrMsgControlRule.h"
#include "platform/msg/detail/MsgIds.h"

namespace com_msg_mgr {

/// A rule in force. Of several that match a message the one of the highest rank acts: what names the id comes
/// before what names strings, that before what names a severity; then suppression, then the latest.
struct RuleEntry {
    std::shared_ptr<const ComMsgMgrMsgControlRule> rule;
    std::uint64_t rank;
    bool ofProject;

    static std::uint64_t rankOf(const ComMsgMgrRuleParts& parts);
};

/// The rules without an id that ask for strings, found by one pass over a text: each rule is filed under
/// three bytes that every text it matches has. Guarded by its owner.
class StringRuleIndex {
public:
    void add(const RuleEntry* entry);
    void remove(const RuleEntry* entry);
    /// The rule of the highest rank that matches a message of the severity; null if none does.
    const RuleEntry* find(ComMsgMgrMask severity, std::string_view text) const;

private:
    using Gram = std::uint32_t;
    /// A set of grams that may say yes too often. Most grams of a text are in no rule, and are told apart
    /// here, in little memory.
    class Filter {
    public:
        void add(Gram gram) {
            m_words.resize(words);
            m_words[slotOf(gram) / 64] |= std::uint64_t(1) << slotOf(gram) % 64;
        }
        bool mayHave(Gram gram) const { return m_words[slotOf(gram) / 64] >> slotOf(gram) % 64 & 1; }
        void clear() { m_words.clear(); }

    private:
        static constexpr int bits = 20;
        static constexpr std::size_t words = (std::size_t(1) << bits) / 64;
        static std::size_t slotOf(Gram gram) { return (gram * 2654435761u) >> (32 - bits); }

        std::vector<std::uint64_t> m_words;
    };

    /// Calls visit(gram) for all bytes of a text, three at a time.
    template <class Visit>
    static void forEachGram(std::string_view text, const Visit& visit);

    std::unordered_map<const RuleEntry*, Gram> m_filed;
    std::unordered_map<Gram, std::vector<const RuleEntry*>> m_byGram;
    Filter m_filter;                         // has all grams since there were none
    std::vector<const RuleEntry*> m_unfiled; // rules that have to be tried with every text
};

/// The rules in force, ready to judge. Guarded by its owner.
class RuleIndex {
public:
    struct Verdict {
        const RuleEntry* entry = nullptr; ///< the rule that acts
        bool needsText = false;           ///< it takes the text to tell
    };

    void add(const RuleEntry* entry);
    void remove(const RuleEntry* entry);
    Verdict judge(const IdRecord* id, ComMsgMgrMask severity, const std::string_view* text) const;
    /// The severities that rules without an id are about.
    ComMsgMgrMask severitiesWithoutId() const;

private:
    static constexpr std::size_t severities = 6;
    /// By falling rank.
    using Ranked = std::vector<const RuleEntry*>;

    static void insert(Ranked& list, const RuleEntry* entry);
    static std::size_t severityIndex(ComMsgMgrMask severity);

    std::unordered_map<const IdRecord*, Ranked> m_byId;
    std::array<Ranked, severities> m_bySeverity;
    std::array<std::size_t, severities> m_stringRules{}; // how many
    StringRuleIndex m_byString;
};

} // namespace com_msg_mgr
