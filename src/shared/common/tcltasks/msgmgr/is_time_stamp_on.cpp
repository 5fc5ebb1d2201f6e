// debug::is_time_stamp_on
// Whether date and time are shown with each message.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace is_time_stamp_on {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::is_time_stamp_on";
    static constexpr const char* description = "Query if time stamp is on";
    static constexpr auto operation = ComMsgMgr::isTimeStampOn;
};

extern const task_entry entry = entry_of<task>;

} // namespace is_time_stamp_on
