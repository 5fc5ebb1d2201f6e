#include "platform/param/HPAParam.h"

#include "platform/msg/ComMsgMgr.h"

std::string_view HPATypeToString(HPAType type) {
    switch (type) {
    case HPA_BOOL:
        return "Bool";
    case HPA_INT:
        return "Int";
    case HPA_FLOAT:
        return "Float";
    case HPA_STRING:
        return "String";
    case HPA_LINKED:
        return "Linked";
    }
    return "";
}

void HPAParam::lifeCycleCheck() const {
    if (state == deprecated)
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-5200@%s\n", name);
    else if (state == obsolete)
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-5201@%s\n", name);
}
