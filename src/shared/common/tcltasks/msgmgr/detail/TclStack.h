#pragma once

#include <tcl.h>

#include "platform/msg/ComMsgMgr.h"

/// The debugging aid behind messages that scripts send.
namespace HTCMsgmgr {

/// Prints the Tcl calls that led to a message of this severity, when the parameter messaging.showTclStack
/// asks for them. Leaves the interpreter's result alone; what goes wrong ends in a STATUS message.
/// Interpreter's thread, inside the command that sent the message.
void showTclStack(Tcl_Interp* interp, ComMsgMgr::MsgMask mask);

} // namespace HTCMsgmgr
