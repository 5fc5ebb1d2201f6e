#pragma once

#include "platform/msg/ComMsgMgr.h"

/// Settings of the message manager that belong to the work at hand. Any thread.
class ComMsgMgrProjIface {
public:
    /// The modes that the session works in: a message is shown if one of its own modes is among them.
    /// MODE_DEFAULT at the start.
    static ComMsgMgr::OperatingMode getOperatingMode();
    static void setOperatingMode(ComMsgMgr::OperatingMode modes);
};
