#include "support.h"

#include <climits>
#include <cstdio>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "platform/msg/ComMsgMgrThreadIface.h"
#include "platform/msg/HEX.h"
#include "platform/msg/detail/Sqlite.h"

namespace {

using M = ComMsgMgr;

/// Another connection to a database, as of another program.
class Reader {
public:
    explicit Reader(const std::string& path, bool create = false) : m_db(path, create) {}

    /// The rows, columns separated by "|".
    std::vector<std::string> rows(const std::string& sql) {
        std::vector<std::string> result;
        com_msg_mgr::Sqlite::Statement statement(m_db, sql.c_str());
        while (statement.step()) {
            std::string row;
            for (int i = 0; i < statement.columns(); ++i)
                row.append(i ? "|" : "").append(statement.text(i));
            result.push_back(row);
        }
        return result;
    }
    void run(const std::string& sql) { m_db.run(sql.c_str()); }

private:
    com_msg_mgr::Sqlite m_db;
};

class ComMsgMgrDatabases : public MsgTest {
protected:
    ~ComMsgMgrDatabases() override { M::uninit(); }

    std::string path(const std::string& name) const { return m_dir.path(name); }
    const TempDir& dir() const { return m_dir; }

    static void info(const std::string& text) { M::sendMsgById("A", 1, M::MSGTYPE_INFO, text); }

    /// A complete database with one message.
    std::string made(const std::string& name) const {
        M::createMsgDb(path(name));
        info("kept");
        M::closeMsgDb(path(name));
        return path(name);
    }
    static std::vector<std::string> lines_in(const std::string& file, M::MsgMask mask = M::MSGTYPE_ANY) {
        std::vector<std::string> lines;
        M::forEachMessage(M::loadMsgSrc(file, ""), mask,
                          [&lines](const auto& message) { lines.push_back(message->getMessage()); });
        return lines;
    }
    template <class Work>
    static std::string reason(const Work& work) {
        try {
            work();
        } catch (const HEXError& error) {
            return error.what();
        }
        return "nothing thrown";
    }
    static std::string load_reason(const std::string& file) {
        return reason([&file] { lines_in(file); });
    }

private:
    const TempDir m_dir;
};

TEST_F(ComMsgMgrDatabases, aDatabaseHasEachMessageInColumnsThatExplainThemselves) {
    info("before");
    M::createMsgDb(path("a.db"));
    M::noteCommand("do something");
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-2@%s\n", "x|y");
    M::noteCommand("do more");
    M::sendMsgString("common", M::MSGTYPE_OUTPUT, "line\n");
    M::sendMsgString("common", M::MSGTYPE_WARNING, "WARNING: plain");
    M::closeMsgDb(path("a.db"));
    info("behind");
    Reader db(path("a.db"));
    const std::string thread = std::to_string(ComMsgMgrThreadIface::getMyThreadId());
    EXPECT_EQ(db.rows("SELECT sequence,severity,default_severity,id,subsystem,text,suppressed,command,thread "
                      "FROM messages"),
              (std::vector<std::string>{
                  "1|ERROR|ERROR|Trial 90-2|trial|One 'x|y'.|0|do something|" + thread,
                  "2|OUTPUT|OUTPUT||common|line|0|do more|" + thread,
                  "3|WARNING|WARNING||common|plain|0|do more|" + thread,
              }));
    for (const std::string& time : db.rows("SELECT time FROM messages"))
        EXPECT_THAT(time, testing::MatchesRegex("20..-..-.. ..:..:..[.]..."));
    EXPECT_EQ(db.rows("SELECT value FROM about WHERE name IN ('format','format_version','product') "
                      "ORDER BY name"),
              (std::vector<std::string>{"message database", "1", "Corvane"}));
    char host[256] = {};
    ASSERT_EQ(::gethostname(host, sizeof host - 1), 0);
    EXPECT_EQ(db.rows("SELECT name FROM about WHERE value LIKE '%" + std::string(host) + "%'"),
              std::vector<std::string>());
    EXPECT_FALSE(std::filesystem::exists(path("a.db-wal")));
}

TEST_F(ComMsgMgrDatabases, whatWasWrittenIsReadBackAsItWasShown) {
    const std::string odd("a\0\xff %s\ttab\nsecond line", 22);
    M::createMsgDb(path("a.db"));
    info(odd);
    auto hidden = trial(M::MSGTYPE_ERROR, "@90-2@%s", {std::string("hidden")});
    hidden.setDisplayInModes(M::MODE_OOC);
    M::sendMessage(hidden);
    M::sendMsgString("common", M::MSGTYPE_OUTPUT, "a\nb\n");
    M::closeMsgDb(path("a.db"));
    std::vector<std::shared_ptr<const ComMsgMgrInstance>> list;
    M::getMessages(list, M::loadMsgSrc(path("a.db"), "name"), M::MSGTYPE_ANY);
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0]->getMessage(), "INFO: [A-1] " + odd + '\n');
    EXPECT_FALSE(list[0]->isSuppressed());
    EXPECT_EQ(list[1]->getMessage(), "ERROR: [Trial 90-2] One 'hidden'.\n");
    EXPECT_TRUE(list[1]->isSuppressed());
    EXPECT_EQ(list[1]->subsystem(), "trial");
    EXPECT_EQ(list[1]->getDefaultSeverity(), M::MSGTYPE_ERROR);
    EXPECT_EQ(list[2]->getMessage(), "a\nb\n");
    EXPECT_EQ(lines_in(path("a.db"), M::MSGTYPE_INFO).size(), 1u);
    EXPECT_EQ(lines_in(path("a.db"), 0).size(), 0u);
}

