#pragma once

#include <string>
#include <vector>

#include "platform/param/HPAParam.h"

namespace param_report {

/// A table of parameters that fits 80 columns. \param wide tells for each whether it is visible
std::string table(const std::vector<HPAParam*>& params, bool wide);

} // namespace param_report
