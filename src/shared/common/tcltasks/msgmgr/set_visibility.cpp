// debug::set_visibility LEVEL
// Shows TRACE messages up to the level; 0 shows none.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace set_visibility {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::set_visibility";
    static constexpr const char* description = "Set visibility for TRACE messages\n";
    static auto arguments() {
        return std::tuple(HTCMsgmgr::argument<int>{"level", "Visbility level to be set"});
    }
    static constexpr auto operation = ComMsgMgr::setVisibility;
};

extern const task_entry entry = entry_of<task>;

} // namespace set_visibility
