#pragma once

namespace HTCLibEdit::detail {

/// Adds the sources of the values that the platform keeps: parameters, their values, classes, properties and
/// severities. More than one call is harmless.
void add_value_sources();

} // namespace HTCLibEdit::detail
