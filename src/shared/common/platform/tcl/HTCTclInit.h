#pragma once

/// Process-wide state of the Tcl services.
class HTCTclInit {
public:
    /// Starts the services that need a session. A second call does nothing.
    static void init();

    /// Ends what init started and stops serving evaluations from other threads. May run more than once.
    static void uninit();
};
