// common::reset_msg_count -id PATTERN
// Sets the counts of the messages whose ids match back to 0 and gives the count of the id. An id with a dash,
// or any other character than letters, digits, blanks, "_", "?" and "*", fails without a word.
#include <algorithm>

#include "platform/msg/ComMsgMgr.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace reset_msg_count {

namespace {

bool may_stand_in_pattern(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == ' ' || c == '?' || c == '*';
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::reset_msg_count";

    static void load_description() {
        in_categories("Message");
        description_instance("Reset message count", "new message count")
            .add_options()
            .add_option(
                "id", options::text(""),
                "Unique message Id to be reset, e.g. \"Common 17-99\". \"reset_msg_count -id *\" reset "
                "all counters");
        positional_instance().add("id", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const auto id = get_option<std::string>("id");
        if (!std::all_of(id.begin(), id.end(), may_stand_in_pattern)) {
            return TCL_ERROR;
        }
        ComMsgMgr::resetMsgCount(id);
        return set_result(interp, ComMsgMgr::getMsgCount(id));
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace reset_msg_count
