// debug::add_suppress_rule_cmd ?-id ID? ?-string LIST? ?-severity WORD? ?-from_msg?
// Makes a suppress rule as the windows do.
#include "platform/msg/ComMsgMgrRuleIface.h"
#include "tcltasks/core/task.h"
#include "tcltasks/msgmgr/HTCMsgmgr.h"
#include "tcltasks/msgmgr/detail/MsgArguments.h"

using namespace vek::tcltasks;

namespace add_suppress_rule_cmd {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "debug::add_suppress_rule_cmd";

    static void load_description() {
        in_categories("Message");
        description_instance("Exercise Java interface for adding msg suppresion rules.", "")
            .add_options()
            .add_option("id", options::value<std::string>()->default_value("", "match any id"),
                        HTCMsgmgr::qualifier_help::id)
            .add_option(
                "string",
                options::value<std::vector<std::string>, tcltypes::tcllist>()->default_value({}, "none"),
                HTCMsgmgr::qualifier_help::strings)
            .add_option("severity", options::value<std::string>()->default_value("", "match any severity"),
                        HTCMsgmgr::qualifier_help::severity)
            .hint("severity")
            .add_option("from_msg", options::flag(),
                        "Set source as GUI_CREATED_FROM_MSG, defaults to GUI_CREATED_FROM_RULE");
    }
    std::string owner() const override { return "common"; }

    int execute() override {
        const auto severity = get_option<std::string>("severity");
        ComMsgMgrRuleIface::addSuppressRuleCmd(
            get_option<std::string>("id"), get_option<std::vector<std::string>>("string"), true,
            severity.empty() ? ComMsgMgr::MSGTYPE_ANY : HTCMsgmgr::msgString2Type(severity), nullptr, false,
            get_option<bool>("from_msg") ? ComMsgMgr::GUI_CREATED_FROM_MSG : ComMsgMgr::GUI_CREATED_FROM_RULE,
            "", "", "");
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace add_suppress_rule_cmd
