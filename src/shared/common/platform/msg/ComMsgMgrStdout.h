#pragma once

#include "platform/msg/ComMsgMgr.h"

/// The console while no Tcl channel is there for it: the process's standard output. What the C library still
/// holds for stdout goes out first. Each text is written in one piece, also to a slow reader or a descriptor
/// that does not block; a text that the system refuses is lost.
class ComMsgMgrStdout : public ComMsgMgrSink {
public:
    /// The one for descriptor 1.
    static const std::shared_ptr<ComMsgMgrStdout>& instance();
    void write(std::string_view text) override;
};