TEST_F(ComMsgMgrDatabases, aSeverityThatWasChangedKeepsTheOneBefore) {
    made("a.db");
    Reader(path("a.db")).run("UPDATE messages SET default_severity='ERROR'");
    M::forEachMessage(M::loadMsgSrc(path("a.db"), ""), M::MSGTYPE_ANY, [](const auto& message) {
        EXPECT_EQ(message->getType(), M::MSGTYPE_INFO);
        EXPECT_EQ(message->getDefaultSeverity(), M::MSGTYPE_ERROR);
    });
}

TEST_F(ComMsgMgrDatabases, anOpenDatabaseIsBroughtUpToDateBeforeItIsRead) {
    M::createMsgDb(path("a.db"));
    const ComMsgMgrSrcHandle source = M::loadMsgSrc(path("a.db"), "");
    for (int i = 1; i <= 3; ++i) {
        info("one more");
        EXPECT_EQ(lines_in(path("a.db")).size(), std::size_t(i));
    }
    EXPECT_EQ(M::loadMsgSrc(path("a.db"), ""), source);
    std::vector<ComMsgMgrSrcHandle> handles;
    M::getRootMsgSrcHandle().getMsgMgrHandles(handles);
    ASSERT_EQ(handles.size(), 2u);
    EXPECT_EQ(handles[1].name(), path("a.db"));
}

TEST_F(ComMsgMgrDatabases, anotherProgramReadsWhileItIsWritten) {
    M::createMsgDb(path("a.db"));
    info("one");
    lines_in(path("a.db"));
    Reader other(path("a.db"));
    other.run("BEGIN");
    EXPECT_EQ(other.rows("SELECT count(*) FROM messages"), std::vector<std::string>{"1"});
    info("two");
    EXPECT_EQ(lines_in(path("a.db")).size(), 2u);
    EXPECT_EQ(other.rows("SELECT count(*) FROM messages"), std::vector<std::string>{"1"});
    M::closeMsgDb(path("a.db"));
    other.run("COMMIT");
    EXPECT_EQ(other.rows("SELECT count(*) FROM messages"), std::vector<std::string>{"2"});
}

TEST_F(ComMsgMgrDatabases, severalDatabasesMayBeOpenAndEachHasWhatWasSentMeanwhile) {
    M::createMsgDb(path("a.db"));
    info("one");
    M::createMsgDb(path("b.db"));
    info("two");
    M::closeMsgDb(path("a.db"));
    info("three");
    M::closeMsgDb(path("b.db"));
    EXPECT_EQ(lines_in(path("a.db")), (std::vector<std::string>{"INFO: [A-1] one\n", "INFO: [A-1] two\n"}));
    EXPECT_EQ(lines_in(path("b.db")), (std::vector<std::string>{"INFO: [A-1] two\n", "INFO: [A-1] three\n"}));
}

