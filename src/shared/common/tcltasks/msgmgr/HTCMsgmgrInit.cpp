#include "tcltasks/msgmgr/HTCMsgmgrInit.h"

#include "platform/msg/ComMsgMgrProjIface.h"
#include "tcltasks/core/task.h"

using vek::tcltasks::task_entry;

namespace add_scope {
extern const task_entry entry;
}
namespace has_scope {
extern const task_entry entry;
}
namespace remove_scope {
extern const task_entry entry;
}
namespace reset_scope {
extern const task_entry entry;
}
namespace get_messages {
extern const task_entry entry;
}
namespace write_messages {
extern const task_entry entry;
}
namespace add_suppress_rule_cmd {
extern const task_entry entry;
}
namespace get_suppress_rules {
extern const task_entry entry;
}
namespace get_msg_control_rules {
extern const task_entry entry;
}
namespace delete_suppress_rule_by_ruleid_cmd {
extern const task_entry entry;
}
namespace hold_messages_for_thread {
extern const task_entry entry;
}
namespace release_messages_for_thread {
extern const task_entry entry;
}
namespace send_msg_id {
extern const task_entry entry;
}
namespace send_gid_msg {
extern const task_entry entry;
}
namespace send_message {
extern const task_entry entry;
}
namespace get_msg_src_stats {
extern const task_entry entry;
}
namespace set_visibility {
extern const task_entry entry;
}
namespace get_visibility {
extern const task_entry entry;
}
namespace reset_visibility {
extern const task_entry entry;
}
namespace set_verbosity {
extern const task_entry entry;
}
namespace get_verbosity {
extern const task_entry entry;
}
namespace disable_msg_limit {
extern const task_entry entry;
}
namespace enable_msg_limit {
extern const task_entry entry;
}
namespace reset_msg_count {
extern const task_entry entry;
}
namespace get_tcl_msg_count {
extern const task_entry entry;
}
namespace turn_on_msg_xsl {
extern const task_entry entry;
}
namespace turn_off_msg_xsl {
extern const task_entry entry;
}
namespace is_msg_xsl_on {
extern const task_entry entry;
}
namespace turn_on_time_stamp {
extern const task_entry entry;
}
namespace turn_off_time_stamp {
extern const task_entry entry;
}
namespace is_time_stamp_on {
extern const task_entry entry;
}
namespace mask_msgmgr_errors {
extern const task_entry entry;
}
namespace set_trace_verbosity {
extern const task_entry entry;
}
namespace reset_trace_verbosity {
extern const task_entry entry;
}
namespace get_trace_verbosity {
extern const task_entry entry;
}
namespace create_msg_db {
extern const task_entry entry;
}
namespace close_msg_db {
extern const task_entry entry;
}
namespace load_msg_db {
extern const task_entry entry;
}
namespace show_statistics {
extern const task_entry entry;
}
namespace set_msg_config {
extern const task_entry entry;
}
namespace reset_all_msg_counters {
extern const task_entry entry;
}
namespace reset_msg_config {
extern const task_entry entry;
}
namespace get_msg_config {
extern const task_entry entry;
}
namespace get_messages_from_log {
extern const task_entry entry;
}
namespace validate_msg_files {
extern const task_entry entry;
}

namespace HTCMsgmgrInit {

namespace {

const task_entry* const msgmgr[] = {
    &add_scope::entry,
    &has_scope::entry,
    &remove_scope::entry,
    &reset_scope::entry,
    &get_messages::entry,
    &write_messages::entry,
    &add_suppress_rule_cmd::entry,
    &get_suppress_rules::entry,
    &get_msg_control_rules::entry,
    &delete_suppress_rule_by_ruleid_cmd::entry,
    &hold_messages_for_thread::entry,
    &release_messages_for_thread::entry,
    &send_msg_id::entry,
    &send_gid_msg::entry,
    &send_message::entry,
    &get_msg_src_stats::entry,
    &set_visibility::entry,
    &get_visibility::entry,
    &reset_visibility::entry,
    &set_verbosity::entry,
    &get_verbosity::entry,
    &disable_msg_limit::entry,
    &enable_msg_limit::entry,
    &reset_msg_count::entry,
    &get_tcl_msg_count::entry,
    &turn_on_msg_xsl::entry,
    &turn_off_msg_xsl::entry,
    &is_msg_xsl_on::entry,
    &turn_on_time_stamp::entry,
    &turn_off_time_stamp::entry,
    &is_time_stamp_on::entry,
    &mask_msgmgr_errors::entry,
    &set_trace_verbosity::entry,
    &reset_trace_verbosity::entry,
    &get_trace_verbosity::entry,
    &create_msg_db::entry,
    &close_msg_db::entry,
    &load_msg_db::entry,
    &show_statistics::entry,
    &set_msg_config::entry,
    &reset_all_msg_counters::entry,
    &reset_msg_config::entry,
    &get_msg_config::entry,
    &get_messages_from_log::entry,
    &validate_msg_files::entry,
};

} // namespace

void HTCMsgmgr::init(Tcl_Interp* interp) {
    ComMsgMgrProjIface::followParameter();
    add_tasks(msgmgr, interp);
}

void HTCMsgmgr::uninit() {
    ComMsgMgrProjIface::stopFollowingParameter();
    remove_tasks(msgmgr);
}

} // namespace HTCMsgmgrInit
