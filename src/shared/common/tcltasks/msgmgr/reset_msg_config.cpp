// common::reset_msg_config -ruleid ID|-id ID|-string LIST|-severity WORD...
// ?-suppress|-default_severity|-limit| -count|-redirect? Takes back what set_msg_config said. Refusals are
// ERROR messages; nothing that matches is only warned of.
#include "platform/msg/ComMsgMgrRuleIface.h"
#include "tcltasks/core/task.h"
#include "tcltasks/msgmgr/HTCMsgmgr.h"
#include "tcltasks/msgmgr/detail/MsgArguments.h"

using namespace vek::tcltasks;

namespace reset_msg_config {

namespace {

constexpr ComMsgMgr::MsgMask trace_level_3 = ComMsgMgr::MSGTYPE_TRACE | 3;

template <class... Args>
void refuse(com_msg_mgr::Key<std::type_identity_t<Args>...> key, const Args&... args) {
    ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, key, args...);
}

void warn_if_none(unsigned count, com_msg_mgr::Key<> key) {
    if (count == 0) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, key);
    }
}

int cancel_redirect(const std::string& id) {
    if (id.empty()) {
        refuse("@17-1467@");
    } else if (!ComMsgMgrRuleIface::cancelRedirect(id)) {
        refuse("@17-1470@%s", id);
    } else {
        return TCL_OK;
    }
    return TCL_ERROR;
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::reset_msg_config";

    static void load_description() {
        in_categories("Message");
        description_instance(
            "Resets or removes a message control rule previously defined by the set_msg_config command.", "")
            .add_options()
            .add_option(
                "ruleid", options::text(""),
                "An optional string which specifies the rule id of the rule to be reset or removed. If "
                "not specified, the rule to be reset/removed will be determined by matching the "
                "string, id, and severity qualifiers. If ruleid is specified, do not use the string, "
                "id, or severity qualifiers")
            .add_option(
                "string",
                options::value<std::vector<std::string>, tcltypes::tcllist>()->default_value({}, "empty"),
                "A qualifier, only a rule created with a matching string qualifier will be reset/removed")
            .add_option("id", options::text(""),
                        "A qualifier, only a rule created with a matching id qualifier will be reset/removed")
            .add_option(
                "severity", options::text(""),
                "A qualifier, only a rule created with a matching severity qualifier will be reset/removed")
            .hint("severity")
            .add_option("limit", options::flag(),
                        "reset the limit values for message controls that match the given qualifiers for the "
                        "current project")
            .add_option(
                "redirect", options::flag(),
                "Disable redirection of messages with the given id. Only the -id option can be used in "
                "conjunction with this option.")
            .add_option("suppress", options::flag(),
                        "stop suppressing messages that match the given qualifiers for the current project")
            .add_option(
                "count", options::flag(),
                "reset the count of messages for all message controls that match the given qualifiers "
                "for the current project. This will prevent messages from being suppressed by a -limit "
                "control until the message count once again exceeds the specified limit.")
            .add_option("default_severity", options::flag(),
                        "reset the message severity of all messages controls for the current project that "
                        "match the given qualifiers to their default value")
            .add_option("regexp", options::flag(),
                        "The values used for -string are full regular expressions");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp*) override {
        read();
        if (get_option<bool>("redirect")) {
            return cancel_redirect(m_id);
        }
        if (get_option<bool>("regexp")) {
            ComMsgMgr::sendScopedMsg(
                "msg_suppression", trace_level_3,
                "-regexp is ignored for matching reset_msg_config parameters to existing rules");
        }
        if (m_limit || m_count) {
            HTCMsgmgr::trim_brackets(m_id);
        }
        check_qualifiers();
        check_actions();
        return names_known_severity() ? act() : TCL_ERROR;
    }

private:
    void read() {
        m_strings = get_option<std::vector<std::string>>("string");
        m_severity = get_option<std::string>("severity");
        m_id = get_option<std::string>("id");
        m_ruleId = get_option<std::string>("ruleid");
        m_limit = get_option<bool>("limit");
        m_suppress = get_option<bool>("suppress");
        m_count = get_option<bool>("count");
        m_defaultSeverity = get_option<bool>("default_severity");
    }

    void check_qualifiers() {
        const bool qualified = !m_strings.empty() || !m_id.empty() || !m_severity.empty();
        if (m_ruleId.empty() && !qualified) {
            refuse("@17-461@");
            m_failed = true;
        } else if (!m_ruleId.empty() && qualified) {
            refuse("@17-1301@");
            m_failed = true;
        }
    }

    void check_actions() {
        const int actions = m_limit + m_suppress + m_count + m_defaultSeverity;
        if (actions > 1 || (actions == 0 && m_ruleId.empty())) {
            refuse("@17-462@");
            m_failed = true;
        }
    }

    /// With a valid severity the command does its work whatever was refused before.
    bool names_known_severity() {
        if (m_severity.empty()) {
            return !m_failed;
        }
        m_mask = HTCMsgmgr::msgString2Type(m_severity);
        return m_mask != 0 || HTCMsgmgr::validate_msgtype(m_severity);
    }

    int act() {
        if (m_count) {
            return reset_count();
        }
        if (m_limit) {
            return reset_limit();
        }
        if (m_suppress) {
            warn_if_none(remove(ComMsgMgr::SUPPRESS_RULE), "@17-455@");
        } else if (m_defaultSeverity) {
            warn_if_none(remove(ComMsgMgr::SEVERITY_RULE), "@17-453@");
        } else {
            warn_if_none(ComMsgMgrRuleIface::removeMsgControlRuleByRuleId(m_ruleId, true), "@17-1375@");
        }
        return TCL_OK;
    }

    unsigned remove(ComMsgMgr::RuleTypes type) {
        return m_ruleId.empty() ? ComMsgMgrRuleIface::removeMsgControlRule(m_strings, m_id, m_mask, type)
                                : ComMsgMgrRuleIface::removeMsgControlRuleByRuleId(m_ruleId, true);
    }

    int reset_count() {
        warn_if_none(m_ruleId.empty() ? ComMsgMgrRuleIface::resetMsgControlRuleMsgCnt(m_strings, m_id, m_mask)
                                      : ComMsgMgrRuleIface::resetMsgControlRuleMsgCntByRuleId(m_ruleId),
                     "@17-452@");
        if (m_id.empty()) {
            return TCL_OK;
        }
        if (m_id == "*") {
            ComMsgMgr::resetAllMsgCounts(true, false, false);
        } else if (!HTCMsgmgr::validate_msgid(m_id)) {
            return TCL_ERROR;
        }
        ComMsgMgr::resetMsgCount(m_id);
        return TCL_OK;
    }

    int reset_limit() {
        if (!m_strings.empty()) {
            refuse("@17-621@");
            return TCL_ERROR;
        }
        if (!m_severity.empty()) {
            ComMsgMgr::resetMsgLimit(m_mask);
        }
        if (!m_id.empty()) {
            ComMsgMgr::resetMsgLimit(m_id);
        }
        return TCL_OK;
    }

    std::vector<std::string> m_strings;
    std::string m_severity;
    std::string m_id;
    std::string m_ruleId;
    bool m_limit = false;
    bool m_suppress = false;
    bool m_count = false;
    bool m_defaultSeverity = false;
    ComMsgMgr::MsgMask m_mask = ComMsgMgr::MSGTYPE_ANY;
    bool m_failed = false;
};

extern const task_entry entry = entry_of<task>;

} // namespace reset_msg_config
