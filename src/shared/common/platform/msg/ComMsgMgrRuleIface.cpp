#include "platform/msg/ComMsgMgrRuleIface.h"

#include <algorithm>

#include "platform/env/HUTTextTable.h"
#include "platform/msg/detail/MsgRedirects.h"
#include "platform/msg/detail/RuleFile.h"
#include "platform/msg/detail/RuleStore.h"

using com_msg_mgr::MsgRedirects;
using com_msg_mgr::RuleStore;
using Rule = RuleStore::Rule;

namespace {

bool is_suppress(const Rule& rule) {
    return rule->parts().suppress;
}

bool is_from(const Rule& rule, int source) {
    return source == ComMsgMgr::ANY_RULE_SOURCE || rule->parts().source == source;
}

std::string joined(const std::vector<std::string>& strings) {
    std::string out;
    for (const std::string& text : strings)
        (out += out.empty() ? "" : "\n") += text;
    return out;
}

std::string action_of(const ComMsgMgrRuleParts& parts) {
    if (parts.suppress)
        return "suppress";
    std::string out;
    if (parts.newSeverity != ComMsgMgr::MSGTYPE_ANY)
        out = std::string(ComMsgMgr::msgType2Str(parts.newSeverity));
    if (parts.limit >= 0)
        out += (out.empty() ? "limit " : ", limit ") + std::to_string(parts.limit);
    return out;
}

std::string table_of(const std::vector<Rule>& rules, bool annotations, bool header) {
    const bool annotated = annotations && std::any_of(rules.begin(), rules.end(), [](const Rule& rule) {
                               const ComMsgMgrRuleParts& parts = rule->parts();
                               return !(parts.notes + parts.author + parts.timeStamp).empty();
                           });
    HUTTextTable table(0);
    std::vector<std::string> headers{"Rule id", "Message id", "Severity", "Strings", "Action", "Messages"};
    if (annotated)
        headers.insert(headers.end(), {"Author", "Made", "Notes"});
    if (header)
        table.setHeaders(std::move(headers));
    table.setAlign(5, HUTTextTable::Align::right);
    for (const Rule& rule : rules) {
        const ComMsgMgrRuleParts& parts = rule->parts();
        std::vector<std::string> cells{
            parts.ruleId,
            parts.id.empty() ? "any" : parts.id,
            parts.severity == ComMsgMgr::MSGTYPE_ANY ? "any"
                                                     : std::string(ComMsgMgr::msgType2Str(parts.severity)),
            joined(parts.strings) + (parts.regexp && !parts.strings.empty() ? " (regexp)" : ""),
            action_of(parts),
            std::to_string(rule->count.load())};
        if (annotated)
            cells.insert(cells.end(), {parts.author, parts.timeStamp, parts.notes});
        table.addRow(std::move(cells));
    }
    std::string text = table.getAsString(header);
    if (text.ends_with('\n'))
        text.pop_back();
    return text;
}

std::string made(ComMsgMgrRuleParts parts) {
    std::string ruleId = RuleStore::get().add(std::move(parts));
    com_msg_mgr::note_rule_change();
    return ruleId;
}

unsigned removed(const std::vector<Rule>& rules) {
    unsigned count = 0;
    for (const Rule& rule : rules)
        count += RuleStore::get().remove(rule->ruleId());
    com_msg_mgr::note_rule_change();
    return count;
}

} // namespace

std::string ComMsgMgrRuleIface::createMsgControlRule(const Strings& strings, const std::string& id,
                                                     MsgMask severity, bool visible, int source, bool regexp,
                                                     int limit, bool suppress, MsgMask newSeverity,
                                                     const std::string& ruleId, const std::string& notes,
                                                     const std::string& author, const std::string& timeStamp,
                                                     bool kept) {
    return made({strings, id, severity, source, regexp, limit, suppress, newSeverity, ruleId, notes, author,
                 timeStamp, visible, kept});
}

bool ComMsgMgrRuleIface::isMsgControlRuleExist(const Strings& strings, const std::string& id,
                                               MsgMask severity, bool suppress, MsgMask newSeverity,
                                               bool visibleOnly) {
    const std::vector<Rule> rules = RuleStore::get().findByQualifiers(strings, id, severity);
    return std::any_of(rules.begin(), rules.end(), [&](const Rule& rule) {
        return is_suppress(rule) == suppress && rule->parts().newSeverity == newSeverity &&
               (!visibleOnly || rule->isVisible());
    });
}

std::string ComMsgMgrRuleIface::getMsgControlRuleConfig(const std::string& ruleId, bool annotations,
                                                        bool withRuleId) {
    const Rule rule = RuleStore::get().find(ruleId);
    if (!rule)
        return {};
    return (withRuleId ? ruleId + ": " : std::string()) + rule->getRule(annotations);
}

