#pragma once

#include <tcl.h>

/// Registration of the message commands.
namespace HTCMsgmgrInit {

struct HTCMsgmgr {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

} // namespace HTCMsgmgrInit
