#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/msg/ComMsgMgr.h"

/// What a message rule is made of. A message matches it if it has the id (when there is one), a severity of
/// the mask, and a text in which all strings are found.
struct ComMsgMgrRuleParts {
    std::vector<std::string> strings;
    std::string id; ///< "Common 17-153", also in the brackets of the log; empty for any
    ComMsgMgr::MsgMask severity = ComMsgMgr::MSGTYPE_ANY;
    int source = ComMsgMgr::CREATED_FROM_TCL; ///< a ComMsgMgr::RuleSource
    bool regexp = false;                      ///< the strings are regular expressions
    int limit = -1;                           ///< how many messages are shown; below 0: no limit
    bool suppress = false;
    ComMsgMgr::MsgMask newSeverity = ComMsgMgr::MSGTYPE_ANY; ///< MSGTYPE_ANY: unchanged
    std::string ruleId;
    std::string notes;
    std::string author;
    std::string timeStamp;
    bool visible = true;     ///< false: shown only when hidden rules are asked for
    bool kept = true;        ///< belongs to the project that is open, if one is
    std::uint64_t order = 0; ///< of two alike in all else, the higher one acts; 0: the latest of all
    static constexpr std::uint64_t maxOrder = std::uint64_t(1) << 59;
};

/// A message rule: made by ComMsgMgrRuleIface, never changed afterwards but for its count. Any thread.
class ComMsgMgrMsgControlRule {
public:
    using Attributes = std::vector<std::pair<std::string, std::string>>;

    /// Throws HEXError for a string that no rule can have: an empty one, a regular expression that is
    /// malformed or too large; and for a rule that does nothing.
    explicit ComMsgMgrMsgControlRule(ComMsgMgrRuleParts parts);
    ~ComMsgMgrMsgControlRule();
    ComMsgMgrMsgControlRule(const ComMsgMgrMsgControlRule&) = delete;
    ComMsgMgrMsgControlRule& operator=(const ComMsgMgrMsgControlRule&) = delete;

    const ComMsgMgrRuleParts& parts() const { return m_parts; }
    const std::string& ruleId() const { return m_parts.ruleId; }
    /// Shown without being asked for: the tool's own rules are not.
    bool isVisible() const {
        return m_parts.visible && m_parts.source != ComMsgMgr::CREATED_FROM_INTERNAL_CLIENT;
    }

    /// The rule in a line of words, "suppress messages of the id 'Common 17-153'"; with `annotations` also
    /// its author, time and notes.
    std::string getRule(bool annotations) const;
    /// The command that makes the rule, in one line; with `complete` under the same rule id.
    std::string getTclCommand(bool complete) const;
    /// Makes `list` all of the rule as keys and values, in a fixed order; each string has a pair of its own.
    void getMsgRuleAttributes(Attributes& list) const;
    /// What such a list says. Throws HEXError naming the key for one that is unknown, or has no such value.
    static ComMsgMgrRuleParts partsOf(const Attributes& list);

    /// Whether the text has all strings. Linear in the text.
    bool matchesText(std::string_view text) const;
    /// A text of at least three bytes that stands in every text that matches; empty if none is known.
    std::string_view requiredText() const { return m_required; }

    /// Messages that the rule has acted on since its count was set back.
    mutable std::atomic<unsigned> count{0};

private:
    struct Expressions;

    ComMsgMgrRuleParts m_parts;
    std::unique_ptr<const Expressions> m_expressions;
    std::string m_required;
};
