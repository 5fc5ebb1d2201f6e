#pragma once

#include "design/Property.h"

#include <vector>

namespace design {

/// The properties that a class has from the start, one line each in PropertyTables.cpp.
std::vector<PropertySpec> built_in_properties(ObjectClass cls);

} // namespace design
