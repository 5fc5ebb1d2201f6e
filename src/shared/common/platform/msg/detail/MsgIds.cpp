#include "platform/msg/detail/MsgIds.h"

#include <array>
#include <map>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/msg/ComMsgMgrFile.h"

namespace com_msg_mgr {

namespace {

struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

struct Tables {
    std::mutex mutex; // guards all but `generation`
    std::unordered_map<std::string, std::unique_ptr<IdRecord>, TextHash, std::equal_to<>> ids;
    std::map<std::pair<std::string, std::string>, std::unique_ptr<KeyRecord>, std::less<>> keys;
    std::vector<std::unique_ptr<KeyRecord>> retired; // some thread may still read them
    std::atomic<unsigned> generation{1};             // of `keys`

    static Tables& get() {
        static Tables& tables = *new Tables; // messages are sent up to the very end of the process
        return tables;
    }
};

/// What a thread asked for lately, by the hash of the text: no lock for messages that come often.
constexpr std::size_t slots = 64;
thread_local constinit std::array<IdRecord*, slots> recentIds{};
struct RecentKey {
    const KeyRecord* record;
    unsigned generation;
};
thread_local constinit std::array<RecentKey, slots> recentKeys{};

const std::string* text_or_null(const std::string* text, const std::string* other) {
    return text == other ? nullptr : text;
}

} // namespace

IdRecord& id_record(std::string_view id) {
    IdRecord*& recent = recentIds[TextHash()(id) % slots];
    if (recent && recent->id == id)
        return *recent;
    Tables& tables = Tables::get();
    std::lock_guard lock(tables.mutex);
    auto found = tables.ids.find(id);
    if (found == tables.ids.end())
        found = tables.ids.emplace(id, std::make_unique<IdRecord>(id)).first;
    recent = found->second.get();
    return *recent;
}

IdRecord* find_id(std::string_view id) {
    Tables& tables = Tables::get();
    std::lock_guard lock(tables.mutex);
    const auto found = tables.ids.find(id);
    return found == tables.ids.end() ? nullptr : found->second.get();
}

void for_each_id(const std::function<void(IdRecord&)>& visit) {
    Tables& tables = Tables::get();
    std::lock_guard lock(tables.mutex);
    for (const auto& [id, record] : tables.ids)
        visit(*record);
}

const KeyRecord& key_record(std::string_view subsystem, std::string_view number) {
    Tables& tables = Tables::get();
    RecentKey& recent = recentKeys[TextHash()(number) % slots];
    const unsigned generation = tables.generation.load(std::memory_order_acquire);
    if (recent.record && recent.generation == generation && recent.record->number == number &&
        recent.record->subsystem == subsystem)
        return *recent.record;

    // Outside of the lock: a fault in a message file is told by a message.
    auto db = ComMsgMgrDb::of(subsystem);
    const std::string* words = db->words(number, false);
    const std::string* translated = text_or_null(db->words(number, true), words);
    IdRecord& id = id_record(db->alias() + ' ' + std::string(number));

    std::lock_guard lock(tables.mutex);
    auto& place = tables.keys[{std::string(subsystem), std::string(number)}];
    if (!place)
        place = std::make_unique<KeyRecord>(
            KeyRecord{std::string(subsystem), std::string(number), &id, std::move(db), words, translated});
    recent = {place.get(), generation};
    return *place;
}

void forget_keys() {
    Tables& tables = Tables::get();
    std::lock_guard lock(tables.mutex);
    for (auto& [key, record] : tables.keys)
        tables.retired.push_back(std::move(record));
    tables.keys.clear();
    ++tables.generation;
}

} // namespace com_msg_mgr
