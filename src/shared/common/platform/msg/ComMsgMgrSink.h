#pragma once

#include <string_view>

/// Where messages end: the console, the log, the journal. A seam that tests stand in for.
class ComMsgMgrSink {
public:
    virtual ~ComMsgMgrSink() = default;
    /// Takes whole lines: `text` ends in a line end. May be called on any thread, one call at a time for the
    /// log and the journal; calls for the console may overlap. Must not throw, and for the log and the
    /// journal not send messages.
    virtual void write(std::string_view text) = 0;
};
