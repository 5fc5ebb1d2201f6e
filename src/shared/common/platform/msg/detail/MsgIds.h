#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

class ComMsgMgrDb;

namespace com_msg_mgr {

/// What is counted of the messages of one id. Never freed, so that a pointer to one may be kept.
struct IdRecord {
    explicit IdRecord(std::string_view name) : id(name) {}

    static constexpr std::int64_t no_limit_of_its_own = -1;

    const std::string id; ///< as it is shown, "Common 17-153"
    std::atomic<unsigned> count{0};
    std::atomic<std::int64_t> limit{no_limit_of_its_own};
    std::atomic<bool> noticed{false}; ///< the user was told that the limit is reached
    std::atomic<bool> ruled{false};   ///< rules name this id

    void reset_count() {
        count = 0;
        noticed = false;
    }
};

/// A message key, found once: its id and its words in the database (null for a message without them, or
/// without a translation). Never freed.
struct KeyRecord {
    std::string subsystem;
    std::string number;
    IdRecord* id;
    std::shared_ptr<const ComMsgMgrDb> db; ///< holds the words
    const std::string* words;
    const std::string* translated;
};

/// The record of an id, made at the first call. Any thread; without a lock when the thread asked before.
IdRecord& id_record(std::string_view id);
/// The record of an id that has been counted or limited; null for another.
IdRecord* find_id(std::string_view id);
void for_each_id(const std::function<void(IdRecord&)>& visit);

/// The record of "17-153" of "common". Any thread; without a lock when the thread asked before.
const KeyRecord& key_record(std::string_view subsystem, std::string_view number);
/// Lets key_record() look everything up in the database anew.
void forget_keys();

} // namespace com_msg_mgr
