#include "platform/msg/ComMsgMgrSrcHandle.h"

#include <algorithm>
#include <cstring>

#include "platform/msg/detail/MsgIds.h"
#include "platform/msg/detail/MsgSource.h"

namespace {

using com_msg_mgr::MemorySource;
using Source = ComMsgMgrSrcHandle::Source;

struct Sources {
    const std::shared_ptr<MemorySource> root = std::make_shared<MemorySource>("session");
    std::mutex mutex;
    std::vector<std::shared_ptr<Source>> added; // guarded by mutex

    static Sources& get() {
        static Sources& sources = *new Sources; // messages are sent up to the very end of the process
        return sources;
    }
};

std::size_t size_of(const Source::Message& message) {
    return sizeof(ComMsgMgrInstance) + message->bytes();
}

} // namespace

ComMsgMgrSrcHandle::ComMsgMgrSrcHandle() : m_source(Sources::get().root) {}

ComMsgMgrSrcHandle ComMsgMgrSrcHandle::add(const std::string& name,
                                           std::vector<std::shared_ptr<const ComMsgMgrInstance>> messages) {
    auto source = std::make_shared<MemorySource>(name);
    for (Source::Message& message : messages)
        source->add(std::move(message));
    return com_msg_mgr::add_source(std::move(source));
}

const std::string& ComMsgMgrSrcHandle::name() const {
    return m_source->name;
}

void ComMsgMgrSrcHandle::getMsgMgrHandles(std::vector<ComMsgMgrSrcHandle>& list) const {
    Sources& sources = Sources::get();
    std::lock_guard lock(sources.mutex);
    list.emplace_back(sources.root);
    for (const auto& source : sources.added)
        list.emplace_back(source);
}

namespace com_msg_mgr {

namespace {

/// What stands before the texts of a line in a chunk.
struct LineHead {
    ComMsgMgrMask mask, defaultMask;
    const IdRecord* id;
    std::size_t subsystem, text; // sizes
    bool suppressed;
};

constexpr std::size_t chunk_size = 256 << 10;
/// Whole messages are given up so many at a time, not to look at the limit for each.
constexpr std::size_t stretch_size = 256 << 10;

} // namespace

std::shared_ptr<ComMsgMgrInstance> to_instance(const MessageLine& line) {
    auto message = std::make_shared<ComMsgMgrInstance>(
        ComMsgMgrInstance::fromText(line.subsystem, line.defaultMask,
                                    line.id ? std::string_view(line.id->id) : std::string_view(), line.text));
    message->setType(line.mask);
    message->setSuppressed(line.suppressed);
    return message;
}

void MemorySource::add(Message message) {
    const std::size_t size = size_of(message);
    std::lock_guard lock(m_mutex);
    if (m_stretches.empty() || m_stretches.back().lines || m_stretches.back().bytes > stretch_size)
        m_stretches.emplace_back();
    m_stretches.back().messages.push_back(std::move(message));
    m_stretches.back().bytes += size;
    m_bytes += size;
    shrink();
}

void MemorySource::add(const MessageLine& line) {
    const LineHead head{line.mask,        line.defaultMask, line.id, line.subsystem.size(),
                        line.text.size(), line.suppressed};
    std::lock_guard lock(m_mutex);
    char* place = reserve(sizeof head + line.subsystem.size() + line.text.size());
    std::memcpy(place, &head, sizeof head);
    place = std::copy(line.subsystem.begin(), line.subsystem.end(), place + sizeof head);
    std::copy(line.text.begin(), line.text.end(), place);
}

/// Room for a line, behind the last one. Call with the mutex held.
char* MemorySource::reserve(std::size_t size) {
    Chunk* chunk = m_stretches.empty() ? nullptr : m_stretches.back().lines.get();
    if (!chunk || chunk->capacity - chunk->used < size) {
        Stretch next;
        next.bytes = std::max(chunk_size, size);
        next.lines = std::make_shared<Chunk>(next.bytes);
        chunk = next.lines.get();
        m_bytes += next.bytes;
        m_stretches.push_back(std::move(next));
        shrink();
    }
    char* const place = chunk->bytes.get() + chunk->used;
    chunk->used += size;
    return place;
}

/// Call with the mutex held.
void MemorySource::shrink() {
    for (; m_bytes > m_limit && m_stretches.size() > 1; m_stretches.pop_front())
        m_bytes -= m_stretches.front().bytes;
}

void MemorySource::clear() {
    std::lock_guard lock(m_mutex);
    m_stretches.clear();
    m_bytes = 0;
}

void MemorySource::setLimit(std::size_t bytes) {
    std::lock_guard lock(m_mutex);
    m_limit = bytes;
    shrink();
}

std::size_t MemorySource::bytes() const {
    std::lock_guard lock(m_mutex);
    return m_bytes;
}

void MemorySource::visit(ComMsgMgrMask mask, const Visitor& visitor) const {
    struct Part {
        std::shared_ptr<const Chunk> lines;
        std::size_t used;
        std::vector<Message> messages;
    };
    std::vector<Part> parts;
    {
        std::lock_guard lock(m_mutex);
        for (const Stretch& stretch : m_stretches) {
            Part part{stretch.lines, stretch.lines ? stretch.lines->used : 0, {}};
            for (const Message& message : stretch.messages)
                if (message->getType() & mask)
                    part.messages.push_back(message);
            parts.push_back(std::move(part));
        }
    }
    for (const Part& part : parts) {
        for (const Message& message : part.messages)
            visitor(message);
        for (std::size_t at = 0; at < part.used;) {
            LineHead head;
            const char* const texts = part.lines->bytes.get() + at + sizeof head;
            std::memcpy(&head, part.lines->bytes.get() + at, sizeof head);
            at += sizeof head + head.subsystem + head.text;
            if (head.mask & mask)
                visitor(to_instance({head.mask,
                                     head.defaultMask,
                                     head.id,
                                     {texts, head.subsystem},
                                     {texts + head.subsystem, head.text},
                                     head.suppressed}));
        }
    }
}

MemorySource& session_source() {
    return *Sources::get().root;
}

ComMsgMgrSrcHandle add_source(std::shared_ptr<Source> source) {
    Sources& sources = Sources::get();
    std::lock_guard lock(sources.mutex);
    sources.added.push_back(source);
    return ComMsgMgrSrcHandle(std::move(source));
}

void forget_sources() {
    Sources& sources = Sources::get();
    std::lock_guard lock(sources.mutex);
    sources.added.clear();
}

} // namespace com_msg_mgr
