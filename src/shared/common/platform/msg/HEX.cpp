#include "platform/msg/HEX.h"

#include "platform/msg/ComMsgMgr.h"

HEXAll::HEXAll(const ComMsgMgrInstance& message)
    : m_body(std::make_shared<const Body>(Body{message, message.line()})) {}

void HEXAll::print() const {
    ComMsgMgr::sendMsg(m_body->message);
}

HEXAlgException::HEXAlgException(std::string_view reason)
    : HEXAll(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5150@%s\n", reason)) {}
