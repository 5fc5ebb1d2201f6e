// debug::reset_scope
// Shows no more trace texts of any scope.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace reset_scope {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::reset_scope";
    static constexpr const char* description = "Remove all scopes from Message Manager";
    static constexpr auto operation = ComMsgMgr::resetScope;
};

extern const task_entry entry = entry_of<task>;

} // namespace reset_scope
