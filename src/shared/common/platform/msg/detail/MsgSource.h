#pragma once

#include <deque>
#include <functional>
#include <mutex>

#include "platform/msg/ComMsgMgrInstance.h"
#include "platform/msg/ComMsgMgrSrcHandle.h"

/// Messages that can be asked for. Any thread.
class ComMsgMgrSrcHandle::Source {
public:
    using Message = std::shared_ptr<const ComMsgMgrInstance>;
    using Visitor = std::function<void(const Message&)>;

    explicit Source(std::string sourceName) : name(std::move(sourceName)) {}
    virtual ~Source() = default;

    const std::string name;

    /// Calls the visitor for those of any bit in the mask, in their order and without a lock held. Throws
    /// HEXError if they cannot be read.
    virtual void visit(ComMsgMgrMask mask, const Visitor& visitor) const = 0;
};

namespace com_msg_mgr {

struct IdRecord;

/// What is kept of a message that nobody will ask for more than its line.
struct MessageLine {
    ComMsgMgrMask mask;
    ComMsgMgrMask defaultMask; ///< before rules changed it
    const IdRecord* id;        ///< null for a text without one
    std::string_view subsystem;
    std::string_view text; ///< without severity and id
    bool suppressed;
};
std::shared_ptr<ComMsgMgrInstance> to_instance(const MessageLine& line);

/// Messages in memory: whole ones, or lines, which take a tenth of the time to keep. Of more than the limit
/// the oldest are given up.
class MemorySource : public ComMsgMgrSrcHandle::Source {
public:
    using Source::Source;

    void add(Message message);
    void add(const MessageLine& line);
    void clear();
    /// \param bytes about as much memory as the messages may take
    void setLimit(std::size_t bytes);
    std::size_t bytes() const;
    void visit(ComMsgMgrMask mask, const Visitor& visitor) const override;

private:
    /// Lines one behind the other. What is written in it once does not change.
    struct Chunk {
        explicit Chunk(std::size_t size) : bytes(new char[size]), capacity(size) {}

        const std::unique_ptr<char[]> bytes;
        const std::size_t capacity;
        std::size_t used = 0;
    };
    /// Messages that came one after the other, all lines or all whole.
    struct Stretch {
        std::shared_ptr<Chunk> lines; ///< null for whole ones
        std::deque<Message> messages;
        std::size_t bytes = 0;
    };

    char* reserve(std::size_t size);
    void shrink();

    mutable std::mutex m_mutex; // guards the members below
    std::deque<Stretch> m_stretches;
    std::size_t m_bytes = 0;
    std::size_t m_limit = std::size_t(256) << 20;
};

/// The session's own messages.
MemorySource& session_source();
/// Adds a source to those of getMsgMgrHandles().
ComMsgMgrSrcHandle add_source(std::shared_ptr<ComMsgMgrSrcHandle::Source> source);
/// Forgets all sources but the session's.
void forget_sources();

} // namespace com_msg_mgr
