// debug::get_visibility
// The level up to which TRACE messages are shown.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace get_visibility {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::get_visibility";
    static constexpr const char* description = "Get visibility for TRACE messages\n";
    static constexpr auto operation = ComMsgMgr::getVisibility;
};

extern const task_entry entry = entry_of<task>;

} // namespace get_visibility
