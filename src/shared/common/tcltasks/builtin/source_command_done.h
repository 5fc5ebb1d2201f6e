#pragma once

#include "platform/gui/HUTGuiEvent.h"

/// A `source` has come to its end, well or not. Data: the Tcl_Interp*, an int* to the completion code, which
/// a listener may change once it has shown a failure itself, and the itask* of the command.
struct source_command_done_tag {
    static constexpr int type = 66;
};
using source_command_done = HUTGuiEvent::detail::gui_native_event<source_command_done_tag>;
