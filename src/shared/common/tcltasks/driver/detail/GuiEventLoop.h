#pragma once

#include <functional>

/// Tcl's event loop as it runs while the session's windows are up. Interpreter's thread only.
class GuiEventLoop {
public:
    /// Runs until `stop` gives true or sExitEventLoop is set. Does nothing if it runs already.
    static void start(const std::function<bool()>& stop);
    /// A stop function for a loop that only sExitEventLoop ends.
    static bool falseFcn() { return false; }

    static bool sExitEventLoop;
};
