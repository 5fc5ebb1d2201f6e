// debug::remove_scope SCOPE
// Shows no more trace texts of the scope.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace remove_scope {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::remove_scope";
    static constexpr const char* description = "Remove scope from Message Manager";
    static auto arguments() {
        return std::tuple(HTCMsgmgr::argument<std::string>{"scope", "Name of scope to be removed"});
    }
    static constexpr auto operation = ComMsgMgr::removeScope;
};

extern const task_entry entry = entry_of<task>;

} // namespace remove_scope
