#pragma once

#include <deque>
#include <mutex>

#include "platform/msg/ComMsgMgrInstance.h"
#include "platform/msg/ComMsgMgrSrcHandle.h"

/// Messages that can be asked for.
class ComMsgMgrSrcHandle::Source {
public:
    using Message = std::shared_ptr<const ComMsgMgrInstance>;

    explicit Source(std::string sourceName) : name(std::move(sourceName)) {}

    const std::string name;

    void add(Message message);
    /// Appends those of any bit in the mask.
    void get(std::vector<Message>& list, ComMsgMgrMask mask) const;
    void clear();

private:
    /// About as much memory as kept messages may take.
    static constexpr std::size_t max_bytes = std::size_t(256) << 20;

    mutable std::mutex m_mutex;
    std::deque<Message> m_messages; // guarded by m_mutex
    std::size_t m_bytes = 0;        // guarded by m_mutex
};
