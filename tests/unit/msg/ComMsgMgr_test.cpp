#include "support.h"

#include <atomic>
#include <climits>
#include <set>
#include <thread>

#include "platform/param/HPAParamMgr.h"

namespace {

using M = ComMsgMgr;
class ComMsgMgrTest : public MsgTest {
protected:
    void send(M::MsgMask mask, const char* text) { M::sendMsgString("common", mask, text); }
    void expect(const std::string& onConsole, const std::string& inLog, const std::string& inJournal) {
        EXPECT_EQ(console->all(), onConsole);
        EXPECT_EQ(log->all(), inLog);
        EXPECT_EQ(journal->all(), inJournal);
        console->clear();
        log->clear();
        journal->clear();
    }
};

TEST_F(ComMsgMgrTest, severityWordsAndMasksAgree) {
    for (const char* word : {"ERROR", "CRITICAL WARNING", "WARNING", "INFO", "STATUS", "ADVISORY", "ANY"})
        EXPECT_EQ(M::msgType2Str(M::msgStr2Type(word)), word);
    EXPECT_EQ(M::msgStr2Type("ERROR"), 0x20000000u);
    EXPECT_EQ(M::msgStr2Type("CRITICAL WARNING"), 0x10000000u);
    EXPECT_EQ(M::msgStr2Type("WARNING"), 0x8000000u);
    EXPECT_EQ(M::msgStr2Type("INFO"), 0x4000000u);
    EXPECT_EQ(M::msgStr2Type("STATUS"), 0x2000000u);
    EXPECT_EQ(M::msgStr2Type("ADVISORY"), 0x40000000u);
    EXPECT_EQ(M::msgStr2Type("ALL"), 0xFFFFFFF0u);
    for (const char* word : {"", "error", "ERRORS", " ERROR", "TRACE"})
        EXPECT_EQ(M::msgStr2Type(word), 0u) << word;
    EXPECT_EQ(M::msgType2Str(M::MSGTYPE_WARNING | M::MSGTYPE_CRITICAL_WARNING), "CRITICAL WARNING");
    EXPECT_EQ(M::msgType2Str(M::MSGTYPE_TRACE | 3), "TRACE");
    EXPECT_EQ(M::msgType2Str(M::MSGTYPE_OUTPUT), "");
}

TEST_F(ComMsgMgrTest, aSeverityGoesToConsoleAndLog) {
    for (const auto& [mask, word] : {std::pair{M::MSGTYPE_ERROR, "ERROR"},
                                     {M::MSGTYPE_CRITICAL_WARNING, "CRITICAL WARNING"},
                                     {M::MSGTYPE_WARNING, "WARNING"},
                                     {M::MSGTYPE_INFO, "INFO"},
                                     {M::MSGTYPE_STATUS, "STATUS"},
                                     {M::MSGTYPE_ADVISORY, "ADVISORY"}}) {
        M::sendMsg(trial(mask, "@90-1@", {}));
        const std::string line = std::string(word) + ": [Trial 90-1] Plain.\n";
        expect(line, line, "");
    }
}

TEST_F(ComMsgMgrTest, aPlainTextGoesWhereItsMaskSays) {
    send(0x1000, "# head\nplain\n");
    expect("", "# head\nplain\n", "# head\n# plain\n");
    for (const M::MsgMask mask : {0x10000u, 0x20000u, 0x40000u, 0x80000u}) {
        send(mask, "text");
        expect("text\n", "text\n", "");
    }
    send(0x100000, "set a 1");
    expect("", "set a 1\n", "set a 1\n");
    send(0x200000, "source a.tcl\n");
    expect("source a.tcl\n", "source a.tcl\n", "source a.tcl\n");
    send(0xb01000, "# old_command\n");
    expect("# old_command\n", "# old_command\n", "# old_command\n");
    send(0, "nowhere");
    send(M::MSGTYPE_OUTPUT, "");
    expect("", "", "");
}

TEST_F(ComMsgMgrTest, allToConsoleShowsWhatElseOnlyTheLogGets) {
    M::setAllToConsole(true);
    send(0x1000, "# head\n");
    expect("# head\n", "# head\n", "# head\n");
}

TEST_F(ComMsgMgrTest, aTextWithASeverityGetsItsWordOnce) {
    send(M::MSGTYPE_ERROR, "failed");
    expect("ERROR: failed\n", "ERROR: failed\n", "");
    send(M::MSGTYPE_ERROR, "ERROR: [Common 17-1] failed");
    expect("ERROR: [Common 17-1] failed\n", "ERROR: [Common 17-1] failed\n", "");
    send(M::MSGTYPE_WARNING, "ERROR: odd\n\n");
    expect("WARNING: ERROR: odd\n\n", "WARNING: ERROR: odd\n\n", "");
}

TEST_F(ComMsgMgrTest, anyBytesOfATextSurvive) {
    const std::string bytes("%s%n\0\xff\n\n", 8);
    M::sendMsgString("common", M::MSGTYPE_OUTPUT, bytes);
    expect(bytes, bytes, "");
}

TEST_F(ComMsgMgrTest, commandEchoCanBeTurnedOff) {
    EXPECT_TRUE(M::isTclEchoOn());
    M::turnOffTclEcho();
    EXPECT_FALSE(M::isTclEchoOn());
    for (const M::MsgMask mask : {0x80000u, 0x100000u, 0x200000u})
        send(mask, "secret");
    send(M::MSGTYPE_OUTPUT, "open");
    expect("open\n", "open\n", "");
    M::turnOnTclEcho();
    send(0x80000, "command");
    expect("command\n", "command\n", "");
}

TEST_F(ComMsgMgrTest, traceMessagesAreShownUpToTheVisibleLevel) {
    const auto trace = [](unsigned level) { M::sendMsg(trial(M::MSGTYPE_TRACE | level, "@90-1@", {})); };
    trace(0);
    trace(3);
    expect("", "", "");
    M::setVisibility(3);
    trace(3);
    trace(4);
    expect("TRACE: [Trial 90-1] Plain.\n", "TRACE: [Trial 90-1] Plain.\n", "");
}

TEST_F(ComMsgMgrTest, messagesAreCountedBySeverityAndId) {
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-1@\n");
    M::sendMsg("trial", M::MSGTYPE_WARNING, "@90-1@\n");
    M::sendMsg("trial", M::MSGTYPE_WARNING, "@90-2@%s\n", "x");
    send(M::MSGTYPE_ERROR, "text");
    EXPECT_EQ(M::getMsgCount(M::MSGTYPE_ERROR), 2u);
    EXPECT_EQ(M::getLifetimeErrorCount(), 2u);
    EXPECT_EQ(M::getMsgCount(M::MSGTYPE_WARNING), 2u);
    EXPECT_EQ(M::getMsgCount(M::MSGTYPE_INFO), 0u);
    EXPECT_EQ(M::getMsgCount(M::MSGTYPE_ANY), 4u);
    EXPECT_EQ(M::getMsgCount("Trial 90-1"), 2u);
    EXPECT_EQ(M::getMsgCount("Trial 90-2"), 1u);
    EXPECT_EQ(M::getMsgCount("Trial 90-3"), 0u);
    M::setLifetimeErrorCount(0);
    EXPECT_EQ(M::getLifetimeErrorCount(), 0u);
    M::resetMsgCount("Trial 90-1");
    EXPECT_EQ(M::getMsgCount("Trial 90-1"), 0u);
    EXPECT_EQ(M::getMsgCount("Trial 90-2"), 1u);
    M::resetMsgCount("*");
    EXPECT_EQ(M::getMsgCount("Trial 90-2"), 0u);
    M::resetAllMsgCounts(false, true);
    EXPECT_EQ(M::getMsgCount(M::MSGTYPE_WARNING), 0u);
}

TEST_F(ComMsgMgrTest, theErrorCountGrowsWithEachError) {
    const auto before = M::errorCount();
    M::clearIssuedError();
    M::sendMsg("trial", M::MSGTYPE_WARNING, "@90-1@\n");
    EXPECT_EQ(M::errorCount(), before);
    EXPECT_FALSE(M::hasIssuedError());
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-1@\n");
    send(M::MSGTYPE_ERROR, "text");
    EXPECT_EQ(M::errorCount(), before + 2);
    EXPECT_TRUE(M::hasIssuedError());
    M::clearIssuedError();
    EXPECT_FALSE(M::hasIssuedError());
}

TEST_F(ComMsgMgrTest, theFirstErrorOfACommandIsFound) {
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-2@%s\n", "before");
    const auto count = M::errorCount();
    EXPECT_EQ(M::firstErrorLineSince(count), "");
    M::sendMsg("trial", M::MSGTYPE_WARNING, "@90-1@\n");
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-2@%s\n", "first");
    send(M::MSGTYPE_ERROR, "second\n");
    EXPECT_EQ(M::firstErrorLineSince(count), "ERROR: [Trial 90-2] One 'first'.");
    EXPECT_EQ(M::firstErrorLineSince(count + 1), "ERROR: second");
    EXPECT_EQ(M::firstErrorLineSince(count - 1), "ERROR: [Trial 90-2] One 'before'.");
}

TEST_F(ComMsgMgrTest, amongVeryManyErrorsOneOfTheCommandsOwnIsFound) {
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-2@%s\n", "other");
    const auto count = M::errorCount();
    for (int i = 0; i < 5000; ++i)
        M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-2@%s\n", std::to_string(i));
    const std::string line = M::firstErrorLineSince(count);
    EXPECT_EQ(line.find("ERROR: [Trial 90-2] One '"), 0u);
    EXPECT_EQ(line.find("other"), std::string::npos);
}

TEST_F(ComMsgMgrTest, aLargeErrorIsStillFound) {
    const std::string large(10'000'000, 'x');
    const auto count = M::errorCount();
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-2@%s\n", large);
    EXPECT_EQ(M::firstErrorLineSince(count), "ERROR: [Trial 90-2] One '" + large + "'.");
}

TEST_F(ComMsgMgrTest, anErrorThatALimitStopsIsStillFound) {
    M::setMsgLimit(0, "Trial 90-2");
    const auto count = M::errorCount();
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-2@%s\n", "x");
    EXPECT_EQ(M::errorCount(), count + 1);
    EXPECT_EQ(M::firstErrorLineSince(count), "ERROR: [Trial 90-2] One 'x'.");
    EXPECT_FALSE(M::wasIssued("ERROR: [Trial 90-2] One 'x'."));
    expect("", "", "");
}

TEST_F(ComMsgMgrTest, anErrorLineIsIssuedUntilTheNextCommandBegins) {
    M::beginCommand();
    const std::string line = "ERROR: [Trial 90-2] One 'x'.";
    EXPECT_FALSE(M::wasIssued(line));
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-2@%s\n", "x");
    EXPECT_TRUE(M::wasIssued(line));
    EXPECT_TRUE(M::wasIssued(line + "\n"));
    EXPECT_FALSE(M::wasIssued("ERROR: [Trial 90-2] One 'y'."));
    EXPECT_FALSE(M::wasIssued(line.substr(1)));
    M::beginCommand();
    EXPECT_FALSE(M::wasIssued(line));
    send(M::MSGTYPE_ERROR, line.c_str());
    EXPECT_TRUE(M::wasIssued(line));
}

TEST_F(ComMsgMgrTest, anIdFallsSilentBehindItsLimitWithOneNotice) {
    M::setMsgLimit(3, "Trial 90-1");
    for (int i = 0; i < 10; ++i)
        M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    ASSERT_EQ(console->texts().size(), 4u);
    EXPECT_EQ(console->texts()[2], "INFO: [Trial 90-1] Plain.\n");
    EXPECT_EQ(console->texts()[3],
              "INFO: [Common 17-5153] The message 'Trial 90-1' has been shown 3 times; more of "
              "them are counted, but not shown.\n");
    EXPECT_EQ(log->texts(), console->texts());
    EXPECT_EQ(M::getMsgCount("Trial 90-1"), 10u);
    console->clear();
    M::resetMsgCount("Trial 90-1");
    for (int i = 0; i < 5; ++i)
        M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    EXPECT_EQ(console->texts().size(), 4u);
}

TEST_F(ComMsgMgrTest, theDefaultLimitIsAParameter) {
    EXPECT_EQ(M::getMsgLimit("Trial 90-1"), 100u);
    for (int i = 0; i < 200; ++i)
        M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    EXPECT_EQ(console->texts().size(), 101u);
    HPAParamMgr::getParamMgr().setIntValue("messaging.defaultLimit", 7);
    EXPECT_EQ(M::getMsgLimit("Trial 90-1"), 7u);
    M::setMsgLimit(9, "Trial 90-1");
    EXPECT_EQ(M::getMsgLimit("Trial 90-1"), 9u);
    M::resetMsgLimit("Trial 90-1");
    EXPECT_EQ(M::getMsgLimit("Trial 90-1"), 7u);
    HPAParamMgr::getParamMgr().reset("messaging.defaultLimit");
}

TEST_F(ComMsgMgrTest, aSeverityCanHaveALimit) {
    EXPECT_EQ(M::getMsgLimit(M::MSGTYPE_INFO), UINT_MAX);
    M::setMsgLimit(2, M::MSGTYPE_INFO);
    EXPECT_EQ(M::getMsgLimit(M::MSGTYPE_INFO), 2u);
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    send(M::MSGTYPE_INFO, "text");
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-2@%s\n", "x");
    M::sendMsg("trial", M::MSGTYPE_WARNING, "@90-1@\n");
    EXPECT_EQ(console->texts().size(), 3u);
    M::resetMsgLimit(M::MSGTYPE_INFO);
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    EXPECT_EQ(console->texts().size(), 4u);
}

TEST_F(ComMsgMgrTest, aVerboseScopeIgnoresLimits) {
    M::setMsgLimit(0, "Trial 90-1");
    {
        const M::VerboseScope outer;
        { const M::VerboseScope inner; }
        M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    }
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    expect("INFO: [Trial 90-1] Plain.\n", "INFO: [Trial 90-1] Plain.\n", "");
}

TEST_F(ComMsgMgrTest, aQuietScopeHidesAndForgetsTheThreadsMessages) {
    const auto count = M::errorCount();
    {
        const M::QuietScope outer;
        { const M::QuietScope inner; }
        EXPECT_TRUE(M::isQuiet());
        M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-1@\n");
        M::sendMsg(trial(M::MSGTYPE_ERROR, "@90-1@", {}));
        send(M::MSGTYPE_ERROR, "text");
        std::thread([] { M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n"); }).join();
        send(M::MSGTYPE_OUTPUT, "output");
    }
    EXPECT_FALSE(M::isQuiet());
    EXPECT_EQ(M::errorCount(), count);
    EXPECT_EQ(M::getMsgCount("Trial 90-1"), 1u);
    EXPECT_EQ(M::firstErrorLineSince(count), "");
    expect("INFO: [Trial 90-1] Plain.\noutput\n", "INFO: [Trial 90-1] Plain.\noutput\n", "");
}

TEST_F(ComMsgMgrTest, messagesAreKeptForQueriesWhenAsked) {
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-2@%s\n", "early");
    M::init(M::MSGCACHE_ON, "");
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-2@%s\n", "x");
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    ASSERT_EQ(M::getMessages(M::MSGTYPE_ANY).size(), 2u);
    ASSERT_EQ(M::getMessages(M::MSGTYPE_ERROR).size(), 1u);
    EXPECT_EQ(M::getMessages(M::MSGTYPE_ERROR)[0]->text(), "One 'x'.");
    M::turnOffMsgCache();
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    EXPECT_EQ(M::getMessages(M::MSGTYPE_ANY).size(), 2u);
    M::turnOnMsgCache();
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    EXPECT_EQ(M::getMessages(M::MSGTYPE_ANY).size(), 3u);
}

TEST_F(ComMsgMgrTest, aDatabaseGetsTheMessagesFromTheStartOfTheSessionToItsEnd) {
    const TempDir dir;
    M::init(M::MSGCACHE_LATEST, dir.path("record.db"));
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-2@%s\n", "a");
    send(M::MSGTYPE_OUTPUT, "line");
    M::uninit();
    std::vector<std::string> lines;
    M::forEachMessage(M::loadMsgSrc(dir.path("record.db"), ""), M::MSGTYPE_ANY,
                      [&](const auto& message) { lines.push_back(message->line()); });
    EXPECT_THAT(lines, testing::ElementsAre("ERROR: [Trial 90-2] One 'a'.", "line"));
}

TEST_F(ComMsgMgrTest, aDatabaseThatCannotBeMadeIsToldAndTheSessionGoesOn) {
    try {
        M::init(M::MSGCACHE_LATEST, "/nonexistent/dir/record");
        FAIL() << "nothing thrown";
    } catch (const ComMsgMgrInstance& message) {
        EXPECT_EQ(message.line(),
                  "ERROR: [Common 17-5480] The message database '/nonexistent/dir/record' cannot "
                  "be created: unable to open database file.");
    }
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    EXPECT_EQ(console->texts().size(), 1u);
}

TEST_F(ComMsgMgrTest, uninitForgetsAndInitStartsAnew) {
    M::setMsgLimit(1, "Trial 90-1");
    M::turnOffTclEcho();
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-1@\n");
    M::uninit();
    M::uninit();
    EXPECT_EQ(M::getMsgCount("Trial 90-1"), 0u);
    EXPECT_EQ(M::getMsgCount(M::MSGTYPE_ANY), 0u);
    EXPECT_EQ(M::getMsgLimit("Trial 90-1"), 100u);
    EXPECT_TRUE(M::isTclEchoOn());
    EXPECT_FALSE(M::hasIssuedError());
    M::init(M::MSGCACHE_ON, "");
    M::setSink(M::Destination::console, console);
    console->clear();
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    EXPECT_EQ(console->all(), "INFO: [Trial 90-1] Plain.\n");
}

TEST_F(ComMsgMgrTest, afterUninitTheConsoleIsTheProcesssOutput) {
    M::uninit();
    testing::internal::CaptureStdout();
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "INFO: [Trial 90-1] Plain.\n");
}

TEST_F(ComMsgMgrTest, setSinkGivesBackTheOneBefore) {
    const auto other = std::make_shared<RecordingSink>();
    EXPECT_EQ(M::setSink(M::Destination::log, other), log);
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    EXPECT_EQ(other->texts().size(), 1u);
    EXPECT_TRUE(log->texts().empty());
    EXPECT_EQ(M::setSink(M::Destination::log, log), other);
}

TEST_F(ComMsgMgrTest, linesOfManyThreadsStayWholeAndComplete) {
    constexpr int threads = 8, each = 500;
    M::setMsgLimit(UINT_MAX, "Trial 90-6");
    const auto before = M::errorCount();
    std::vector<std::thread> running;
    for (int t = 0; t < threads; ++t)
        running.emplace_back([t] {
            for (int i = 0; i < each; ++i) {
                M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-6@%s%s\n",
                           std::string(200, static_cast<char>('a' + t)), std::to_string(i));
                if (i % 50 == 0) {
                    M::getMsgCount("Trial 90-6");
                    M::firstErrorLineSince(M::errorCount() - 1);
                    M::beginCommand();
                }
            }
        });
    for (std::thread& thread : running)
        thread.join();
    std::multiset<std::string> expected, seen;
    for (int t = 0; t < threads; ++t)
        for (int i = 0; i < each; ++i)
            expected.insert("ERROR: [Trial 90-6] " + std::string(200, static_cast<char>('a' + t)) + " and " +
                            std::to_string(i) + "\n");
    for (const std::string& text : log->texts())
        seen.insert(text);
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(console->texts().size(), expected.size());
    EXPECT_EQ(M::errorCount(), before + threads * each);
    EXPECT_EQ(M::getMsgCount("Trial 90-6"), static_cast<unsigned>(threads * each));
}

TEST_F(ComMsgMgrTest, initAndUninitBesideRunningThreadsAreHarmless) {
    std::atomic<bool> stop{false};
    std::vector<std::thread> running;
    for (int t = 0; t < 4; ++t)
        running.emplace_back([&stop] {
            while (!stop)
                M::sendMsg("trial", M::MSGTYPE_INFO, "@90-2@%s\n", "x");
        });
    for (int i = 0; i < 50; ++i) {
        M::uninit();
        M::setSink(M::Destination::console, console);
        M::init(M::MSGCACHE_ON, "");
    }
    stop = true;
    for (std::thread& thread : running)
        thread.join();
    for (const std::string& text : log->texts())
        ASSERT_EQ(text.back(), '\n');
}

} // namespace
