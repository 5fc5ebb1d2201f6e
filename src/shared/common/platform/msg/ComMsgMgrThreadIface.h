#pragma once

#include "platform/msg/detail/MsgDelivery.h"

/// Holding back the messages of single threads. They are counted when they are sent, and shown in their order
/// when their thread is released; more than 64 MiB of a thread is not held. Any thread.
class ComMsgMgrThreadIface {
public:
    /// The number by which the calling thread is known here, from 1.
    static int getMyThreadId() { return com_msg_mgr::thread_number(); }
    static void holdMsgsForThread(int thread) { com_msg_mgr::hold_thread(thread); }
    static void releaseMsgsForThread(int thread) { com_msg_mgr::release_thread(thread); }
};
