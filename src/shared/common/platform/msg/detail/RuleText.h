#pragma once

#include <string>
#include <string_view>

/// What the forms of a message rule need.
namespace com_msg_mgr {

/// A word of a Tcl command that stands for exactly this text, without line ends of its own.
std::string tcl_word(std::string_view text);

/// A message id without the brackets that it has in the log.
std::string_view without_brackets(std::string_view id);

/// The longest run of plain characters without which the regular expression matches nothing. Empty when none
/// is found easily.
std::string required_literal(std::string_view expression);

} // namespace com_msg_mgr
