// debug::has_scope SCOPE
// The level of a scope, 0 for one that was not added.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace has_scope {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::has_scope";
    static constexpr const char* description = "Check if the scope has been added.";
    static constexpr const char* returns = "If the scope exists, return its level.";
    static auto arguments() {
        return std::tuple(HTCMsgmgr::argument<std::string>{"scope", "Name of scope to be checked"});
    }
    static constexpr auto operation = ComMsgMgr::hasScope;
};

extern const task_entry entry = entry_of<task>;

} // namespace has_scope
