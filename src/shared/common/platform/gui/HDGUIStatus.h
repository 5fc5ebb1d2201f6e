#pragma once

#include <atomic>

/// How far the run is that a window shows: what it is doing, and whether its user wants it to go on. Any
/// thread.
class HDGUIStatus {
public:
    enum State { idle = 0, running = 1, paused = 2, finished = 3, cancelled = 4 };

    /// `cancelled` also while an interrupt of the console waits to be answered.
    int getState() const;
    void setState(int state) { m_state = state; }
    bool isCancelled() const { return getState() == cancelled; }

private:
    std::atomic<int> m_state{idle};
};

namespace vek::tcltasks {

/// The status of the run that goes on in this process.
class HTCGuiStatusAccess {
public:
    static HDGUIStatus* getGuiStatus();
};

} // namespace vek::tcltasks
