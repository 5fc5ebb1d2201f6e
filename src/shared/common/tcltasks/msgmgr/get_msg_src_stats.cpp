// debug::get_msg_src_stats ?HANDLE? ?SEVERITY? ?DUMP?
// Counts the kept messages of a source (0 is the session), or of each, by severity; shows them too if DUMP is
// true.
#include <climits>

#include "tcltasks/msgmgr/HTCMsgmgr.h"
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace get_msg_src_stats {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::get_msg_src_stats";
    static constexpr const char* description = "Get message src handle statistics";
    static auto arguments() {
        return std::tuple(HTCMsgmgr::argument<unsigned>{"handle", "Handle to query, default for all handles",
                                                        UINT_MAX, "UINT_MAX"},
                          HTCMsgmgr::argument<std::string>{"severity",
                                                           "Severity to query, default for all messages",
                                                           "ALL", "MSGTYPE_ANY"},
                          HTCMsgmgr::argument<bool>{"dump", "Dump all messsages to stdout", false, "FALSE"});
    }
    static std::string operation(unsigned handle, const std::string& severity, bool dump) {
        return ComMsgMgr::getSrcHandleStatistics(handle, HTCMsgmgr::requireMsgType(severity), dump);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_msg_src_stats
