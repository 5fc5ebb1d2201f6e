// debug::get_msg_control_rules ?-as_tcl? ?-as_key_values ?-recreate??
// All message rules: as lines of output, as commands that make them, or as keys and values from which
// -recreate makes them anew.
#include "platform/msg/ComMsgMgrProjIface.h"
#include "platform/msg/ComMsgMgrRuleIface.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace get_msg_control_rules {

namespace {

using Attributes = ComMsgMgrMsgControlRule::Attributes;

template <class Visit>
void for_each_rule(const Visit& visit) {
    const auto end = ComMsgMgrProjIface::endMsgControlRules("");
    for (auto at = ComMsgMgrProjIface::beginMsgControlRules(""); at != end; ++at) {
        visit(at->first, *at->second);
    }
}

std::string as_tcl() {
    std::string commands;
    for_each_rule([&](const std::string&, const ComMsgMgrMsgControlRule& rule) {
        commands += rule.getTclCommand(true) + '\n';
    });
    return commands;
}

void show() {
    for_each_rule([](const std::string& ruleId, const ComMsgMgrMsgControlRule& rule) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_OUTPUT, "@17-622@%s%s", ruleId, rule.getRule(true));
    });
}

std::vector<Attributes> show_key_values() {
    std::vector<Attributes> rules;
    std::string text;
    for_each_rule([&](const std::string&, const ComMsgMgrMsgControlRule& rule) {
        Attributes& list = rules.emplace_back();
        rule.getMsgRuleAttributes(list);
        text += "Rule: ";
        for (const auto& [key, value] : list) {
            text.append(1, ' ').append(key).append(1, '(').append(value).append(1, ')');
        }
        text += '\n';
    });
    ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_OUTPUT, "@17-643@%s", text);
    return rules;
}

void recreate(const std::vector<Attributes>& rules) {
    ComMsgMgrRuleIface::removeAllMsgControlRules();
    for (const Attributes& rule : rules) {
        ComMsgMgrRuleIface::restoreMsgControlRule(rule, "", true);
    }
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "debug::get_msg_control_rules";

    static void load_description() {
        in_categories("Message");
        description_instance("Exercise Java interface for getting msg suppresion rules.", "")
            .add_options()
            .add_option(
                "recreate", options::flag(),
                "Use in conjunction with as_key_values, remove and recreate all rules from the key/values.")
            .add_option("as_key_values", options::flag(), "Output each rule using key/value pairs.")
            .add_option("as_tcl", options::flag(),
                        "Return the set of rules as a tcl string object, one rule per line.");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        if (get_option<bool>("as_tcl")) {
            return set_result(interp, as_tcl());
        }
        if (!get_option<bool>("as_key_values")) {
            show();
            return TCL_OK;
        }
        const std::vector<Attributes> rules = show_key_values();
        if (get_option<bool>("recreate")) {
            recreate(rules);
        }
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_msg_control_rules
