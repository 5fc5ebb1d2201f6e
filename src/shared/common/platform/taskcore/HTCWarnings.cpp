#include "platform/taskcore/HTCWarnings.h"

#include "platform/msg/ComMsgMgr.h"

void HTCWarnings::repeatedOptionWarning(const std::string& switchName) {
    ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-5010@%s\n", switchName);
}
