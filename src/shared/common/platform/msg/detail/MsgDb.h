#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/msg/ComMsgMgrSrcHandle.h"
#include "platform/msg/detail/MsgSource.h"

/// Message databases: SQLite files, written by a thread of their own. docs/messages.md tells what is in one.
/// All functions may be called on any thread.
namespace com_msg_mgr {

/// Whether a database is open. One atomic read.
bool is_any_db_open();
/// Puts a message into the queue of each open database. Waits only when very much is in the queue already.
void add_to_dbs(const MessageLine& message);
/// Names the command of the messages that follow; its first 512 bytes are kept.
void note_db_command(std::string_view command);

/// Throws HEXError if the file cannot be made or is not to be replaced.
void create_db(const std::string& file);
/// Throws HEXError if the file is not open or not complete.
void close_db(const std::string& file);
void close_all_dbs();

struct OpenDb {
    std::string path;
    std::uint64_t messages;
};
std::vector<OpenDb> open_dbs();

/// Whether the file says that it is a message database, damaged or of another version though it may be.
bool is_db(const std::string& file);
/// The source that reads a database; a file loaded before gives its source of then. Throws HEXError.
ComMsgMgrSrcHandle load_db(const std::string& file, const std::string& name);

} // namespace com_msg_mgr
