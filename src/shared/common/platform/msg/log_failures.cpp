#include "platform/msg/log_failures.h"

#include "platform/env/HUTLogFileMgr.h"
#include "platform/msg/ComMsgMgr.h"

namespace com_msg_mgr {

void report_log_failures() {
    while (HUTLogFileMgr::hasWriteError()) {
        const auto failed = HUTLogFileMgr::takeWriteError();
        if (!failed) {
            return;
        }
        if (failed->code == std::errc::no_such_file_or_directory) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-5260@%s\n", failed->path);
        } else {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-5018@%s%s\n", failed->path,
                               failed->code.message());
        }
    }
}

} // namespace com_msg_mgr
