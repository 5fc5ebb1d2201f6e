#pragma once

namespace com_msg_mgr {

/// Warns the user if the log or the journal could not be written, or was removed, since the last call. Costs
/// two atomic reads when all is well. Any thread.
void report_log_failures();

} // namespace com_msg_mgr
