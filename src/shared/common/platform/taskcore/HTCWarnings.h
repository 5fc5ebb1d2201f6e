#pragma once

#include <string>

namespace HTCWarnings {

/// Warns that an option stands more than once and that its last value counts.
void repeatedOptionWarning(const std::string& switchName);

} // namespace HTCWarnings
