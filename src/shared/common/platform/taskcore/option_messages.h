#pragma once

#include <string>
#include <tcl.h>
#include <vector>

#include "platform/msg/HEX.h"
#include "platform/taskcore/HTCErrors.h"
#include "platform/taskcore/options_description.h"

namespace vek::tcltasks {

/// The errors that a call of a task ends in, one function for each: here stands which message goes with which
/// fault. `command` is the word by which the user called it.
namespace option_messages {

HEXError unknown_option(const std::string& command, const std::string& word,
                        const options_description& options);
HEXError ambiguous_option(const std::string& command, const std::string& word,
                          const options_description& options);
HEXError missing_value(const std::string& command, const options_description::option& option);
HEXError invalid_value(const std::string& command, const std::string& switchName, const std::string& value,
                       const options_description* options);
HEXError repeated_option(const std::string& command, const std::string& switchName);
HEXError unexpected_argument(const std::string& command, const std::string& word, const std::string& usage);
HEXError missing_option(const std::string& command, const std::string& name, const std::string& usage);
HEXError excluded_option(const std::string& command, const std::string& name, const std::string& other);
HEXError untyped_collection_repeated(const std::string& command);
HEXError failed(const std::string& command, const std::string& reason);

/// The error message for an exception of the task core. `options` may be null.
HEXError of(const HTCErrors::error& error, const std::string& command, const options_description* options);

} // namespace option_messages

/// Leaves the message as result of the interpreter, and its id in errorCode; returns TCL_ERROR.
int fail_with(Tcl_Interp* interp, const HEXAll& error);

/// The word by which a command was called, without a leading "::".
std::string called_as(Tcl_Obj* word);

} // namespace vek::tcltasks
