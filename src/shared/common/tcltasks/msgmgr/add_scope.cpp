// debug::add_scope SCOPE ?LEVEL?
// Shows trace texts that are sent under the scope, up to the level.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace add_scope {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::add_scope";
    static constexpr const char* description = "Add scope to Message Manager";
    static auto arguments() {
        return std::tuple(HTCMsgmgr::argument<std::string>{"scope", "Name of scope to be added"},
                          HTCMsgmgr::argument<int>{"level", "Level of visibility for the scope", 5, "5"});
    }
    static constexpr auto operation = ComMsgMgr::addScope;
};

extern const task_entry entry = entry_of<task>;

} // namespace add_scope
