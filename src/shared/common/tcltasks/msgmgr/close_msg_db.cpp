// common::close_msg_db FILE
// Completes a message database. Fails if it is not open, or not complete.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace close_msg_db {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "common::close_msg_db";
    static constexpr const char* description = "Close Message Db file";
    static auto arguments() {
        return std::tuple(HTCMsgmgr::argument<std::string>{"file", "Message file to be closed"});
    }
    static constexpr auto operation = ComMsgMgr::closeMsgDb;
};

extern const task_entry entry = entry_of<task>;

} // namespace close_msg_db
