#pragma once

#include <string>

/// Resolves a boolean word that Tcl does not know: enable, enabled, disable, disabled, in any case. Returns
/// false and leaves `value` alone for any other word.
bool ResolveBool(bool& value, const std::string& word);
