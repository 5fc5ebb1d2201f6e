// common::get_msg_config -rules ?-showallrules N?|-redirect ?-id ID?|-limit|-count -id ID|-severity WORD
// Shows the rules or redirections, or gives a limit or count. Refusals are ERROR messages.
#include "platform/msg/ComMsgMgrRuleIface.h"
#include "tcltasks/core/task.h"
#include "tcltasks/msgmgr/HTCMsgmgr.h"
#include "tcltasks/msgmgr/detail/MsgArguments.h"

using namespace vek::tcltasks;

namespace get_msg_config {

namespace {

template <class... Args>
void refuse(com_msg_mgr::Key<std::type_identity_t<Args>...> key, const Args&... args) {
    ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, key, args...);
}

void show_redirects(const std::string& id) {
    std::vector<std::string> redirects;
    ComMsgMgrRuleIface::getRedirects(redirects, id);
    ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_OUTPUT, "@17-1468@");
    for (const std::string& redirect : redirects) {
        HTCMsgmgr::print_line(redirect);
    }
}

void show_rules(int showAll) {
    int source = ComMsgMgr::ANY_RULE_SOURCE;
    switch (showAll) {
    case ComMsgMgr::CREATED_FROM_TCL:
    case ComMsgMgr::CREATED_FROM_OTHER:
    case ComMsgMgr::CREATED_FROM_INTERNAL_CLIENT:
    case ComMsgMgr::GUI_CREATED_FROM_MSG:
    case ComMsgMgr::GUI_CREATED_FROM_RULE:
    case ComMsgMgr::CREATED_FROM_EXTENSION:
        source = showAll;
        break;
    default:
        break;
    }
    ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_OUTPUT, "@17-451@%s",
                       ComMsgMgrRuleIface::getMsgControlRuleConfig({}, "", ComMsgMgr::MSGTYPE_ANY, true, true,
                                                                   showAll != 0, source));
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::get_msg_config";

    static void load_description() {
        in_categories("Message");
        description_instance("Returns the current message count, limit, or the message configuration rules "
                             "previously defined by the set_msg_config command.",
                             "")
            .add_options()
            .add_option("showallrules", options::value<int>()->default_value(0, "do not show hidden rules"),
                        "show all rules from the specified msg source, regardless of rule visibility. Use -1 "
                        "for any msg source, 1 for tclsh, see help for set_msg_config for other possible "
                        "values.")
            .add_option("id", options::value<std::string>()->default_value("", "empty"),
                        "The message id to match. Should be used in conjunction with -limit or -count")
            .add_option("redirect", options::flag(),
                        "Display information on message redirection. Only the -id option can be used in "
                        "conjunction with this option.")
            .add_option("severity", options::value<std::string>()->default_value("", "empty"),
                        "The message severity to match. Should be used in conjunction with -limit or -count")
            .hint("severity")
            .add_option("rules", options::flag(),
                        "Show a table displaying all message control rules for the current project")
            .add_option(
                "limit", options::flag(),
                "Show the limit for the number of messages matching either -id or -severity that will "
                "be displayed")
            .add_option(
                "count", options::flag(),
                "Show the number of messages matching either -id or -severity that have been displayed");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const auto severity = get_option<std::string>("severity");
        const ComMsgMgr::MsgMask mask = HTCMsgmgr::msgString2Type(severity);
        auto id = get_option<std::string>("id");
        const bool limit = get_option<bool>("limit"), count = get_option<bool>("count"),
                   rules = get_option<bool>("rules");
        if (get_option<bool>("redirect")) {
            show_redirects(id);
            return TCL_OK;
        }
        if (limit || count) {
            HTCMsgmgr::trim_brackets(id);
        }
        bool failed = false;
        if (limit + count + rules != 1) {
            refuse("@17-450@");
            failed = true;
        }
        const bool bySeverity = specified_option("severity");
        if ((limit || count) && id.empty() && severity.empty()) {
            refuse("@17-449@");
            failed = true;
        }
        if ((limit || count) && bySeverity && specified_option("id")) {
            refuse("@17-172@\n");
            return TCL_ERROR;
        }
        if (!severity.empty() && mask == 0) {
            HTCMsgmgr::validate_msgtype(severity);
            return TCL_ERROR;
        }
        // With a valid severity the command answers whatever was refused before.
        if (failed && severity.empty()) {
            return TCL_ERROR;
        }
        if (rules) {
            show_rules(get_option<int>("showallrules"));
            return TCL_OK;
        }
        if (!limit && !count) {
            return TCL_OK;
        }
        if (!bySeverity && !HTCMsgmgr::validate_msgid(id)) {
            return TCL_ERROR;
        }
        return set_result(interp,
                          limit ? (bySeverity ? ComMsgMgr::getMsgLimit(mask) : ComMsgMgr::getMsgLimit(id))
                                : (bySeverity ? ComMsgMgr::getMsgCount(mask) : ComMsgMgr::getMsgCount(id)));
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_msg_config
