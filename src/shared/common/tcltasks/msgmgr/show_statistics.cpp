// debug::show_statistics
// Shows how many messages were sent, kept and written, and which came most often.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace show_statistics {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::show_statistics";
    static constexpr const char* description = "Show message statistics";
    static constexpr auto operation = ComMsgMgr::showStatistics;
};

extern const task_entry entry = entry_of<task>;

} // namespace show_statistics
