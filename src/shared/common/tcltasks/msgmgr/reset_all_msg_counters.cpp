// debug::reset_all_msg_counters ?-id? ?-severity? ?-rule?
// Sets the message counters of these kinds back to 0. Never fails.
#include "platform/msg/ComMsgMgr.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace reset_all_msg_counters {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "debug::reset_all_msg_counters";

    static void load_description() {
        in_categories("Message");
        description_instance("Reset all message counters of the specified type to zero.", "")
            .add_options()
            .add_option("id", options::flag(), "Reset msg ID counters")
            .add_option("severity", options::flag(), "Reset msg severity counters")
            .add_option("rule", options::flag(), "Reset msg rule counters");
    }
    std::string owner() const override { return "common"; }

    int execute() override {
        ComMsgMgr::resetAllMsgCounts(get_option<bool>("id"), get_option<bool>("severity"),
                                     get_option<bool>("rule"));
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace reset_all_msg_counters
