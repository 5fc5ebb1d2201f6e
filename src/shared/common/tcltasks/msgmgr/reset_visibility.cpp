// debug::reset_visibility
// Shows no more TRACE messages.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace reset_visibility {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::reset_visibility";
    static constexpr const char* description = "Reset visibility for TRACE messages";
    static constexpr auto operation = ComMsgMgr::resetVisibility;
};

extern const task_entry entry = entry_of<task>;

} // namespace reset_visibility
