#pragma once

/// Wakes the interpreter's thread while it waits outside of Tcl's event loop, where Tcl's own alert does not
/// reach it: the line editor waits for keys there. Whoever hands work to that thread calls notify() after he
/// has queued it.
class HTCTclWakeUp {
public:
    /// The descriptor that is readable from notify() until clear(). Made by the first call; -1 if the system
    /// has none to give.
    static int descriptor();
    /// Any thread, and signal handlers. Does nothing before the first descriptor().
    static void notify() noexcept;
    static void clear();

    /// Whether that thread has a line on the screen that the user is typing, so that what other threads show
    /// should go through it. Set on that thread, read on any.
    static bool isAtPrompt();
    static void setAtPrompt(bool atPrompt);
};
