#pragma once

#include <string>
#include <vector>

#include "platform/msg/ComMsgMgr.h"

/// What the commands over message rules take, and how they refuse it. Any thread.
namespace HTCMsgmgr {

/// Sends an ERROR about a word that is no severity. False, so that a command may return with it.
bool validate_msgtype(const std::string& word);
/// True for an id of letters, digits, "_", blanks and at most one dash, also an empty one. Sends an ERROR
/// about another.
bool validate_msgid(const std::string& id);
/// Takes the brackets off an id that was copied from the log.
void trim_brackets(std::string& id);

/// The help of the options that say which messages a rule is for.
namespace qualifier_help {
constexpr const char* id =
    "A qualifier, apply the selected operation only to messages that match given message "
    "id. Example: '-id {Common 17-35}'.";
constexpr const char* strings =
    "A qualifier, apply the selected operation only to messages that contain the given list of strings.";
constexpr const char* severity = "A qualifier, apply the selected operation only to messages at the given "
                                 "severity level. Example: '-severity INFO'";
} // namespace qualifier_help

/// Sends a line of output.
void print_line(const std::string& text);

} // namespace HTCMsgmgr
