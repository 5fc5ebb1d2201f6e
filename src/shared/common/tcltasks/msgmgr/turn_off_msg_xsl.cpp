// debug::turn_off_msg_xsl
// Shows messages as they were written.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace turn_off_msg_xsl {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::turn_off_msg_xsl";
    static constexpr const char* description = "Turn off message translation";
    static constexpr auto operation = ComMsgMgr::turnOffMsgXlation;
};

extern const task_entry entry = entry_of<task>;

} // namespace turn_off_msg_xsl
