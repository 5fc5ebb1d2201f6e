#pragma once

/// Ties the message stream to Tcl's standard channels.
class HTCTclChannel {
public:
    /// From now on console messages go through Tcl's stdout channel of the calling thread, which must be the
    /// thread of the main interpreter: a script that redirects or transforms its stdout sees them.
    ///
    /// Messages of other threads never touch a Tcl channel. While file descriptor 1 is what it was at this
    /// call and stdout is no transformed channel, they are written to it at once, whole lines at a time;
    /// otherwise, and while the user types a line, they are queued to the interpreter's thread and appear
    /// when its event loop runs or the prompt has made room for them.
    static void forwardMsg2Stdout();
    /// Back to the process's own standard output.
    static void stopMsg2Stdout();
    /// Every message goes to stdout as well, also those that belong in the log or the journal only.
    static void setAllMsg2Stdout();
    /// Makes Tcl's standard channels of the calling thread fit for a console: blocking (whatever the process
    /// inherited), stdout by lines, stderr unbuffered.
    static void initConsoleChannels();
};
