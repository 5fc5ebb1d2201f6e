#include "platform/msg/ComMsgMgrSrcHandle.h"

#include "platform/msg/detail/MsgSource.h"

namespace {

using Source = ComMsgMgrSrcHandle::Source;

struct Sources {
    const std::shared_ptr<Source> root = std::make_shared<Source>("session");
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
    auto source = std::make_shared<Source>(name);
    for (Source::Message& message : messages)
        source->add(std::move(message));
    Sources& sources = Sources::get();
    std::lock_guard lock(sources.mutex);
    sources.added.push_back(source);
    return ComMsgMgrSrcHandle(std::move(source));
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

void Source::add(Message message) {
    std::lock_guard lock(m_mutex);
    m_bytes += size_of(message);
    m_messages.push_back(std::move(message));
    for (; m_bytes > max_bytes && m_messages.size() > 1; m_messages.pop_front())
        m_bytes -= size_of(m_messages.front());
}

void Source::get(std::vector<Message>& list, ComMsgMgrMask mask) const {
    std::lock_guard lock(m_mutex);
    for (const Message& message : m_messages)
        if (message->getType() & mask)
            list.push_back(message);
}

void Source::clear() {
    std::lock_guard lock(m_mutex);
    m_messages.clear();
    m_bytes = 0;
}
