// common::set_msg_config -id ID|-string LIST|-severity WORD... -suppress|-new_severity WORD|-limit N
// Says what becomes of the messages that are named. Most refusals are ERROR messages, after which the tests
// go on.
#include <optional>

#include "platform/env/HUTEnv.h"
#include "platform/env/HUTFile.h"
#include "platform/msg/ComMsgMgrProjIface.h"
#include "platform/msg/ComMsgMgrRuleIface.h"
#include "platform/param/HPAParamMgr.h"
#include "tcltasks/core/task.h"
#include "tcltasks/msgmgr/HTCMsgmgr.h"
#include "tcltasks/msgmgr/detail/MsgArguments.h"

using namespace vek::tcltasks;

namespace set_msg_config {

namespace {

constexpr ComMsgMgr::MsgMask any_severity = ComMsgMgr::MSGTYPE_ANY;
constexpr ComMsgMgr::MsgMask suppressible = 0x7C000000 | ComMsgMgr::MSGTYPE_STATUS;

template <class... Args>
void refuse(com_msg_mgr::Key<std::type_identity_t<Args>...> key, const Args&... args) {
    ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, key, args...);
}

ComMsgMgr::MsgMask mask_of(const std::string& word) {
    return word.empty() ? any_severity : HTCMsgmgr::msgString2Type(word);
}

/// Errors as a class stay errors.
bool may_be_graded(const std::string& word, ComMsgMgr::MsgMask mask) {
    return word.empty() || mask == ComMsgMgr::MSGTYPE_CRITICAL_WARNING ||
           mask == ComMsgMgr::MSGTYPE_WARNING || mask == ComMsgMgr::MSGTYPE_INFO ||
           mask == ComMsgMgr::MSGTYPE_ADVISORY;
}

int rule_source(std::optional<int> given) {
    if (!given) {
        return ComMsgMgr::CREATED_FROM_TCL;
    }
    switch (*given) {
    case ComMsgMgr::CREATED_FROM_INTERNAL_CLIENT:
    case ComMsgMgr::GUI_CREATED_FROM_MSG:
    case ComMsgMgr::GUI_CREATED_FROM_RULE:
    case ComMsgMgr::CREATED_FROM_EXTENSION:
        return *given;
    default:
        return ComMsgMgr::CREATED_FROM_OTHER;
    }
}

int redirect(const std::string& id, const std::string& file) {
    if (id.empty()) {
        refuse("@17-1467@");
    } else if (!HUTFile::isWriteable(file)) {
        refuse("@17-1469@%s", file);
    } else if (!ComMsgMgrRuleIface::createRedirect(id, file)) {
        refuse("@17-1471@%s", id);
    } else {
        return TCL_OK;
    }
    return TCL_ERROR;
}

int set_mode(const std::string& word) {
    const ComMsgMgr::OperatingMode modes = ComMsgMgrProjIface::getOperatingMode();
    if (word == "ooc_run") {
        ComMsgMgrProjIface::setOperatingMode(modes | ComMsgMgr::MODE_OOC);
    } else if (word == "default") {
        ComMsgMgrProjIface::setOperatingMode(modes | ComMsgMgr::MODE_DEFAULT);
    } else {
        refuse("@17-1391@%s", word);
        return TCL_ERROR;
    }
    return TCL_OK;
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::set_msg_config";

    static void load_description() {
        in_categories("Message");
        description_instance(
            "Configure how the Corvane tool will display and manage specific messages, based "
            "on message ID, string, or severity.",
            "")
            .add_options()
            .add_option(
                "source", options::value<int>()->default_value(2, "tcl"),
                "source of the rule, defaults to tclsh. Use 4 for CREATED_FROM_INTERNAL_CLIENT, 8 for "
                "GUI_CREATED_FROM_MSG, 16 for GUI_CREATED_FROM_RULE.")
            .add_option("id", options::value<std::string>()->default_value("", "match any id"),
                        HTCMsgmgr::qualifier_help::id)
            .add_option(
                "ruleid",
                options::value<std::string>()->default_value(
                    "", "identifier for this rule will be generated for you"),
                "An optional string which should be a unique identifier or name for this rule. If not "
                "specified one will be assigned")
            .add_option("notes", options::value<std::string>()->default_value("", "none"),
                        "Any notes that you wish to specify about this rule. Notes will be displayed when "
                        "Corvane reports on this rule.")
            .add_option("author",
                        options::value<std::string>()->default_value("", "the currently logged in user"),
                        "For tracking purposes, the name of the person who created this rule.")
            .add_option(
                "redirect", options::value<std::string>()->default_value("", "none"),
                "The name of a file that you wish to have all messages with the given id redirected to "
                "(in lieu of the standard log file). Only the -id option can be used in conjunction "
                "with this option.")
            .hint("file")
            .add_option("created_timestamp",
                        options::value<std::string>()->default_value("", "the current local time"),
                        "When the rule was created.")
            .add_option(
                "string",
                options::value<std::vector<std::string>, tcltypes::tcllist>()->default_value({}, "none"),
                HTCMsgmgr::qualifier_help::strings)
            .add_option("severity", options::value<std::string>()->default_value("", "match any severity"),
                        HTCMsgmgr::qualifier_help::severity)
            .hint("severity")
            .add_option(
                "limit", options::value<unsigned>()->default_value(0, "unknown"),
                "for the messages that match the qualifiers, limit the number of messages displayed to "
                "the given integer value. Can only be used in conjunction with one of -id or "
                "-severity.")
            .add_option("new_severity", options::text(""),
                        "for the messages that match the qualifiers, change the severity to the given value "
                        "for the current project")
            .hint("severity")
            .add_option("suppress", options::flag(),
                        "for the messages that match the qualifiers, suppress (do not display) any messages "
                        "for the current project")
            .add_option("msgmgr_mode", options::value<std::string>()->default_value("", "none"),
                        "the current msgmgr operating mode, either 'default' or 'ooc_run'. All other options "
                        "are ignored if this option is specified.")
            .hint("default|ooc_run")
            .add_option("regexp", options::flag(),
                        "The values used for -string are full regular expressions");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp*) override {
        read();
        if (!m_redirect.empty()) {
            return redirect(m_id, m_redirect);
        }
        if (specified_option("string") && m_strings.empty()) {
            refuse("@17-1393@");
            return TCL_ERROR;
        }
        if (!m_mode.empty()) {
            return set_mode(m_mode);
        }
        if (m_limit) {
            HTCMsgmgr::trim_brackets(m_id);
        }
        annotate();
        if (!m_ruleId.empty() && is_there_already()) {
            return TCL_OK;
        }
        count_actions();
        return names_messages() && names_known_severity() && may_change_severity() ? act() : TCL_ERROR;
    }

private:
    void read() {
        m_strings = get_option<std::vector<std::string>>("string");
        m_id = get_option<std::string>("id");
        m_ruleId = get_option<std::string>("ruleid");
        m_notes = get_option<std::string>("notes");
        m_author = get_option<std::string>("author");
        m_timeStamp = get_option<std::string>("created_timestamp");
        m_severity = get_option<std::string>("severity");
        m_newSeverity = get_option<std::string>("new_severity");
        m_redirect = get_option<std::string>("redirect");
        m_limit = get_given<unsigned>("limit");
        m_suppress = get_option<bool>("suppress");
        m_regexp = get_option<bool>("regexp");
        m_mode = get_option<std::string>("msgmgr_mode");
        m_source = rule_source(get_given<int>("source"));
    }

    void annotate() {
        if (HPAParamMgr::getParamMgr().getValueIfExistAsBool("messaging.enableRuleAnnotation")) {
            m_author = m_author.empty() ? HUTEnv::getUserName() : m_author;
            m_timeStamp = m_timeStamp.empty() ? HUTEnv::getTimeStamp() : m_timeStamp;
            return;
        }
        refuse_annotation("-author", m_author);
        refuse_annotation("-notes", m_notes);
    }

    void refuse_annotation(const char* option, const std::string& value) {
        if (!value.empty()) {
            refuse("@17-170@%s%s\n", option, "set_msg_config");
            m_failed = true;
        }
    }

    /// True if the rule that is asked for exists; a rule id that another rule has is refused.
    bool is_there_already() {
        if (ComMsgMgrRuleIface::getMsgControlRuleConfig(m_ruleId, false, false).empty()) {
            return false;
        }
        const std::string rules = ComMsgMgrRuleIface::getMsgControlRuleConfig(
            m_strings, "", any_severity, true, true, true, ComMsgMgr::ANY_RULE_SOURCE);
        const bool same = ComMsgMgrRuleIface::isMsgControlRuleExist(
            m_strings, m_id, mask_of(m_severity), m_suppress, mask_of(m_newSeverity), false);
        if (!same) {
            refuse("@17-1300@%s", m_ruleId);
            m_failed = true;
        }
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_OUTPUT, "@17-1563@%s", rules);
        return same;
    }

