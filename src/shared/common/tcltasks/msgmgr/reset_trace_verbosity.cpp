// debug::reset_trace_verbosity
// Shows trace texts alone.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace reset_trace_verbosity {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::reset_trace_verbosity";
    static constexpr const char* description = "Reset TRACE verbosity";
    static constexpr auto operation = ComMsgMgr::resetTraceVerbosity;
};

extern const task_entry entry = entry_of<task>;

} // namespace reset_trace_verbosity
