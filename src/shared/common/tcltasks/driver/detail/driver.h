#pragma once

#include <tcl.h>

/// The life of a session around its commands. Interpreter's thread only.
namespace driver {

bool isTclMode();
bool isBatchMode();
bool isGuiMode();

/// Whether the windows' event loop runs; with `set`, also changes that to `running`. Returns the new state.
bool isTclEventLoopRunning(bool set = false, bool running = false);

/// Ends the session's services, once, and only if detail::init began them: says when the session ended
/// unless `quiet`, and shows what was recorded of time and memory.
void uninit(bool quiet);
void uninit();

namespace detail {

/// Begins the session's services: writes the banner, and the first time installs the process's handlers,
/// makes the user's data directory, shows the product's header unless `quiet` and takes over the locale.
void init(bool regress, bool gui, bool quiet);

/// Shows the interpreter's result as an error, unless it is empty or has been shown, and resets it. After an
/// interrupt by the user the error says just that.
void writeTclErrorMessage(Tcl_Interp* interp);

} // namespace detail
} // namespace driver
