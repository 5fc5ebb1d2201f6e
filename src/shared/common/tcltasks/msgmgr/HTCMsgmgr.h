#pragma once

#include <string>

#include "platform/msg/ComMsgMgr.h"

/// What the message commands share.
namespace HTCMsgmgr {

/// The mask of a severity word as a user writes it, in any case and also in the plural; 0 for an unknown
/// word. Any thread.
ComMsgMgr::MsgMask msgString2Type(const std::string& word);

/// The same; throws HEXError for an unknown word.
ComMsgMgr::MsgMask requireMsgType(const std::string& word);

} // namespace HTCMsgmgr
