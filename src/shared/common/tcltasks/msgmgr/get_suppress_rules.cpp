// debug::get_suppress_rules ?-from_msg?
// Shows how many suppress rules there are, and those of one source.
#include "platform/msg/ComMsgMgrRuleIface.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace get_suppress_rules {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "debug::get_suppress_rules";

    static void load_description() {
        in_categories("Message");
        description_instance("Exercise Java interface for getting msg suppresion rules.", "")
            .add_options()
            .add_option("from_msg", options::flag(),
                        "Set source as GUI_CREATED_FROM_MSG, defaults to GUI_CREATED_FROM_RULE");
    }
    std::string owner() const override { return "common"; }

    int execute() override {
        constexpr ComMsgMgr::MsgMask output = ComMsgMgr::MSGTYPE_OUTPUT;
        ComMsgMgr::sendMsg("common", output, "@17-520@%d", ComMsgMgrRuleIface::getNumberOfSuppressRules(""));
        std::vector<std::string> rules;
        const int count = ComMsgMgrRuleIface::getSuppressRules(
            rules,
            get_option<bool>("from_msg") ? ComMsgMgr::GUI_CREATED_FROM_MSG : ComMsgMgr::GUI_CREATED_FROM_RULE,
            "");
        ComMsgMgr::sendMsg("common", output, "@17-519@%d", count);
        for (const std::string& rule : rules) {
            ComMsgMgr::sendMsg("common", output, "@17-518@%s", rule);
        }
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_suppress_rules
