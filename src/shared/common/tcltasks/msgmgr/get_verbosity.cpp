// debug::get_verbosity
// How much is shown of each message.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace get_verbosity {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::get_verbosity";
    static constexpr const char* description = "Get verbosity for messages\n";
    static constexpr auto operation = ComMsgMgr::getVerbosity;
};

extern const task_entry entry = entry_of<task>;

} // namespace get_verbosity
