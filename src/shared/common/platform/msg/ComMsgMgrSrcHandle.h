#pragma once

#include <memory>
#include <string>
#include <vector>

class ComMsgMgrInstance;

/// A handle on a source of messages: the session itself, or messages that were read from a file. Copies speak
/// of the same source. Safe on any thread.
class ComMsgMgrSrcHandle {
public:
    class Source;

    /// The session's own messages.
    ComMsgMgrSrcHandle();
    explicit ComMsgMgrSrcHandle(std::shared_ptr<Source> source) : m_source(std::move(source)) {}

    /// Makes a source of these messages and adds it to those of getMsgMgrHandles().
    static ComMsgMgrSrcHandle add(const std::string& name,
                                  std::vector<std::shared_ptr<const ComMsgMgrInstance>> messages);

    const std::string& name() const;
    /// Appends the handles of all sources: the session's own, then those added, in order.
    void getMsgMgrHandles(std::vector<ComMsgMgrSrcHandle>& list) const;
    Source& source() const { return *m_source; }
    bool operator==(const ComMsgMgrSrcHandle&) const = default;

private:
    std::shared_ptr<Source> m_source;
};