TEST_F(ComMsgMgrDatabases, messagesOfManyThreadsAllArriveEachThreadsInOrder) {
    constexpr int threads = 8, each = 5000;
    M::setMsgLimit(UINT_MAX, "A-1");
    M::createMsgDb(path("a.db"));
    std::vector<std::thread> running;
    for (int t = 0; t < threads; ++t)
        running.emplace_back([t] {
            for (int i = 0; i < each; ++i)
                info(std::to_string(t) + ' ' + std::to_string(i));
        });
    for (std::thread& thread : running)
        thread.join();
    M::closeMsgDb(path("a.db"));
    std::vector<int> next(threads, 0);
    for (const std::string& line : lines_in(path("a.db"))) {
        int t = 0, i = 0;
        ASSERT_EQ(std::sscanf(line.c_str(), "INFO: [A-1] %d %d", &t, &i), 2);
        EXPECT_EQ(i, next[static_cast<std::size_t>(t)]++);
    }
    EXPECT_EQ(next, std::vector<int>(threads, each));
    EXPECT_EQ(Reader(path("a.db")).rows("SELECT count(DISTINCT thread), max(sequence) FROM messages"),
              std::vector<std::string>{"8|40000"});
}

TEST_F(ComMsgMgrDatabases, openingAndClosingWhileOthersSendLosesNoWholeness) {
    std::atomic<bool> done{false};
    M::setMsgLimit(UINT_MAX, "A-1");
    std::thread sender([&done] {
        while (!done)
            info("busy");
    });
    for (int i = 0; i < 20; ++i) {
        M::createMsgDb(path("a.db"));
        M::noteCommand("round " + std::to_string(i));
        M::closeMsgDb(path("a.db"));
        lines_in(path("a.db"));
    }
    done = true;
    sender.join();
}

TEST_F(ComMsgMgrDatabases, theEndOfTheSessionCompletesThem) {
    M::createMsgDb(path("a.db"));
    info("last");
    M::uninit();
    EXPECT_EQ(Reader(path("a.db")).rows("SELECT text FROM messages"), std::vector<std::string>{"last"});
    EXPECT_FALSE(std::filesystem::exists(path("a.db-wal")));
}

TEST_F(ComMsgMgrDatabases, onlyAMessageDatabaseIsReplaced) {
    made("a.db");
    M::createMsgDb(path("a.db"));
    M::closeMsgDb(path("a.db"));
    EXPECT_EQ(lines_in(path("a.db")).size(), 0u);
    write_file(path("text"), "my text\n");
    std::filesystem::create_directory(path("directory"));
    for (const char* name : {"text", "directory"})
        EXPECT_EQ(reason([&] { M::createMsgDb(path(name)); }), "ERROR: [Common 17-5484] The file '" +
                                                                   path(name) +
                                                                   "' exists and is not a message database.");
    EXPECT_EQ(read_file(path("text")), "my text\n");
}

TEST_F(ComMsgMgrDatabases, aDatabaseOfAnotherProgramIsLeftAlone) {
    Reader(path("other.db"), true).run("CREATE TABLE messages(text); INSERT INTO messages VALUES('mine')");
    EXPECT_FALSE(M::isMsgDb(path("other.db")));
    EXPECT_EQ(reason([&] { M::createMsgDb(path("other.db")); }),
              "ERROR: [Common 17-5484] The file '" + path("other.db") +
                  "' exists and is not a message database.");
    EXPECT_EQ(load_reason(path("other.db")), "ERROR: [Common 17-5485] The message database '" +
                                                 path("other.db") +
                                                 "' cannot be read: it is not a message database.");
    EXPECT_EQ(Reader(path("other.db")).rows("SELECT text FROM messages"), std::vector<std::string>{"mine"});
}

