// debug::get_tcl_msg_count SEVERITY
// How many messages of the severity the current Tcl command has sent.
#include "tcltasks/msgmgr/HTCMsgmgr.h"
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace get_tcl_msg_count {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::get_tcl_msg_count";
    static constexpr const char* description = "Get message count for current tcl command";
    static constexpr const char* returns = "message count";
    static auto arguments() {
        return std::tuple(HTCMsgmgr::argument<std::string>{
            "severity", "Message severity to query, \"ERROR\"/\"CRITICAL WARNING\"/\"WARNING\"/\"INFO\""});
    }
    static unsigned operation(const std::string& severity) {
        return ComMsgMgr::getTclMsgCount(HTCMsgmgr::requireMsgType(severity));
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_tcl_msg_count
