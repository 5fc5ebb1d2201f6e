// debug::get_trace_verbosity
// Whether scope, level and thread are shown with each trace text.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace get_trace_verbosity {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::get_trace_verbosity";
    static constexpr const char* description = "Query if TRACE verbosity is on";
    static constexpr auto operation = ComMsgMgr::getTraceVerbosity;
};

extern const task_entry entry = entry_of<task>;

} // namespace get_trace_verbosity