TEST_F(ComMsgMgrDatabases, aFileThatCannotBeMadeIsToldWithItsReason) {
    EXPECT_EQ(reason([&] { M::createMsgDb(path("no/such/a.db")); }),
              "ERROR: [Common 17-5480] The message database '" + path("no/such/a.db") +
                  "' cannot be created: unable to open database file.");
    EXPECT_EQ(reason([] { M::createMsgDb(""); }),
              "ERROR: [Common 17-5480] The message database '' cannot be created: it needs a name.");
    EXPECT_TRUE(std::filesystem::is_empty(dir().root()));
}

TEST_F(ComMsgMgrDatabases, whatIsOpenCannotBeMadeAgainAndWhatIsNotCannotBeClosed) {
    M::createMsgDb(path("a.db"));
    EXPECT_EQ(reason([&] { M::createMsgDb(dir().root().string() + "/./a.db"); }),
              "ERROR: [Common 17-5483] The message database '" + dir().root().string() +
                  "/./a.db' is open already.");
    EXPECT_EQ(reason([&] { M::closeMsgDb(path("b.db")); }),
              "ERROR: [Common 17-5481] No message database '" + path("b.db") + "' is open.");
    M::closeMsgDb(dir().root().string() + "/./a.db");
    EXPECT_EQ(reason([&] { M::closeMsgDb(path("a.db")); }),
              "ERROR: [Common 17-5481] No message database '" + path("a.db") + "' is open.");
}

