#pragma once

#include "platform/msg/ComMsgMgr.h"

/// What commands ask of the message manager for their own bookkeeping. Any thread.
class ComMsgMgrTclIface {
public:
    /// ERROR messages of the session. A command that keeps its errors to itself sets the count back.
    static unsigned getLifetimeErrorCount() { return ComMsgMgr::getLifetimeErrorCount(); }
    static void setLifetimeErrorCount(unsigned count) { ComMsgMgr::setLifetimeErrorCount(count); }
};
