#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <tcl.h>

#include "platform/property/HATAttr.h"
#include "platform/property/HATAttrSpec.h"

namespace HATAttrUtils {

/// A value as text: a bool as "1" or "0", a floating number as Tcl prints it, a list with one blank between
/// its elements, nothing for an empty value.
std::string getStringValue(const HATAttrAny& value);
std::string getStringValue(const HATAttr& attr);

/// A value as text, for a property of that specification.
std::string getStringValue(const HATAttrAny& value, const HATAttrSpec* spec);

/// A value for Tcl: numbers as numbers, lists as lists. The count of the new value is zero.
Tcl_Obj* getTclValue(const HATAttrAny& value);

/// The word for a type, the same that makes a property of that type: "bool", "int", "string_list", ...
const char* getStringType(HATAttrTypes::AttrType type);
/// The type of a value that is there; a word of an enumeration is a string. Nothing for an empty value.
std::optional<HATAttrTypes::AttrType> getValueType(const HATAttrAny& value);
/// The type that a word stands for, case ignored.
std::optional<HATAttrTypes::AttrType> getAttrType(std::string_view word);

/// Orders two values: numbers by size, whatever their types; anything else by its text.
bool less(const HATAttrAny& a, const HATAttrAny& b);
/// The number that a value is, or nothing for a text or a list.
std::optional<double> numberOf(const HATAttrAny& value);
/// The number that a text is as a whole, or nothing.
std::optional<double> numberFrom(std::string_view text);

/// A number in its shortest form: "24" for 24.0.
std::string numberText(double value);

/// Whether a property may be set: on an object of a class that can be changed, it is not read-only.
bool writable(const HATAttrSpec* spec, bool objectWritable = true);
/// Throws HEXError that names the property if it is read-only.
void writableOrError(const HATAttrSpec* spec, const std::string& name);

/// A value as the property takes it: of the property's type and within its range. Throws HEXError that names
/// the property and the value and says what would be accepted.
HATAttrAny convert(const HATAttrSpec& spec, const HATAttrAny& value);

/// What a property takes, in words: "a whole number from 0 to 24", "one of 'slow', 'fast'".
std::string accepted(const HATAttrSpec& spec);

} // namespace HATAttrUtils
