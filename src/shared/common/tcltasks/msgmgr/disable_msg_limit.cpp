// debug::disable_msg_limit
// Shows all messages, whatever their limits.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace disable_msg_limit {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::disable_msg_limit";
    static constexpr const char* description = "Disable message limit check.";
    static constexpr auto operation = ComMsgMgr::disableMsgLimitCheck;
};

extern const task_entry entry = entry_of<task>;

} // namespace disable_msg_limit
