// debug::hold_messages_for_thread THREAD_ID
// Keeps the messages of a thread back until they are released. Threads are numbered from 1.
#include "platform/msg/ComMsgMgrThreadIface.h"
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace hold_messages_for_thread {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::hold_messages_for_thread";
    static constexpr const char* description =
        "Hold (suspend output) of messages coming from the given thread.";
    static auto arguments() {
        return std::tuple(HTCMsgmgr::argument<int>{"thread_id", "Number of the thread."});
    }
    static void operation(int thread) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_STATUS, "@17-689@%d%d", thread,
                           ComMsgMgrThreadIface::getMyThreadId());
        ComMsgMgrThreadIface::holdMsgsForThread(thread);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace hold_messages_for_thread
