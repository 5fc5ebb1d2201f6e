#pragma once

#include <string>

#include "platform/property/HATAttr.h"

namespace HATAttrUtils {

/// A value as text: a bool as "1" or "0", a floating number as Tcl prints it, a list with one blank between
/// its elements, nothing for an empty value.
std::string getStringValue(const HATAttrAny& value);
std::string getStringValue(const HATAttr& attr);

/// Orders two values: numbers by size, whatever their types; anything else by its text.
bool less(const HATAttrAny& a, const HATAttrAny& b);

} // namespace HATAttrUtils
