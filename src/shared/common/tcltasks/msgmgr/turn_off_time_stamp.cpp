// debug::turn_off_time_stamp
// Shows messages without date and time.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace turn_off_time_stamp {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::turn_off_time_stamp";
    static constexpr const char* description = "Turn off time stamp";
    static constexpr auto operation = ComMsgMgr::turnOffTimeStamp;
};

extern const task_entry entry = entry_of<task>;

} // namespace turn_off_time_stamp
