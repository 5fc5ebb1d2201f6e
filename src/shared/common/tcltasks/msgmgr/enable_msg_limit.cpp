// debug::enable_msg_limit
// Lets the limits of messages count again.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace enable_msg_limit {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::enable_msg_limit";
    static constexpr const char* description = "Enable message limit check.";
    static constexpr auto operation = ComMsgMgr::enableMsgLimitCheck;
};

extern const task_entry entry = entry_of<task>;

} // namespace enable_msg_limit
