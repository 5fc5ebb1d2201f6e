// debug::mask_msgmgr_errors
// Says no more what is wrong with message files when their texts are needed.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace mask_msgmgr_errors {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::mask_msgmgr_errors";
    static constexpr const char* description = "Mask ComMsgMgr Errors";
    static constexpr auto operation = ComMsgMgr::maskMsgMgrErrors;
};

extern const task_entry entry = entry_of<task>;

} // namespace mask_msgmgr_errors
