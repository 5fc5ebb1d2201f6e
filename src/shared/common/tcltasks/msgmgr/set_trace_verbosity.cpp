// debug::set_trace_verbosity
// Shows scope, level and thread with each trace text.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace set_trace_verbosity {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::set_trace_verbosity";
    static constexpr const char* description = "Set TRACE verbosity";
    static constexpr auto operation = ComMsgMgr::setTraceVerbosity;
};

extern const task_entry entry = entry_of<task>;

} // namespace set_trace_verbosity
