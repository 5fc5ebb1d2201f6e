#pragma once

#include <memory>
#include <string>

#include "platform/gui/HUTGuiEvent.h"
#include "platform/property/HCPProperty.h"

/// One property was set on several objects at once.
struct HTCSetPropertyMultipleObjects : HUTGuiEvent::GuiEventBase {
    HTCSetPropertyMultipleObjects(HCPProperty::tclany firstObject, HCPProperty::Objects all,
                                  std::string contextText, std::string propertyName,
                                  unsigned long objectCount)
        : first(std::move(firstObject)), objects(std::move(all)), context(std::move(contextText)),
          name(std::move(propertyName)), count(objectCount) {}

    HCPProperty::tclany first;
    HCPProperty::Objects objects;
    std::string context; ///< how the collection came about, in words
    std::string name;
    unsigned long count;
};

/// Several properties were set at once.
struct HTCSetMultiplePropertiesDictionary : HUTGuiEvent::GuiEventBase {
    HTCSetMultiplePropertiesDictionary(HCPProperty::tclany firstObject, HCPProperty::Objects all,
                                       std::string contextText, HCPProperty::Pairs namesAndValues)
        : first(std::move(firstObject)), objects(std::move(all)), context(std::move(contextText)),
          pairs(std::move(namesAndValues)) {}

    HCPProperty::tclany first;
    HCPProperty::Objects objects;
    std::string context;
    HCPProperty::Pairs pairs;
};

/// What the commands that set properties share. Interpreter's thread.
namespace HTCProperty::detail::setting {

/// True while a dictionary of properties is set, which tells of itself by one event of its own.
extern bool bUsingSetPropertyDictionaryWay;

/// The setter for one property of some objects, at least one; null, with a CRITICAL WARNING, for a property
/// that has none. Puts the property's canonical name into `name`. Throws HEXError if the class does not have
/// the property, an object does not, or it is read-only.
std::shared_ptr<HCPProperty::Setter> create_property_setter(const HCPProperty::Objects& objects,
                                                            std::string& name);

/// Raises HTCSetPropertyMultipleObjects if there are enough objects and none of the reasons to be silent.
void checkNotifySetPropertyMultipleObjects(const HCPProperty::Objects& objects, const std::string& name);

/// Raises HTCSetMultiplePropertiesDictionary unless the collection is silent.
void notifyDictionary(const HCPProperty::Objects& objects, const HCPProperty::Pairs& pairs);

/// Takes the change of a setter back or makes it again, and tells of it; null does nothing.
int undo(HCPProperty::Setter* setter, Tcl_Interp* interp, const std::string& name);
int redo(HCPProperty::Setter* setter, Tcl_Interp* interp, const std::string& name);

} // namespace HTCProperty::detail::setting
