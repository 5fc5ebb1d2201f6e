#pragma once

#include "platform/gui/HUTGuiEvent.h"

/// What a session tells the windows of its course. Texts and lists are only valid while the event is raised.
namespace driver::detail {

template <int number>
struct session_event_tag {
    static constexpr int type = number;
};
template <int number>
using session_event = HUTGuiEvent::detail::gui_native_event<session_event_tag<number>>;

/// The services of the session run. No data.
using engine_start = session_event<60>;
/// They have ended. No data.
using engine_stop = session_event<61>;
/// Something begins that takes its time. Data: an HSTVector<std::string>* with one text.
using start_progress_dialog = session_event<62>;
/// It has ended. Data: a null void*.
using stop_progress_dialog = session_event<63>;
/// The windows are to source scripts. Data: an HSTVector<std::string>* with their names.
using source_in_gui = session_event<64>;

} // namespace driver::detail