std::string ComMsgMgrRuleIface::getMsgControlRuleConfig(const Strings& strings, const std::string& id,
                                                        MsgMask severity, bool annotations, bool header,
                                                        bool showHidden, int source) {
    std::vector<Rule> rules;
    for (const auto& [ruleId, rule] : RuleStore::get().all()) {
        const ComMsgMgrRuleParts& parts = rule->parts();
        const bool named = (strings.empty() ||
                            (strings.size() == parts.strings.size() &&
                             std::is_permutation(strings.begin(), strings.end(), parts.strings.begin()))) &&
                           (id.empty() || id == parts.id) &&
                           (severity == ComMsgMgr::MSGTYPE_ANY || severity == parts.severity);
        if (named && is_from(rule, source) && (showHidden || rule->isVisible()))
            rules.push_back(rule);
    }
    return rules.empty() ? "There are none." : table_of(rules, annotations, header);
}

unsigned ComMsgMgrRuleIface::removeMsgControlRule(const Strings& strings, const std::string& id,
                                                  MsgMask severity, ComMsgMgr::RuleTypes type) {
    std::vector<Rule> rules = RuleStore::get().findByQualifiers(strings, id, severity);
    std::erase_if(rules, [type](const Rule& rule) {
        return type == ComMsgMgr::SUPPRESS_RULE ? !is_suppress(rule)
                                                : rule->parts().newSeverity == ComMsgMgr::MSGTYPE_ANY;
    });
    return removed(rules);
}

unsigned ComMsgMgrRuleIface::removeMsgControlRuleByRuleId(const std::string& ruleId, bool hiddenToo) {
    const Rule rule = RuleStore::get().find(ruleId);
    return rule && (hiddenToo || rule->isVisible()) ? removed({rule}) : 0;
}

void ComMsgMgrRuleIface::removeAllMsgControlRules() {
    RuleStore::get().removeAll();
    com_msg_mgr::note_rule_change();
}

unsigned ComMsgMgrRuleIface::resetMsgControlRuleMsgCnt(const Strings& strings, const std::string& id,
                                                       MsgMask severity) {
    const std::vector<Rule> rules = RuleStore::get().findByQualifiers(strings, id, severity);
    for (const Rule& rule : rules)
        rule->count = 0;
    return static_cast<unsigned>(rules.size());
}

unsigned ComMsgMgrRuleIface::resetMsgControlRuleMsgCntByRuleId(const std::string& ruleId) {
    const Rule rule = RuleStore::get().find(ruleId);
    if (rule)
        rule->count = 0;
    return rule ? 1 : 0;
}

void ComMsgMgrRuleIface::resetAllMsgControlRuleMsgCnts() {
    for (const auto& [ruleId, rule] : RuleStore::get().all())
        rule->count = 0;
}

std::string ComMsgMgrRuleIface::restoreMsgControlRule(const ComMsgMgrMsgControlRule::Attributes& list,
                                                      const std::string&, bool sameRuleId) {
    ComMsgMgrRuleParts parts = ComMsgMgrMsgControlRule::partsOf(list);
    if (!sameRuleId)
        parts.ruleId.clear();
    return made(std::move(parts));
}

bool ComMsgMgrRuleIface::createRedirect(const std::string& id, const std::string& file) {
    return MsgRedirects::get().add(id, file);
}

bool ComMsgMgrRuleIface::cancelRedirect(const std::string& id) {
    return MsgRedirects::get().remove(id);
}

void ComMsgMgrRuleIface::getRedirects(std::vector<std::string>& list, const std::string& id) {
    for (const auto& [redirected, file] : MsgRedirects::get().list(id))
        list.emplace_back("'").append(redirected).append("' goes to '").append(file).append("'.");
}

std::string ComMsgMgrRuleIface::addSuppressRuleCmd(const std::string& id, const Strings& strings,
                                                   bool visible, MsgMask severity,
                                                   const ComMsgMgrInstance* message, bool regexp, int source,
                                                   const std::string& notes, const std::string& author,
                                                   const std::string& timeStamp) {
    return createMsgControlRule(strings, id.empty() && message ? message->id() : id, severity, visible,
                                source, regexp, -1, true, ComMsgMgr::MSGTYPE_ANY, {}, notes, author,
                                timeStamp, true);
}

bool ComMsgMgrRuleIface::deleteSuppressRuleByRuleIdCmd(const std::string& ruleId, const std::string&) {
    const Rule rule = RuleStore::get().find(ruleId);
    return rule && is_suppress(rule) && removed({rule}) > 0;
}

int ComMsgMgrRuleIface::getSuppressRules(std::vector<std::string>& list, int source, const std::string&) {
    const std::size_t before = list.size();
    for (const auto& [ruleId, rule] : RuleStore::get().all())
        if (is_suppress(rule) && is_from(rule, source))
            list.push_back(ruleId + ": " + rule->getRule(true));
    return static_cast<int>(list.size() - before);
}

int ComMsgMgrRuleIface::getNumberOfSuppressRules(const std::string&) {
    const RuleStore::Map rules = RuleStore::get().all();
    return static_cast<int>(
        std::count_if(rules.begin(), rules.end(), [](const auto& one) { return is_suppress(one.second); }));
}
