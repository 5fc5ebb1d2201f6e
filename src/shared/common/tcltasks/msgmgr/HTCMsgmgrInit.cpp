#include "tcltasks/msgmgr/HTCMsgmgrInit.h"

#include "tcltasks/core/task.h"

using vek::tcltasks::task_entry;

namespace send_msg_id {
extern const task_entry entry;
}
namespace send_gid_msg {
extern const task_entry entry;
}
namespace send_message {
extern const task_entry entry;
}

namespace HTCMsgmgrInit {

namespace {

const task_entry* const msgmgr[] = {
    &send_msg_id::entry,
    &send_gid_msg::entry,
    &send_message::entry,
};

} // namespace

void HTCMsgmgr::init(Tcl_Interp* interp) {
    add_tasks(msgmgr, interp);
}

void HTCMsgmgr::uninit() {
    remove_tasks(msgmgr);
}

} // namespace HTCMsgmgrInit
