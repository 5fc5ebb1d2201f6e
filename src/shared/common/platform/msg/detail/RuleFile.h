#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/msg/ComMsgMgrMsgControlRule.h"

/// Keeping the message rules of a project in a file.
namespace com_msg_mgr {

/// Reads the rules of a file, in its order, later ones before earlier ones in force; a file that does not
/// exist has none. Throws HEXError naming file, line, column
/// and fault.
std::vector<ComMsgMgrRuleParts> read_rule_file(const std::string& path);

/// Writes the rules in the order in which they were made. The file is replaced, so that a reader never sees
/// half of it. Throws std::system_error.
void write_rule_file(const std::string& path,
                     const std::map<std::string, std::shared_ptr<const ComMsgMgrMsgControlRule>>& rules);

/// Told after each change of rules: saves those of an open project when it is time.
void note_rule_change();
/// Told when a command begins at the prompt: saves what is not saved yet. An atomic load if there is nothing.
void save_changed_rules();

} // namespace com_msg_mgr