    void count_actions() {
        if (m_limit.has_value() + !m_newSeverity.empty() + m_suppress > 1) {
            refuse("@17-447@");
            m_failed = true;
        }
    }

    bool names_messages() {
        if (m_strings.empty() && m_id.empty() && m_severity.empty()) {
            refuse("@17-448@");
            return false;
        }
        return true;
    }

    /// A rule that names a valid severity is made whatever was refused before.
    bool names_known_severity() {
        m_mask = mask_of(m_severity);
        if (m_severity.empty()) {
            return !m_failed;
        }
        if (m_mask == 0) {
            HTCMsgmgr::validate_msgtype(m_severity);
        }
        if (m_suppress && !(m_mask & suppressible)) {
            refuse("@17-686@");
        }
        return m_mask & suppressible;
    }

    bool may_change_severity() {
        const std::string family = m_id.empty() ? std::string() : ComMsgMgr::matchesDRCPrefix(m_id);
        bool may = true;
        if (!m_newSeverity.empty()) {
            if (family == "CDC") {
                refuse("@17-1562@%s", family);
                may = false;
            } else if (!family.empty()) {
                ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_INFO, "@17-1565@%s", family);
            }
            if (!may_be_graded(m_severity, m_mask)) {
                refuse("@17-585@");
                may = false;
            }
        } else if (!family.empty()) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_INFO, "@17-1564@%s", family);
        }
        return may;
    }

    /// Tells of a rule that hides or lowers a whole severity.
    void warn_of_broad_rule() {
        const bool broad =
            m_strings.empty() && m_id.empty() &&
            (m_mask == ComMsgMgr::MSGTYPE_WARNING || m_mask == ComMsgMgr::MSGTYPE_CRITICAL_WARNING ||
             m_mask == ComMsgMgr::MSGTYPE_ERROR);
        if (!broad || HPAParamMgr::getParamMgr().getValueIfExistAsBool("messaging.disableSetMsgConfigCW")) {
            return;
        }
        if (!m_newSeverity.empty() && mask_of(m_newSeverity) < m_mask) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_CRITICAL_WARNING, "@17-1354@%s%s", m_severity,
                               m_severity);
        }
        if (m_suppress) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_CRITICAL_WARNING, "@17-1355@%s%s", m_severity,
                               m_severity);
        }
    }

    int act() {
        warn_of_broad_rule();
        if (m_suppress) {
            make_rule(any_severity);
            return TCL_OK;
        }
        if (!m_newSeverity.empty()) {
            const ComMsgMgr::MsgMask mask = HTCMsgmgr::msgString2Type(m_newSeverity);
            if (mask == 0) {
                HTCMsgmgr::validate_msgtype(m_newSeverity);
                return TCL_ERROR;
            }
            make_rule(mask);
            return TCL_OK;
        }
        return limit();
    }

    void make_rule(ComMsgMgr::MsgMask newSeverity) {
        ComMsgMgrRuleIface::createMsgControlRule(m_strings, m_id, m_mask, true, m_source, m_regexp, -1,
                                                 m_suppress, newSeverity, m_ruleId, m_notes, m_author,
                                                 m_timeStamp, true);
    }

    int limit() {
        const bool bySeverity = specified_option("severity");
        if (!m_limit) {
            refuse("@17-1362@");
        } else if (!m_strings.empty()) {
            refuse("@17-621@");
        } else if (bySeverity && specified_option("id")) {
            refuse("@17-624@");
        } else if (bySeverity && !(m_mask & ComMsgMgr::MSGTYPE_SEVERITIES)) {
            refuse("@17-687@%s", m_severity);
        } else if (bySeverity) {
            ComMsgMgr::setMsgLimit(*m_limit, m_mask);
        } else if (!HTCMsgmgr::validate_msgid(m_id)) {
            return TCL_ERROR;
        } else {
            ComMsgMgr::setMsgLimit(*m_limit, m_id);
        }
        return TCL_OK;
    }

    std::vector<std::string> m_strings;
    std::string m_id;
    std::string m_ruleId;
    std::string m_notes;
    std::string m_author;
    std::string m_timeStamp;
    std::string m_severity;
    std::string m_newSeverity;
    std::string m_redirect;
    std::string m_mode;
    std::optional<unsigned> m_limit;
    bool m_suppress = false;
    bool m_regexp = false;
    int m_source = 0;
    ComMsgMgr::MsgMask m_mask = 0;
    bool m_failed = false;
};

extern const task_entry entry = entry_of<task>;

} // namespace set_msg_config
