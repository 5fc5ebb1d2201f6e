#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/msg/ComMsgMgrInstance.h"
#include "platform/msg/ComMsgMgrSink.h"

/// The last stretch of a message's way: whole lines to console, log and journal. All functions may be
/// called on any thread.
namespace com_msg_mgr {

/// Gives the whole lines of `text` to the places of the mask; they wait while the calling thread is held.
/// \param id empty for a text without one
void deliver(ComMsgMgrMask mask, std::string_view id, std::string_view text);

/// Gives whole lines to the console alone, at once.
void write_console(std::string_view text);

/// Replaces the end of one road, null for the usual one: 0 the console, 1 the log, 2 the journal. Returns
/// what stood there.
std::shared_ptr<ComMsgMgrSink> set_sink(std::size_t where, std::shared_ptr<ComMsgMgrSink> sink);
void set_all_to_console(bool all);

/// The number of the calling thread: 1 for the first that asks.
int thread_number();
void hold_thread(int number);
/// Delivers what the thread has sent meanwhile.
void release_thread(int number);
void release_all_threads();

} // namespace com_msg_mgr
