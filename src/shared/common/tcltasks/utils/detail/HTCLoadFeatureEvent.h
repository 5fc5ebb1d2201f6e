#pragma once

#include <string>
#include <tcl.h>
#include <utility>

#include "platform/gui/HUTGuiEvent.h"

/// A feature has been loaded in an interpreter: its commands are there.
struct HTCLoadFeatureEvent : HUTGuiEvent::GuiEventBase {
    HTCLoadFeatureEvent(Tcl_Interp* in, std::string feature) : interp(in), name(std::move(feature)) {}

    Tcl_Interp* interp;
    std::string name;
};
