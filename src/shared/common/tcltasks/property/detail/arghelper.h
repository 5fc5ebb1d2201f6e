#pragma once

#include <string>

#include "platform/property/HCPProperty.h"

/// How a listing of properties tells its positional object from a pattern.
namespace HTCProperty::detail::arghelper {

/// With a class, and no pattern but the default "*", what stands in the place of the object is a pattern: it
/// becomes the pattern and the collection is emptied. Throws bad_tclany_cast if it is no text, and HEXAll if
/// objects and a class are both given.
void adjustObjectAndPatternOrError(HCPProperty::Objects& objects, std::string& pattern,
                                   const std::string& className);

[[noreturn]] void errorClassAndObject();

} // namespace HTCProperty::detail::arghelper
