// common::create_msg_db FILE
// Writes all messages from now on into a message database, too. A database of that name is replaced.
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace create_msg_db {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "common::create_msg_db";
    static constexpr const char* description = "Create Message Db";
    static auto arguments() {
        return std::tuple(HTCMsgmgr::argument<std::string>{"file", "Message file to be created"});
    }
    static constexpr auto operation = ComMsgMgr::createMsgDb;
};

extern const task_entry entry = entry_of<task>;

} // namespace create_msg_db
