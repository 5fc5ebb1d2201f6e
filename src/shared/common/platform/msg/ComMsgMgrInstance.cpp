#include "platform/msg/ComMsgMgrInstance.h"

#include <stdexcept>

#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/ComMsgMgrFile.h"

namespace {

using com_msg_mgr::ArgView;

/// "17-153" of "@17-153@%s".
std::string_view number_of(std::string_view key) {
    return key.substr(1, key.find('@', 1) - 1);
}

std::vector<ArgView> views_of(const std::vector<ComMsgMgrArg>& args) {
    std::vector<ArgView> views;
    views.reserve(args.size());
    for (const ComMsgMgrArg& arg : args)
        views.push_back(std::visit([](const auto& value) { return com_msg_mgr::to_view(value); }, arg));
    return views;
}

std::vector<ComMsgMgrArg> owned(std::vector<std::string> args) {
    return {std::make_move_iterator(args.begin()), std::make_move_iterator(args.end())};
}

} // namespace

ComMsgMgrInstance::ComMsgMgrInstance(std::string_view subsystem, ComMsgMgrMask mask, std::string_view key,
                                     std::vector<ComMsgMgrArg> args)
    : m_subsystem(subsystem), m_mask(mask), m_defaultMask(mask), m_number(number_of(key)),
      m_args(std::move(args)) {}

ComMsgMgrInstance ComMsgMgrInstance::fromKey(std::string_view subsystem, ComMsgMgrMask mask,
                                             std::string_view key, std::vector<ComMsgMgrArg> args) {
    if (!com_msg_mgr::is_key(key))
        throw std::invalid_argument("A message key looks like @17-153@%s, not like '" + std::string(key) +
                                    "'.");
    return ComMsgMgrInstance(subsystem, mask, key, std::move(args));
}

ComMsgMgrInstance ComMsgMgrInstance::fromText(std::string_view subsystem, ComMsgMgrMask mask,
                                              std::string_view id, std::string_view text) {
    ComMsgMgrInstance message(subsystem, mask, std::string_view("@@"), std::vector<ComMsgMgrArg>());
    message.m_ownWords = true;
    message.m_number = id;
    message.m_words = text;
    if (message.m_words.ends_with('\n'))
        message.m_words.pop_back();
    return message;
}

ComMsgMgrInstance ComMsgMgrInstance::createInstance(std::string_view subsystem, ComMsgMgrMask mask,
                                                    std::string_view format, std::vector<std::string> args) {
    ComMsgMgrInstance message = fromText(subsystem, mask, {}, format);
    message.m_args = owned(std::move(args));
    return message;
}

ComMsgMgrInstance::ComMsgMgrInstance(std::string_view subsystem, int number, bool, ComMsgMgrMask mask,
                                     std::string_view format, std::vector<std::string> args)
    : ComMsgMgrInstance(createInstance(subsystem, mask, format, std::move(args))) {
    const auto db = ComMsgMgrDb::of(subsystem);
    m_number = db->alias() + ' ';
    if (db->subsystemNumber() > 0)
        m_number += std::to_string(db->subsystemNumber()) + '-';
    m_number += std::to_string(number);
}

ComMsgMgrInstance::ComMsgMgrInstance(std::string_view subsystem, ComMsgMgrMask mask,
                                     const std::pair<std::string, unsigned>& gid, std::string_view format,
                                     std::vector<std::string> args)
    : ComMsgMgrInstance(createInstance(subsystem, mask, format, std::move(args))) {
    m_number = ComMsgMgrDb::of(subsystem)->alias() + ' ' + gid.first + '-' + std::to_string(gid.second);
}

ComMsgMgrInstance::Extras& ComMsgMgrInstance::extras() {
    auto own = m_extras ? std::make_shared<Extras>(*m_extras) : std::make_shared<Extras>();
    Extras& result = *own;
    m_extras = std::move(own);
    return result;
}

void ComMsgMgrInstance::attachMetaType(std::size_t argument, MetaType type, const std::string& value,
                                       const std::string& context) {
    extras().metaTypes.push_back({argument, type, value, context});
}

const std::vector<ComMsgMgrInstance::Meta>& ComMsgMgrInstance::metaTypes() const {
    static const auto& nothing = *new std::vector<Meta>;
    return m_extras ? m_extras->metaTypes : nothing;
}

void ComMsgMgrInstance::setDescription(const std::string& text) {
    extras().description = text;
}

void ComMsgMgrInstance::setResolution(const std::string& text) {
    extras().resolution = text;
}

std::string ComMsgMgrInstance::getDescription() const {
    if (m_extras && !m_extras->description.empty())
        return m_extras->description;
    const auto db = ComMsgMgrDb::of(m_subsystem);
    const ComMsgMgrFile::Entry* entry = db->find(number());
    return entry ? entry->description : std::string();
}

std::string ComMsgMgrInstance::getResolution() const {
    if (m_extras && !m_extras->resolution.empty())
        return m_extras->resolution;
    const auto db = ComMsgMgrDb::of(m_subsystem);
    const ComMsgMgrFile::Entry* entry = db->find(number());
    return entry ? entry->resolution : std::string();
}

void ComMsgMgrInstance::setDisplayInModes(OperatingMode modes) {
    extras().displayInModes = modes;
}

ComMsgMgrInstance::OperatingMode ComMsgMgrInstance::displayInModes() const {
    return m_extras ? m_extras->displayInModes : -1;
}

bool ComMsgMgrInstance::isSuppressed() const {
    return m_extras && m_extras->suppressed;
}

void ComMsgMgrInstance::setSuppressed(bool suppressed) {
    if (suppressed != isSuppressed())
        extras().suppressed = suppressed;
}

std::string ComMsgMgrInstance::id() const {
    return m_ownWords ? m_number : ComMsgMgrDb::of(m_subsystem)->alias() + ' ' + m_number;
}

void ComMsgMgrInstance::appendText(std::string& out) const {
    const std::vector<ArgView> args = views_of(m_args);
    if (m_ownWords) {
        com_msg_mgr::append_given(out, m_words, args);
        return;
    }
    const auto db = ComMsgMgrDb::of(m_subsystem);
    if (const std::string* words = db->words(m_number, ComMsgMgr::isMsgXlationOn()))
        com_msg_mgr::append_words(out, *words, args);
    else
        com_msg_mgr::append_missing(out, args);
}

std::string ComMsgMgrInstance::text() const {
    std::string out;
    appendText(out);
    return out;
}

std::string ComMsgMgrInstance::line() const {
    std::string out;
    ComMsgMgr::appendHead(out, m_mask, id());
    appendText(out);
    return out;
}

std::size_t ComMsgMgrInstance::bytes() const {
    std::size_t sum = m_words.size() + m_args.size() * sizeof(ComMsgMgrArg);
    for (const ComMsgMgrArg& arg : m_args)
        if (const auto* text = std::get_if<std::string>(&arg))
            sum += text->size();
    return sum;
}
