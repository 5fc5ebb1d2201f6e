// debug::turn_on_msg_xsl
// Shows messages in the user's language where the installation has it.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace turn_on_msg_xsl {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::turn_on_msg_xsl";
    static constexpr const char* description = "Turn on message translation";
    static constexpr auto operation = ComMsgMgr::turnOnMsgXlation;
};

extern const task_entry entry = entry_of<task>;

} // namespace turn_on_msg_xsl
