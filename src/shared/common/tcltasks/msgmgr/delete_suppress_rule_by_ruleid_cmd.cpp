// debug::delete_suppress_rule_by_ruleid_cmd ?-ruleid ID?
// Removes a suppress rule as the windows do. An empty or unknown id does nothing.
#include "platform/msg/ComMsgMgrRuleIface.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace delete_suppress_rule_by_ruleid_cmd {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "debug::delete_suppress_rule_by_ruleid_cmd";

    static void load_description() {
        in_categories("Message");
        description_instance("Exercise Java interface for deleting msg suppresion rules.", "")
            .add_options()
            .add_option("ruleid", options::text(""), "the rule id");
    }
    std::string owner() const override { return "common"; }

    int execute() override {
        const auto ruleId = get_option<std::string>("ruleid");
        if (!ruleId.empty()) {
            ComMsgMgrRuleIface::deleteSuppressRuleByRuleIdCmd(ruleId, "");
        }
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace delete_suppress_rule_by_ruleid_cmd
