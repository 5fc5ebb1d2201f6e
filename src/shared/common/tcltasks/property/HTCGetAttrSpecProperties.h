#pragma once

/// The class "attr_spec", by which get_property reads the specification of a property.
namespace HTCGetAttrSpecProperties {

/// Registers the class; a second call does nothing.
void init();

} // namespace HTCGetAttrSpecProperties
