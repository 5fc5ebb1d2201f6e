#pragma once

namespace design {

class Design;

/// Makes the object classes and their properties known to the property commands: what PropertyTables.cpp
/// lists, properties that users create, and `_default_` for all others. A second call does nothing.
void register_property_classes();

/// Lists the attributes and parameters of a design's file among the properties of its objects.
void register_attributes_of(const Design& design);

} // namespace design
