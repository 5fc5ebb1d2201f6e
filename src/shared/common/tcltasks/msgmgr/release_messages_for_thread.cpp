// debug::release_messages_for_thread THREAD_ID
// Shows the messages of a thread that were kept back, and those that follow.
#include "platform/msg/ComMsgMgrThreadIface.h"
#include "tcltasks/msgmgr/detail/manager_command.h"

using namespace vek::tcltasks;

namespace release_messages_for_thread {

class task : public HTCMsgmgr::manager_command<task> {
public:
    static constexpr const char* command = "debug::release_messages_for_thread";
    static constexpr const char* description =
        "Release (start output) of messages coming from the given thread.";
    static auto arguments() {
        return std::tuple(HTCMsgmgr::argument<int>{"thread_id", "Number of the thread."});
    }
    static void operation(int thread) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_STATUS, "@17-690@%d%d", thread,
                           ComMsgMgrThreadIface::getMyThreadId());
        ComMsgMgrThreadIface::releaseMsgsForThread(thread);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace release_messages_for_thread
