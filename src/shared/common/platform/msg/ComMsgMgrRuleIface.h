#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/msg/ComMsgMgrMsgControlRule.h"

/// The rules that say what becomes of messages. Any thread.
///
/// Of several rules that match a message one acts: one that names the id comes before one that names strings,
/// and that before one for a whole severity; then suppression comes first, then the latest rule. Rules look
/// at the severity that the message was sent with. What a rule suppresses is neither shown nor counted, but
/// by the rule; a suppressed ERROR ends its command all the same. Ids match with and without the brackets of
/// the log.
///
/// Wherever rules are named by strings, id and mask, those are meant that were made with exactly these.
class ComMsgMgrRuleIface {
public:
    using Strings = std::vector<std::string>;
    using MsgMask = ComMsgMgr::MsgMask;

    /// Adds a rule and returns its rule id. An id of one's own that is taken gives way to a new one; without
    /// one, a rule that says the same already is left as it is. \param visible false for a rule that only
    /// who asks for hidden rules sees \param source a ComMsgMgr::RuleSource \param limit how many messages
    /// are shown, -1 for all \param newSeverity MSGTYPE_ANY for none \param kept whether the rule belongs to
    /// the open project. Throws HEXError for a rule that cannot be (see ComMsgMgrMsgControlRule).
    static std::string createMsgControlRule(const Strings& strings, const std::string& id, MsgMask severity,
                                            bool visible, int source, bool regexp, int limit, bool suppress,
                                            MsgMask newSeverity, const std::string& ruleId,
                                            const std::string& notes, const std::string& author,
                                            const std::string& timeStamp, bool kept);
    /// Whether there is a rule of these qualifiers that does this.
    static bool isMsgControlRuleExist(const Strings& strings, const std::string& id, MsgMask severity,
                                      bool suppress, MsgMask newSeverity, bool visibleOnly);

    /// The rule in words, empty if there is none; optionally with annotations and led by its rule id.
    static std::string getMsgControlRuleConfig(const std::string& ruleId, bool annotations, bool withRuleId);
    /// A table of the rules of these qualifiers; no strings, no id and MSGTYPE_ANY each stand for any.
    /// \param annotations whether authors, times and notes are shown where there are some \param header
    /// whether columns have names \param showHidden also those that are not visible
    static std::string getMsgControlRuleConfig(const Strings& strings, const std::string& id,
                                               MsgMask severity, bool annotations, bool header,
                                               bool showHidden, int source);

    /// Remove rules; the number of those removed is returned.
    static unsigned removeMsgControlRule(const Strings& strings, const std::string& id, MsgMask severity,
                                         ComMsgMgr::RuleTypes type);
    static unsigned removeMsgControlRuleByRuleId(const std::string& ruleId, bool hiddenToo);
    static void removeAllMsgControlRules();

    /// Set counts of rules back to 0; the number of rules is returned.
    static unsigned resetMsgControlRuleMsgCnt(const Strings& strings, const std::string& id,
                                              MsgMask severity);
    static unsigned resetMsgControlRuleMsgCntByRuleId(const std::string& ruleId);
    static void resetAllMsgControlRuleMsgCnts();

    /// Makes the rule that an attribute list describes, and returns its rule id. The scope is reserved and
    /// empty. \param sameRuleId false for a rule id of its own. Throws HEXError for a list that describes
    /// none.
    static std::string restoreMsgControlRule(const ComMsgMgrMsgControlRule::Attributes& list,
                                             const std::string& scope, bool sameRuleId);

    /// Sends the messages of an id to the end of a file of their own instead of the log; each line is written
    /// at once, and goes to the log if that fails. False if the messages go to another file already, or the
    /// file cannot be written or is the log or the journal.
    static bool createRedirect(const std::string& id, const std::string& file);
    /// Gives the messages back to the log. False if they were not redirected.
    static bool cancelRedirect(const std::string& id);
    /// Adds a line for each redirection, of one id or, if it is empty, of all.
    static void getRedirects(std::vector<std::string>& list, const std::string& id);

    /// What windows ask for. \param message the one that the rule is made from: its id is taken if none is
    /// given; null for none
    static std::string addSuppressRuleCmd(const std::string& id, const Strings& strings, bool visible,
                                          MsgMask severity, const ComMsgMgrInstance* message, bool regexp,
                                          int source, const std::string& notes, const std::string& author,
                                          const std::string& timeStamp);
    /// Removes a suppress rule; false if there is none of this rule id. The scope is reserved and empty.
    static bool deleteSuppressRuleByRuleIdCmd(const std::string& ruleId, const std::string& scope);
    /// Adds the suppress rules of a source in words, and returns their number.
    static int getSuppressRules(std::vector<std::string>& list, int source, const std::string& scope);
    /// The number of suppress rules of all sources.
    static int getNumberOfSuppressRules(const std::string& scope);
};
