#pragma once

/// The class "attr_spec", by which get_property reads the spec of a property.
namespace HTCGetAttrSpecProperties {

/// Registers the class; a second call does nothing.
void init();

} // namespace HTCGetAttrSpecProperties
