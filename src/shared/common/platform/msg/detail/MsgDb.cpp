#include "platform/msg/detail/MsgDb.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

#include "platform/env/HUTEnv.h"
#include "platform/env/HUTFile.h"
#include "platform/env/HUTPathUtils.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "platform/msg/detail/MsgDelivery.h"
#include "platform/msg/detail/MsgIds.h"
#include "platform/msg/detail/MsgSource.h"
#include "platform/msg/detail/Sqlite.h"

namespace com_msg_mgr {

namespace {

using namespace std::chrono_literals;

/// Stands in the header of each of our files, at the place that SQLite has for it.
constexpr const char* application_id = "1129729383"; // "CVmg"
constexpr int format_version = 1;
constexpr const char* is_damaged = "it is damaged or cut off";
constexpr const char* was_removed = "it was removed while it was written";

/// What a line that has no severity is called in the column of the severity.
std::string_view kind_of(ComMsgMgrMask mask) {
    static constexpr std::pair<ComMsgMgrMask, std::string_view> kinds[] = {
        {ComMsgMgr::MSGTYPE_SESSION_COMMAND, "COMMAND"}, {ComMsgMgr::MSGTYPE_USER_COMMAND, "COMMAND"},
        {ComMsgMgr::MSGTYPE_TRACED_COMMAND, "COMMAND"},  {ComMsgMgr::MSGTYPE_OUTPUT, "OUTPUT"},
        {ComMsgMgr::MSGTYPE_ERRORINFO, "ERROR STACK"},   {ComMsgMgr::MSGTYPE_HEADER, "HEADER"},
    };
    if (const std::string_view word = ComMsgMgr::msgType2Str(mask); !word.empty())
        return word;
    for (const auto& [bit, word] : kinds)
        if (mask & bit)
            return word;
    return "LINE";
}

/// A severity by the word of its column; the mask without a severity keeps its bits.
ComMsgMgrMask default_mask(ComMsgMgrMask mask, std::string_view word) {
    const ComMsgMgrMask severity = ComMsgMgr::msgStr2Type(word);
    return severity && severity != ComMsgMgr::MSGTYPE_ANY ? (mask & ~ComMsgMgr::MSGTYPE_SEVERITIES) | severity
                                                          : mask;
}

/// "2026-11-21 08:10:44.123", UTC.
class TimeText {
public:
    std::string_view of(std::chrono::system_clock::time_point time) {
        const auto ms =
            std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
        const std::time_t second = static_cast<std::time_t>(ms / 1000);
        if (second != m_second) {
            m_second = second;
            std::tm parts{};
            gmtime_r(&second, &parts);
            m_size = std::strftime(m_text, sizeof m_text, "%Y-%m-%d %H:%M:%S", &parts);
        }
        const int size =
            std::snprintf(m_text + m_size, sizeof m_text - m_size, ".%03d", static_cast<int>(ms % 1000));
        return {m_text, m_size + static_cast<std::size_t>(size)};
    }

private:
    std::time_t m_second = -1;
    char m_text[40] = {};
    std::size_t m_size = 0;
};

std::string reason_of(const SqliteError& error) {
    return error.isBusy()      ? "another program has locked it"
           : error.isForeign() ? "it is not a message database"
           : error.isDamaged() ? is_damaged
                               : error.what();
}

/// One database that is being written.
class Writer {
public:
    explicit Writer(const std::string& file);
    ~Writer() { close(); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    const std::string& path() const { return m_path; }

    /// \param command the one that has begun last, and its number among those that began
    void add(const MessageLine& message, const std::string& command, std::uint64_t commandNumber);
    /// Returns when all that was added is in the file, or cannot be written.
    void flush();
    /// Completes the file. Returns why it is not complete, empty if it is. A later call does nothing.
    std::string close();
    std::uint64_t messages() const;

private:
    /// What stands before the texts of a message in the queue.
    struct Head {
        std::chrono::system_clock::time_point time;
        ComMsgMgrMask mask, defaultMask;
        int thread;
        bool suppressed, newCommand;
        std::uint32_t id, subsystem, text, command; // sizes
    };

    /// A part of the queue: messages one behind the other.
    struct Chunk {
        std::string bytes;
        std::uint64_t messages = 0;
    };

    /// What waits is written when so much has come together, or so much time has passed.
    static constexpr std::size_t chunk_bytes = 256 << 10;
    static constexpr auto batch_time = 100ms;
    /// So many chunks at most are one transaction.
    static constexpr std::size_t batch_chunks = 16;
    /// More than this does not wait; the sender does.
    static constexpr std::size_t max_waiting = std::size_t(256) << 20;
    /// How long another program may keep the writer from a batch, at each of so many tries.
    static constexpr auto patience = 2000ms;
    static constexpr int max_tries = 5;

    void run();
    void write(std::span<const Chunk> batch);
    Chunk& chunkFor(std::size_t bytes);
    std::string_view insert(std::string_view rest);
    void fail(const std::string& reason);

    const std::string m_path;
    // Of the writer's thread, after it was started.
    std::optional<Sqlite> m_db;
    std::optional<Sqlite::Statement> m_insert;
    std::string m_command;
    TimeText m_time;

    mutable std::mutex m_mutex;             // guards the members below
    std::condition_variable m_work, m_done; // work for the thread; something has changed for the others
    std::vector<Chunk> m_waiting;
    std::vector<Chunk> m_spare;        // empty ones to be used again
    std::size_t m_unwrittenBytes = 0;  // waiting or being written
    std::uint64_t m_commandNumber = 0; // of the command that was queued last
    std::uint64_t m_added = 0;
    std::uint64_t m_written = 0;
    bool m_hurried = false; // somebody waits for the batch
    bool m_closing = false;
    std::string m_failure;

    std::thread m_thread;
};

void write_schema(const std::string& path) {
    Sqlite db(path, true);
    db.run("BEGIN");
    db.run(("PRAGMA application_id=" + std::string(application_id)).c_str());
    db.run(("PRAGMA user_version=" + std::to_string(format_version)).c_str());
    db.run("CREATE TABLE about(\n"
           "    name TEXT PRIMARY KEY,\n"
           "    value TEXT NOT NULL) WITHOUT ROWID;\n"
           "CREATE TABLE messages(\n"
           "    sequence INTEGER PRIMARY KEY,    -- from 1, in the order of sending\n"
           "    time TEXT NOT NULL,              -- UTC\n"
           "    severity TEXT NOT NULL,          -- ERROR, CRITICAL WARNING, ...; OUTPUT, COMMAND, ... for a "
           "line\n"
           "    default_severity TEXT NOT NULL,  -- before rules changed it\n"
           "    id TEXT NOT NULL,                -- empty for a line without one\n"
           "    subsystem TEXT NOT NULL,\n"
           "    text TEXT NOT NULL,              -- without severity and id\n"
           "    suppressed INTEGER NOT NULL,     -- 1 for one that was not shown\n"
           "    command TEXT NOT NULL,           -- the Tcl command during which it was sent\n"
           "    thread INTEGER NOT NULL,\n"
           "    mask INTEGER NOT NULL)           -- severity and destinations in bits");
    Sqlite::Statement about(db, "INSERT INTO about VALUES(?1,?2)");
    TimeText time;
    const std::pair<const char*, std::string> rows[] = {
        {"format", "message database"},
        {"format_version", std::to_string(format_version)},
        {"product", HUTEnv::getProductName()},
        {"product_version", HUTEnv::getProductVersion()},
        {"product_build", HUTEnv::getBuildId()},
        {"created", std::string(time.of(std::chrono::system_clock::now()))},
    };
    for (const auto& [name, value] : rows) {
        about.bind(1, name);
        about.bind(2, value);
        about.step();
        about.reset();
    }
    db.run("COMMIT");
}

/// Makes sure that nothing is lost when the file is replaced.
void require_replaceable(const std::string& path) {
    if (!HUTPathUtils::exists(path))
        return;
    if (!is_db(path))
        throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5484@%s\n", path});
    try {
        // Only the last connection of all programs can leave the mode; what a killed session left is put into
        // the file, so that nothing of it turns up in the new one.
        Sqlite old(path);
        old.run("PRAGMA journal_mode=DELETE");
    } catch (const SqliteError& error) {
        if (error.isBusy())
            throw;
        // A damaged one may go.
    }
}

Writer::Writer(const std::string& file) : m_path(file) {
    require_replaceable(m_path);
    const std::string fresh = m_path + ".new" + std::to_string(HUTEnv::getPid());
    try {
        std::remove(fresh.c_str());
        write_schema(fresh);
        if (std::rename(fresh.c_str(), m_path.c_str()) != 0)
            throw std::system_error(errno, std::generic_category());
    } catch (...) {
        std::remove(fresh.c_str());
        throw;
    }
    m_db.emplace(m_path);
    m_db->setPatience(patience);
    // Readers do not stop the writer, and a batch is one write. Where a file system does not allow for it,
    // the mode stays what it was.
    m_db->value("PRAGMA journal_mode=WAL");
    // From the first read on, other programs see that the file is in use.
    m_db->value("SELECT count(*) FROM messages");
    m_db->run("PRAGMA synchronous=NORMAL; PRAGMA wal_autocheckpoint=16000");
    m_insert.emplace(*m_db,
                     "INSERT INTO messages(time,severity,default_severity,id,subsystem,text,suppressed,"
                     "command,thread,mask) VALUES(?1,?2,?3,?4,?5,?6,?7,?8,?9,?10)");
    // Signals are for the threads that were there before.
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    m_thread = std::thread([this] { run(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void Writer::add(const MessageLine& message, const std::string& command, std::uint64_t commandNumber) {
    std::unique_lock lock(m_mutex);
    if (m_unwrittenBytes > max_waiting)
        m_done.wait(lock, [this] { return m_unwrittenBytes <= max_waiting || !m_failure.empty(); });
    if (!m_failure.empty() || m_closing)
        return;
    const bool newCommand = commandNumber != m_commandNumber;
    m_commandNumber = commandNumber;
    const std::string_view id = message.id ? std::string_view(message.id->id) : std::string_view();
    const std::string_view begun = newCommand ? std::string_view(command) : std::string_view();
    const auto size = [](std::string_view text) { return static_cast<std::uint32_t>(text.size()); };
    const Head head{std::chrono::system_clock::now(),
                    message.mask,
                    message.defaultMask,
                    thread_number(),
                    message.suppressed,
                    newCommand,
                    size(id),
                    size(message.subsystem),
                    size(message.text),
                    size(begun)};
    const std::size_t bytes =
        sizeof head + id.size() + message.subsystem.size() + message.text.size() + begun.size();
    Chunk& chunk = chunkFor(bytes);
    chunk.bytes.append(reinterpret_cast<const char*>(&head), sizeof head);
    chunk.bytes.append(id).append(message.subsystem).append(message.text).append(begun);
    ++chunk.messages;
    ++m_added;
    m_unwrittenBytes += bytes;
}

/// The last chunk, or a new one if the last one is full. Call with the mutex held.
Writer::Chunk& Writer::chunkFor(std::size_t bytes) {
    if (!m_waiting.empty() && m_waiting.back().bytes.capacity() - m_waiting.back().bytes.size() >= bytes)
        return m_waiting.back();
    if (m_waiting.size() <= 1)
        m_work.notify_one(); // something waits now, or enough of it
    if (m_spare.empty() || bytes > chunk_bytes) {
        m_waiting.emplace_back();
        m_waiting.back().bytes.reserve(std::max(chunk_bytes, bytes));
    } else {
        m_waiting.push_back(std::move(m_spare.back()));
        m_spare.pop_back();
    }
    return m_waiting.back();
}

void Writer::flush() {
    std::unique_lock lock(m_mutex);
    const std::uint64_t end = m_added;
    if (m_written < end) {
        m_hurried = true;
        m_work.notify_one();
    }
    m_done.wait(lock, [&] { return m_written >= end || !m_failure.empty(); });
}

std::string Writer::close() {
    {
        std::lock_guard lock(m_mutex);
        m_closing = true;
        m_work.notify_one();
    }
    if (m_thread.joinable())
        m_thread.join();
    m_insert.reset();
    if (m_db) {
        try {
            // One file, also for those who may not write beside it.
            m_db->run("PRAGMA wal_checkpoint(TRUNCATE); PRAGMA journal_mode=DELETE");
        } catch (const SqliteError&) {
            // Someone is reading it; the batches stand in the file beside it and are found there.
        }
        m_db.reset();
    }
    std::lock_guard lock(m_mutex);
    if (m_failure.empty() && !HUTPathUtils::exists(m_path))
        m_failure = was_removed;
    return m_failure;
}

std::uint64_t Writer::messages() const {
    std::lock_guard lock(m_mutex);
    return m_added;
}

void Writer::run() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_work.wait(lock, [this] { return !m_waiting.empty() || m_closing; });
        if (m_waiting.empty())
            return;
        m_work.wait_for(lock, batch_time, [this] { return m_waiting.size() > 1 || m_hurried || m_closing; });
        m_hurried = false;
        std::vector<Chunk> taken;
        taken.swap(m_waiting);
        for (std::span<Chunk> rest = taken; !rest.empty();) {
            const std::span<Chunk> batch = rest.first(std::min(batch_chunks, rest.size()));
            rest = rest.subspan(batch.size());
            lock.unlock();
            try {
                write(batch);
            } catch (const SqliteError& error) {
                fail(HUTPathUtils::exists(m_path) ? reason_of(error) : was_removed);
                return;
            }
            lock.lock();
            for (Chunk& chunk : batch) {
                m_written += chunk.messages;
                m_unwrittenBytes -= chunk.bytes.size();
                if (chunk.bytes.capacity() <= 2 * chunk_bytes && m_spare.size() < batch_chunks) {
                    chunk.bytes.clear();
                    m_spare.push_back({std::move(chunk.bytes), 0});
                }
                chunk = {};
            }
            m_done.notify_all();
        }
    }
}

void Writer::write(std::span<const Chunk> batch) {
    for (int tries = 1;; ++tries) {
        try {
            m_db->run("BEGIN IMMEDIATE");
            break;
        } catch (const SqliteError& error) {
            if (!error.isBusy() || tries == max_tries)
                throw;
        }
    }
    for (const Chunk& chunk : batch)
        for (std::string_view rest = chunk.bytes; !rest.empty();)
            rest = insert(rest);
    m_db->run("COMMIT");
}

std::string_view Writer::insert(std::string_view rest) {
    Head head;
    std::memcpy(&head, rest.data(), sizeof head);
    rest.remove_prefix(sizeof head);
    const auto take = [&rest](std::size_t size) {
        const std::string_view text = rest.substr(0, size);
        rest.remove_prefix(size);
        return text;
    };
    m_insert->bind(1, m_time.of(head.time));
    m_insert->bind(2, kind_of(head.mask));
    m_insert->bind(3, kind_of(head.defaultMask));
    m_insert->bind(4, take(head.id));
    m_insert->bind(5, take(head.subsystem));
    m_insert->bind(6, take(head.text));
    m_insert->bind(7, head.suppressed);
    if (const std::string_view command = take(head.command); head.newCommand)
        m_command = command;
    m_insert->bind(8, m_command);
    m_insert->bind(9, head.thread);
    m_insert->bind(10, std::int64_t(head.mask));
    m_insert->step();
    m_insert->reset();
    return rest;
}

void Writer::fail(const std::string& reason) {
    {
        std::lock_guard lock(m_mutex);
        m_failure = reason;
        m_waiting = {};
    }
    m_done.notify_all();
    ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-5482@%s%s\n", m_path, reason);
}

struct Dbs {
    std::atomic<bool> any{false};
    std::mutex mutex; // guards the members below
    std::map<std::string, std::shared_ptr<Writer>> writers;
    std::string command;
    std::uint64_t commandNumber = 1;
    std::map<std::string, std::weak_ptr<ComMsgMgrSrcHandle::Source>> loaded;

    static Dbs& get() {
        static Dbs& dbs = *new Dbs; // messages are sent up to the very end of the process
        return dbs;
    }

    std::shared_ptr<Writer> find(const std::string& path) {
        std::lock_guard lock(mutex);
        const auto found = writers.find(path);
        return found == writers.end() ? nullptr : found->second;
    }
};

/// The messages of a file. It is opened for each query only, so that whoever writes it can complete it.
class DbSource : public ComMsgMgrSrcHandle::Source {
public:
    DbSource(std::string sourceName, std::string path)
        : Source(std::move(sourceName)), m_path(std::move(path)) {}

    /// Throws HEXError if the file cannot be read here.
    void check() const {
        reading([](Sqlite&) {});
    }
    void visit(ComMsgMgrMask mask, const Visitor& visitor) const override {
        if (const auto writer = Dbs::get().find(m_path))
            writer->flush();
        reading([&](Sqlite& db) {
            Sqlite::Statement rows(db,
                                   "SELECT mask,default_severity,id,subsystem,text,suppressed FROM messages "
                                   "WHERE mask & ?1 ORDER BY sequence");
            rows.bind(1, std::int64_t(mask));
            while (rows.step())
                visitor(message_of(rows));
        });
    }

private:
    [[noreturn]] void fail(const std::string& reason) const {
        throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5485@%s%s\n", m_path, reason});
    }

    template <class Work>
    void reading(const Work& work) const {
        if (!HUTPathUtils::isRegularFile(m_path))
            fail(HUTPathUtils::exists(m_path) ? "it is not a message database" : "it does not exist");
        try {
            Sqlite db(m_path);
            if (db.value("PRAGMA application_id") != application_id)
                fail("it is not a message database");
            if (const std::string version = db.value("PRAGMA user_version");
                version != std::to_string(format_version))
                fail("its format has the version " + version + ", and this program reads the version " +
                     std::to_string(format_version));
            // Of a page that is not there completely, SQLite takes the rest to be zero.
            std::error_code ignored;
            if (std::filesystem::file_size(m_path, ignored) % std::stoul(db.value("PRAGMA page_size")) != 0)
                fail(is_damaged);
            work(db);
        } catch (const SqliteError& error) {
            fail(reason_of(error));
        }
    }

    static Message message_of(const Sqlite::Statement& row) {
        const auto mask = static_cast<ComMsgMgrMask>(row.number(0));
        auto message = std::make_shared<ComMsgMgrInstance>(ComMsgMgrInstance::fromText(
            row.text(3), default_mask(mask, row.text(1)), row.text(2), row.text(4)));
        message->setType(mask);
        message->setSuppressed(row.number(5) != 0);
        return message;
    }

    const std::string m_path;
};

} // namespace

bool is_any_db_open() {
    return Dbs::get().any.load(std::memory_order_relaxed);
}

void add_to_dbs(const MessageLine& message) {
    Dbs& dbs = Dbs::get();
    std::lock_guard lock(dbs.mutex);
    for (const auto& [path, writer] : dbs.writers)
        writer->add(message, dbs.command, dbs.commandNumber);
}

void note_db_command(std::string_view command) {
    constexpr std::size_t longest = 512; // it stands in the row of each message
    std::size_t size = std::min(command.size(), longest);
    while (size < command.size() && size > 0 && (command[size] & 0xC0) == 0x80)
        --size; // no character is cut
    Dbs& dbs = Dbs::get();
    std::lock_guard lock(dbs.mutex);
    dbs.command = command.substr(0, size);
    ++dbs.commandNumber;
}

void create_db(const std::string& file) {
    static std::mutex& creation = *new std::mutex; // two threads may want the same file
    std::lock_guard one(creation);
    const std::string path = HUTFile::getCanonicalName(file);
    Dbs& dbs = Dbs::get();
    if (file.empty())
        throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5480@%s%s\n", file, "it needs a name"});
    if (dbs.find(path))
        throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5483@%s\n", file});
    std::shared_ptr<Writer> writer;
    try {
        writer = std::make_shared<Writer>(path);
    } catch (const SqliteError& error) {
        throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5480@%s%s\n", file, reason_of(error)});
    } catch (const std::system_error& error) {
        throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5480@%s%s\n", file, error.code().message()});
    }
    static const int atExit = std::atexit(close_all_dbs); // a host may end without having told the manager
    static_cast<void>(atExit);
    std::lock_guard lock(dbs.mutex);
    dbs.writers.emplace(path, std::move(writer));
    dbs.any = true;
}

void close_db(const std::string& file) {
    const std::string path = HUTFile::getCanonicalName(file);
    Dbs& dbs = Dbs::get();
    std::shared_ptr<Writer> writer;
    {
        std::lock_guard lock(dbs.mutex);
        if (const auto found = dbs.writers.find(path); found != dbs.writers.end()) {
            writer = std::move(found->second);
            dbs.writers.erase(found);
            dbs.any = !dbs.writers.empty();
        }
    }
    if (!writer)
        throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5481@%s\n", file});
    if (const std::string failure = writer->close(); !failure.empty())
        throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5486@%s%s\n", file, failure});
}

void close_all_dbs() {
    Dbs& dbs = Dbs::get();
    std::map<std::string, std::shared_ptr<Writer>> writers;
    {
        std::lock_guard lock(dbs.mutex);
        writers.swap(dbs.writers);
        dbs.any = false;
    }
    for (const auto& [path, writer] : writers)
        writer->close(); // a failure has been told when it happened
}

std::vector<OpenDb> open_dbs() {
    Dbs& dbs = Dbs::get();
    std::lock_guard lock(dbs.mutex);
    std::vector<OpenDb> list;
    for (const auto& [path, writer] : dbs.writers)
        list.push_back({path, writer->messages()});
    return list;
}

bool is_db(const std::string& file) {
    const std::string path = HUTFile::getCanonicalName(file);
    if (Dbs::get().find(path))
        return true;
    if (!HUTPathUtils::isRegularFile(path))
        return false;
    try {
        Sqlite db(path);
        db.setPatience(0ms);
        return db.value("PRAGMA application_id") == application_id;
    } catch (const SqliteError& error) {
        return error.isDamaged() || error.isBusy();
    }
}

ComMsgMgrSrcHandle load_db(const std::string& file, const std::string& name) {
    const std::string path = HUTFile::getCanonicalName(file);
    auto source = std::make_shared<DbSource>(name.empty() ? file : name, path);
    source->check();
    Dbs& dbs = Dbs::get();
    std::lock_guard lock(dbs.mutex);
    std::weak_ptr<ComMsgMgrSrcHandle::Source>& known = dbs.loaded[path];
    if (auto before = known.lock())
        return ComMsgMgrSrcHandle(std::move(before));
    known = source;
    return add_source(std::move(source));
}

} // namespace com_msg_mgr