TEST_F(ComMsgMgrDatabases, aFileThatIsNoneIsToldApart) {
    write_file(path("empty"), "");
    write_file(path("text"), std::string(10'000, 'x'));
    for (const char* name : {"empty", "text", "nosuch", "."})
        EXPECT_FALSE(M::isMsgDb(path(name))) << name;
    for (const char* name : {"empty", "text"})
        EXPECT_EQ(load_reason(path(name)), "ERROR: [Common 17-5485] The message database '" + path(name) +
                                               "' cannot be read: it is not a message database.");
    EXPECT_EQ(load_reason(path("nosuch")), "ERROR: [Common 17-5485] The message database '" + path("nosuch") +
                                               "' cannot be read: it does not exist.");
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(M::isMsgDb(path("pipe")));
    EXPECT_EQ(load_reason(path("pipe")), "ERROR: [Common 17-5485] The message database '" + path("pipe") +
                                             "' cannot be read: it is not a message database.");
}

TEST_F(ComMsgMgrDatabases, aFileThatWasCutOffAtAnyPlaceIsToldAndReadingItIsNoCrash) {
    M::setMsgLimit(UINT_MAX, "A-1");
    M::createMsgDb(path("a.db"));
    for (int i = 0; i < 1000; ++i)
        info("message " + std::to_string(i));
    M::closeMsgDb(path("a.db"));
    const std::string whole = read_file(path("a.db"));
    for (std::size_t size = 1; size < whole.size(); size += 997) {
        write_file(path("cut.db"), whole.substr(0, size));
        EXPECT_THAT(load_reason(path("cut.db")),
                    testing::AnyOf(testing::HasSubstr("it is damaged or cut off."),
                                   testing::HasSubstr("it is not a message database.")))
            << size;
    }
}

TEST_F(ComMsgMgrDatabases, aDamagedFileIsToldAndReadingItIsNoCrash) {
    M::setMsgLimit(UINT_MAX, "A-1");
    M::createMsgDb(path("a.db"));
    for (int i = 0; i < 1000; ++i)
        info("message " + std::to_string(i));
    M::closeMsgDb(path("a.db"));
    const std::string whole = read_file(path("a.db"));
    unsigned random = 1;
    for (int round = 0; round < 200; ++round) {
        std::string damaged = whole;
        for (int i = 0; i < 50; ++i) {
            random = random * 1664525u + 1013904223u;
            damaged[100 + random % (damaged.size() - 100)] = static_cast<char>(random >> 24);
        }
        write_file(path("damaged.db"), damaged);
        load_reason(path("damaged.db")); // whatever it says
    }
}

TEST_F(ComMsgMgrDatabases, aFileOfAnotherVersionIsToldWithBothVersions) {
    made("a.db");
    Reader(path("a.db")).run("PRAGMA user_version=7");
    EXPECT_TRUE(M::isMsgDb(path("a.db")));
    EXPECT_EQ(load_reason(path("a.db")),
              "ERROR: [Common 17-5485] The message database '" + path("a.db") +
                  "' cannot be read: its format has the version 7, and this program reads the version 1.");
}

TEST_F(ComMsgMgrDatabases, aFileWithoutItsTablesIsTold) {
    made("a.db");
    Reader(path("a.db")).run("DROP TABLE messages");
    EXPECT_THAT(load_reason(path("a.db")), testing::HasSubstr("' cannot be read: no such table: messages."));
}

TEST_F(ComMsgMgrDatabases, aFileThatAnotherProgramHasLockedIsTold) {
    made("a.db");
    Reader other(path("a.db"));
    other.run("PRAGMA locking_mode=EXCLUSIVE");
    other.run("BEGIN EXCLUSIVE");
    EXPECT_TRUE(M::isMsgDb(path("a.db")));
    EXPECT_EQ(load_reason(path("a.db")), "ERROR: [Common 17-5485] The message database '" + path("a.db") +
                                             "' cannot be read: another program has locked it.");
    EXPECT_EQ(reason([&] { M::createMsgDb(path("a.db")); }),
              "ERROR: [Common 17-5480] The message database '" + path("a.db") +
                  "' cannot be created: another program has locked it.");
    other.run("COMMIT");
}

TEST_F(ComMsgMgrDatabases, aDatabaseThatAnotherSessionWritesIsNotReplaced) {
    made("a.db");
    Reader other(path("a.db"));
    EXPECT_EQ(other.rows("PRAGMA journal_mode=WAL"), std::vector<std::string>{"wal"});
    EXPECT_EQ(other.rows("SELECT text FROM messages"), std::vector<std::string>{"kept"});
    EXPECT_EQ(reason([&] { M::createMsgDb(path("a.db")); }),
              "ERROR: [Common 17-5480] The message database '" + path("a.db") +
                  "' cannot be created: another program has locked it.");
    EXPECT_EQ(other.rows("SELECT text FROM messages"), std::vector<std::string>{"kept"});
}

TEST_F(ComMsgMgrDatabases, aDatabaseThatCannotBeWrittenAnyMoreIsToldOnceAndTheSessionGoesOn) {
    M::setMsgLimit(UINT_MAX, "A-1");
    M::createMsgDb(path("a.db"));
    info("one");
    lines_in(path("a.db"));
    Reader(path("a.db")).run("DROP TABLE messages");
    info("two");
    const std::string failure = reason([&] { M::closeMsgDb(path("a.db")); });
    EXPECT_THAT(failure, testing::HasSubstr("17-5486] The message database '" + path("a.db") +
                                            "' does not have all messages: no such table: messages."));
    EXPECT_THAT(console->all(), testing::HasSubstr("WARNING: [Common 17-5482] The message database '" +
                                                   path("a.db") + "' is not written any more: "));
    info("three");
    EXPECT_THAT(console->texts().back(), "INFO: [A-1] three\n");
}

TEST_F(ComMsgMgrDatabases, aDatabaseThatWasRemovedIsToldWhenItIsClosed) {
    M::createMsgDb(path("a.db"));
    std::filesystem::remove(path("a.db"));
    info("one");
    EXPECT_EQ(reason([&] { M::closeMsgDb(path("a.db")); }),
              "ERROR: [Common 17-5486] The message database '" + path("a.db") +
                  "' does not have all messages: it was removed while it was written.");
}

TEST_F(ComMsgMgrDatabases, aNameInAnyScriptIsAName) {
    const std::string name = "\xc3\xa4 b's \xe4\xb8\xad?#%41.db";
    made(name);
    EXPECT_EQ(lines_in(path(name)).size(), 1u);
}

TEST_F(ComMsgMgrDatabases, statisticsCountTheMessagesOfEachSource) {
    M::init(M::MSGCACHE_ON, "");
    info("one");
    M::sendMsgString("common", M::MSGTYPE_OUTPUT, "line\n");
    made("a.db");
    M::loadMsgSrc(path("a.db"), "loaded");
    EXPECT_EQ(
        M::getSrcHandleStatistics(UINT_MAX, M::MSGTYPE_ANY, false),
        "0 session: ERROR 0, CRITICAL WARNING 0, WARNING 0, INFO 2, STATUS 0, ADVISORY 0, other lines 1\n"
        "1 loaded: ERROR 0, CRITICAL WARNING 0, WARNING 0, INFO 1, STATUS 0, ADVISORY 0, other lines 0");
    EXPECT_EQ(
        M::getSrcHandleStatistics(1, M::MSGTYPE_ERROR, false),
        "1 loaded: ERROR 0, CRITICAL WARNING 0, WARNING 0, INFO 0, STATUS 0, ADVISORY 0, other lines 0");
    console->clear();
    log->clear();
    M::getSrcHandleStatistics(1, M::MSGTYPE_ANY, true);
    EXPECT_EQ(console->all(), "INFO: [A-1] kept\n");
    EXPECT_EQ(log->all(), "");
    EXPECT_EQ(M::getSrcHandleStatistics(9, M::MSGTYPE_ANY, false), "");
    M::createMsgDb(path("b.db"));
    M::showStatistics();
    EXPECT_THAT(console->all(), testing::HasSubstr("    INFO: 2\n"));
    EXPECT_THAT(console->all(), testing::HasSubstr("    A-1: 2\n"));
    EXPECT_THAT(console->all(), testing::HasSubstr("    " + path("b.db") + ": 0\n"));
}

TEST_F(ComMsgMgrDatabases, ofVeryManyMessagesTheLatestAreKept) {
    M::init(M::MSGCACHE_LATEST, "");
    M::setMsgLimit(UINT_MAX, "A-1");
    const std::string big(1 << 20, 'x');
    for (int i = 0; i < 100; ++i)
        info(std::to_string(i) + big);
    const auto kept = M::getMessages(M::MSGTYPE_INFO);
    EXPECT_GT(kept.size(), 16u);
    EXPECT_LE(kept.size(), 32u);
    EXPECT_EQ(kept.back()->text().substr(0, 2), "99");
}

TEST_F(ComMsgMgrDatabases, verbosityShowsDescriptionAndResolution) {
    EXPECT_EQ(M::getVerbosity(), 0);
    M::setVerbosity(1);
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    M::setVerbosity(2);
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    M::sendFormattedMsg("", 0, "S", M::MSGTYPE_INFO, "1-1", "text", "Why.", "How.");
    M::sendMsgString("common", M::MSGTYPE_OUTPUT, "line");
    M::sendMsg("trial", M::MSGTYPE_OUTPUT, "@90-1@\n"); // shows no id
    EXPECT_EQ(M::getVerbosity(), 2);
    M::setVerbosity(0);
    EXPECT_EQ(log->all(), "INFO: [Trial 90-1] Plain.\n    Description: d\n"
                          "INFO: [Trial 90-1] Plain.\n    Description: d\n    Resolution: r\n"
                          "INFO: [S 1-1] text\n    Description: Why.\n    Resolution: How.\nline\nPlain.\n");
}

TEST_F(ComMsgMgrDatabases, traceVerbosityTellsWhereATraceTextComesFrom) {
    M::addScope("rules", 3);
    M::setTraceVerbosity();
    EXPECT_TRUE(M::getTraceVerbosity());
    M::sendScopedMsg("rules", M::MSGTYPE_TRACE | 2, "text");
    M::resetTraceVerbosity();
    EXPECT_FALSE(M::getTraceVerbosity());
    EXPECT_EQ(log->all(), "TRACE: [rules, level 2, thread " +
                              std::to_string(ComMsgMgrThreadIface::getMyThreadId()) + "] text\n");
}

TEST_F(ComMsgMgrDatabases, faultsInMessageFilesCanBeMasked) {
    M::maskMsgMgrErrors();
    EXPECT_TRUE(M::areMsgMgrErrorsMasked());
    M::sendMsg(ComMsgMgrInstance::fromKey("broken", M::MSGTYPE_INFO, "@91-3@", {}));
    EXPECT_EQ(console->all(), "INFO: [Broken 91-3] No text is installed for this message.\n");
    M::uninit();
    EXPECT_FALSE(M::areMsgMgrErrorsMasked());
}

} // namespace
