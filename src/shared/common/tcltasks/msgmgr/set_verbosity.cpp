// debug::set_verbosity LEVEL
// Shows with each message its description (1), and its resolution too (2); 0 shows the line alone.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace set_verbosity {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::set_verbosity";
    static constexpr const char* description = "Set verbosity for messages\n";
    static auto arguments() {
        return std::tuple(HTCMsgmgr::argument<int>{"level", "Verbosity level to be set"});
    }
    static constexpr auto operation = ComMsgMgr::setVerbosity;
};

extern const task_entry entry = entry_of<task>;

} // namespace set_verbosity
