#pragma once

#include <string>
#include <utility>

#include "platform/gui/HUTGuiEvent.h"

class HPAParamMgr;

/// A command has set or reset a parameter, to another value or to the one that it had.
struct HTCParamUpdatedEvent : HUTGuiEvent::GuiEventBase {
    HTCParamUpdatedEvent(HPAParamMgr& owner, std::string spelled)
        : manager(owner), name(std::move(spelled)) {}

    HPAParamMgr& manager;
    std::string name; ///< as the user wrote it
};
