// debug::turn_on_time_stamp
// Shows date and time with each message.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace turn_on_time_stamp {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::turn_on_time_stamp";
    static constexpr const char* description = "Turn on time stamp";
    static constexpr auto operation = ComMsgMgr::turnOnTimeStamp;
};

extern const task_entry entry = entry_of<task>;

} // namespace turn_on_time_stamp
