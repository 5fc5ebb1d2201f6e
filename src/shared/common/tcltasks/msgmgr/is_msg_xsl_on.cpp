// debug::is_msg_xsl_on
// Whether messages are shown in the user's language.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace is_msg_xsl_on {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::is_msg_xsl_on";
    static constexpr const char* description = "Query if message translation is on";
    static constexpr auto operation = ComMsgMgr::isMsgXlationOn;
};

extern const task_entry entry = entry_of<task>;

} // namespace is_msg_xsl_on
