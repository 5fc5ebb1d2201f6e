#pragma once

#include "platform/taskcore/options_description.h"

namespace vek::tcltasks {

/// What an option takes, in its user's words: "an integer". A collection of texts, which holds no objects, is
/// a list to its user; objects of any class are not found by their names.
const char* value_kind(const options_description::option& option);

} // namespace vek::tcltasks
