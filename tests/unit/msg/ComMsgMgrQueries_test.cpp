#include "support.h"

#include <climits>
#include <cstdlib>
#include <thread>

#include "platform/env/HUTLogFileMgr.h"
#include "platform/msg/ComMsgMgrProjIface.h"
#include "platform/msg/ComMsgMgrTclIface.h"
#include "platform/msg/ComMsgMgrThreadIface.h"

namespace {

using M = ComMsgMgr;
using Meta = ComMsgMgrInstance::MetaType;

class ComMsgMgrQueries : public MsgTest {};

TEST_F(ComMsgMgrQueries, aTextIsSentUnderAnIdOfTheSenders) {
    M::sendMsgById("Common 17", 1, M::MSGTYPE_INFO, "text");
    M::sendMsgById("Common 17", 1, M::MSGTYPE_INFO, "100% %s\n");
    M::sendMsgById(std::string(200, 'p'), INT_MAX, M::MSGTYPE_INFO, std::string("a\0b", 3));
    EXPECT_EQ(log->all(), "INFO: [Common 17-1] text\nINFO: [Common 17-1] 100% %s\nINFO: [" +
                              std::string(200, 'p') + "-2147483647] " + std::string("a\0b\n", 4));
    EXPECT_EQ(M::getMsgCount("Common 17-1"), 2u);
    EXPECT_EQ(journal->all(), "");
}

TEST_F(ComMsgMgrQueries, anIdOfTheSendersSharesCountAndLimitWithItsMessage) {
    M::setMsgLimit(1, "Trial 90-1");
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    M::sendMsgById("Trial 90", 1, M::MSGTYPE_INFO, "again");
    EXPECT_EQ(M::getMsgCount("Trial 90-1"), 2u);
    EXPECT_EQ(log->all().find("again"), std::string::npos);
}

TEST_F(ComMsgMgrQueries, aFormattedMessageShowsSourceAndGid) {
    M::sendFormattedMsg("x.tcl", 1, "BoardRule::a", M::MSGTYPE_ERROR, "102-7", "text", "Why.", "How.");
    EXPECT_EQ(log->all(), "ERROR: [BoardRule::a 102-7] text\n");
    std::string help;
    ASSERT_TRUE(M::getHelpOnMessage("BoardRule::a 102-7", help));
    EXPECT_EQ(help, "[BoardRule::a 102-7] text\n\nDescription:\nWhy.\n\nResolution:\nHow.\n");
}

TEST_F(ComMsgMgrQueries, theLifetimeErrorCountCanBeSetBackWithoutHidingTheErrorFromTheDispatcher) {
    const auto errors = M::errorCount();
    const unsigned before = ComMsgMgrTclIface::getLifetimeErrorCount();
    M::sendMsgById("A", 1, M::MSGTYPE_ERROR, "bad");
    EXPECT_EQ(ComMsgMgrTclIface::getLifetimeErrorCount(), before + 1);
    ComMsgMgrTclIface::setLifetimeErrorCount(before);
    EXPECT_EQ(ComMsgMgrTclIface::getLifetimeErrorCount(), before);
    EXPECT_EQ(M::errorCount(), errors + 1);
    EXPECT_EQ(M::firstErrorLineSince(errors), "ERROR: [A-1] bad");
}

TEST_F(ComMsgMgrQueries, messagesWithWordsOfTheirOwn) {
    const auto line = [](const ComMsgMgrInstance& message) { return message.line(); };
    EXPECT_EQ(
        line(ComMsgMgrInstance::createInstance("common", M::MSGTYPE_INFO, "a %s b %s c %s\n", {"%s", "2"})),
        "INFO: a %s b 2 c %s");
    EXPECT_EQ(line(ComMsgMgrInstance("trial", 5, false, M::MSGTYPE_INFO, "x", {})), "INFO: [Trial 90-5] x");
    EXPECT_EQ(line(ComMsgMgrInstance("Mine", 5, false, M::MSGTYPE_INFO, "x", {})), "INFO: [Mine 5] x");
    EXPECT_EQ(line(ComMsgMgrInstance("Mine", M::MSGTYPE_INFO, {"ADRC", 123u}, "x\n\n", {})),
              "INFO: [Mine ADRC-123] x\n");
    EXPECT_EQ(ComMsgMgrInstance::fromText("common", M::MSGTYPE_INFO, "A-1", "x").getMessage(),
              "INFO: [A-1] x\n");
}

TEST_F(ComMsgMgrQueries, argumentsMaySpeakOfObjects) {
    EXPECT_EQ(M::metaStr2Type("file"), Meta::file);
    EXPECT_EQ(M::metaStr2Type("site"), Meta::site);
    EXPECT_EQ(M::metaStr2Type("operator"), Meta::operator_);
    for (const char* word : {"", "File", "b", "cell"})
        EXPECT_EQ(M::metaStr2Type(word), Meta::none) << word;
    auto message = trial(M::MSGTYPE_INFO, "@90-2@%s", {std::string("top.v")});
    EXPECT_TRUE(message.metaTypes().empty());
    const ComMsgMgrInstance plain = message;
    message.attachMetaType(0, Meta::file, "/a/top.v", "5");
    ASSERT_EQ(message.metaTypes().size(), 1u);
    EXPECT_EQ(message.metaTypes()[0].value, "/a/top.v");
    EXPECT_EQ(message.metaTypes()[0].context, "5");
    EXPECT_TRUE(plain.metaTypes().empty());
}

TEST_F(ComMsgMgrQueries, aMessageIsShownInItsOperatingModesOnly) {
    M::init(M::MSGCACHE_ON, "");
    auto message = trial(M::MSGTYPE_ERROR, "@90-1@", {});
    message.setDisplayInModes(M::MODE_OOC);
    const auto errors = M::errorCount();
    M::sendMessage(message);
    EXPECT_EQ(log->all(), "");
    EXPECT_EQ(M::errorCount(), errors + 1);
    EXPECT_EQ(M::getMsgCount("Trial 90-1"), 1u);
    ASSERT_EQ(M::getMessages(M::MSGTYPE_ERROR).size(), 1u);
    EXPECT_TRUE(M::getMessages(M::MSGTYPE_ERROR)[0]->isSuppressed());
    EXPECT_EQ(ComMsgMgrProjIface::getOperatingMode(), M::MODE_DEFAULT);
    ComMsgMgrProjIface::setOperatingMode(M::MODE_DEFAULT | M::MODE_OOC);
    M::sendMessage(message);
    EXPECT_EQ(log->all(), "ERROR: [Trial 90-1] Plain.\n");
    EXPECT_FALSE(M::getMessages(M::MSGTYPE_ERROR)[1]->isSuppressed());
}

TEST_F(ComMsgMgrQueries, helpHasWordsDescriptionAndResolution) {
    std::string help;
    for (const char* id : {"Trial 90-2", "[Trial 90-2]", " trial 90-2 "}) {
        ASSERT_TRUE(M::getHelpOnMessage(id, help)) << id;
        EXPECT_EQ(help, "[Trial 90-2] One '%s'.\n\nSeverity:\nERROR\n\nDescription:\nd\n\nResolution:\nr\n");
    }
    for (const char* id : {"", "Trial", "Trial 90-99", "Nosuch 1-1", "90-2"}) {
        EXPECT_FALSE(M::getHelpOnMessage(id, help)) << id;
        EXPECT_EQ(help.find("No message has the id '" + std::string(id) + "'."), 0u);
    }
}

TEST_F(ComMsgMgrQueries, countsOfTheCommandBeginAnewWithEach) {
    M::beginCommand();
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-1@\n");
    M::sendMsgById("A", 1, M::MSGTYPE_WARNING, "x");
    EXPECT_EQ(M::getTclMsgCount(M::MSGTYPE_ERROR), 1u);
    EXPECT_EQ(M::getTclMsgCount(M::MSGTYPE_ANY), 2u);
    M::resetAllMsgCounts(true, true);
    EXPECT_EQ(M::getTclMsgCount(M::MSGTYPE_ANY), 2u);
    M::beginCommand();
    EXPECT_EQ(M::getTclMsgCount(M::MSGTYPE_ANY), 0u);
}

TEST_F(ComMsgMgrQueries, limitsCanBeTurnedOff) {
    M::setMsgLimit(0, "A-1");
    M::disableMsgLimitCheck();
    M::sendMsgById("A", 1, M::MSGTYPE_INFO, "x");
    M::enableMsgLimitCheck();
    M::sendMsgById("A", 1, M::MSGTYPE_INFO, "y");
    EXPECT_EQ(log->all(), "INFO: [A-1] x\n");
}

TEST_F(ComMsgMgrQueries, aTimeStampStandsBehindTheId) {
    M::turnOnTimeStamp();
    EXPECT_TRUE(M::isTimeStampOn());
    const auto errors = M::errorCount();
    M::sendMsgById("A", 1, M::MSGTYPE_ERROR, "text");
    M::sendMsgString("common", M::MSGTYPE_INFO, "text");
    M::sendMsgString("common", M::MSGTYPE_OUTPUT, "line");
    const std::string stamp = "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}";
    ASSERT_EQ(log->texts().size(), 3u);
    EXPECT_THAT(log->texts()[0], testing::MatchesRegex("ERROR: .A-1. " + stamp + " text\n"));
    EXPECT_THAT(log->texts()[1], testing::MatchesRegex("INFO: " + stamp + " text\n"));
    EXPECT_EQ(log->texts()[2], "line\n");
    EXPECT_EQ(M::firstErrorLineSince(errors), "ERROR: [A-1] text");
    EXPECT_TRUE(M::wasIssued("ERROR: [A-1] text"));
    M::turnOffTimeStamp();
    EXPECT_FALSE(M::isTimeStampOn());
}

TEST_F(ComMsgMgrQueries, wordsAreTranslatedWhenThatIsOn) {
    ::setenv("LC_ALL", "xx_YY.UTF-8", 1);
    M::uninit(); // the language is asked for with the words
    M::setSink(M::Destination::console, console);
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-2@%s\n", "a");
    EXPECT_FALSE(M::isMsgXlationOn());
    M::turnOnMsgXlation();
    EXPECT_TRUE(M::isMsgXlationOn());
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-2@%s\n", "a");
    M::sendMsg(trial(M::MSGTYPE_INFO, "@90-2@%s", {std::string("b")}));
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    M::turnOffMsgXlation();
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-2@%s\n", "a");
    ::unsetenv("LC_ALL");
    EXPECT_EQ(log->all(),
              "INFO: [Trial 90-2] One 'a'.\nINFO: [Trial 90-2] Uno 'a'.\nINFO: [Trial 90-2] Uno 'b'.\n"
              "INFO: [Trial 90-1] Plain.\nINFO: [Trial 90-2] One 'a'.\n");
}

TEST_F(ComMsgMgrQueries, scopesShowTheirTraceTextsUpToTheirLevel) {
    M::sendScopedMsg("rules", M::MSGTYPE_TRACE | 3, "hidden");
    M::addScope("rules", 3);
    EXPECT_EQ(M::hasScope("rules"), 3);
    M::sendScopedMsg("rules", M::MSGTYPE_TRACE | 3, "seen");
    M::sendScopedMsg("rules", M::MSGTYPE_TRACE | 4, "hidden");
    M::sendScopedMsg("other", M::MSGTYPE_TRACE | 3, "hidden");
    M::removeScope("rules");
    M::removeScope("nosuch");
    M::sendScopedMsg("rules", M::MSGTYPE_TRACE | 3, "hidden");
    EXPECT_EQ(M::hasScope("rules"), 0);
    M::addScope("rules", 1);
    M::resetScope();
    EXPECT_EQ(M::hasScope("rules"), 0);
    EXPECT_EQ(log->all(), "seen\n");
}

TEST_F(ComMsgMgrQueries, messagesOfAHeldThreadWaitInOrder) {
    int number = 0;
    std::thread([&] {
        number = ComMsgMgrThreadIface::getMyThreadId();
        EXPECT_NE(number, 0);
        ComMsgMgrThreadIface::holdMsgsForThread(number);
        M::sendMsgById("A", 1, M::MSGTYPE_INFO, "one");
        M::sendMsgString("common", M::MSGTYPE_OUTPUT, "two");
    }).join();
    EXPECT_NE(number, ComMsgMgrThreadIface::getMyThreadId());
    M::sendMsgById("A", 1, M::MSGTYPE_INFO, "mine");
    EXPECT_EQ(log->all(), "INFO: [A-1] mine\n");
    EXPECT_EQ(M::getMsgCount("A-1"), 2u);
    ComMsgMgrThreadIface::releaseMsgsForThread(number);
    ComMsgMgrThreadIface::releaseMsgsForThread(number);
    EXPECT_EQ(log->all(), "INFO: [A-1] mine\nINFO: [A-1] one\ntwo\n");
    EXPECT_EQ(console->all(), log->all());
}

TEST_F(ComMsgMgrQueries, heldMessagesAreShownAtTheEndAtTheLatest) {
    ComMsgMgrThreadIface::holdMsgsForThread(ComMsgMgrThreadIface::getMyThreadId());
    M::sendMsgById("A", 1, M::MSGTYPE_INFO, "one");
    EXPECT_EQ(log->all(), "");
    M::uninit();
    EXPECT_EQ(log->all(), "INFO: [A-1] one\n");
}

TEST_F(ComMsgMgrQueries, sourcesCanBeAskedOneByOne) {
    M::init(M::MSGCACHE_ON, "");
    M::sendMsgById("A", 1, M::MSGTYPE_INFO, "mine");
    M::sendMsgString("common", M::MSGTYPE_OUTPUT, "line\n");
    const auto loaded = std::make_shared<const ComMsgMgrInstance>(
        ComMsgMgrInstance::fromText("common", M::MSGTYPE_ERROR, "B-1", "loaded"));
    const ComMsgMgrSrcHandle other = ComMsgMgrSrcHandle::add("file", {loaded});
    std::vector<ComMsgMgrSrcHandle> handles;
    M::getRootMsgSrcHandle().getMsgMgrHandles(handles);
    ASSERT_GE(handles.size(), 2u);
    EXPECT_EQ(handles.front(), M::getRootMsgSrcHandle());
    EXPECT_EQ(handles.back().name(), "file");
    std::vector<std::shared_ptr<const ComMsgMgrInstance>> list;
    M::getMessages(list, other, M::MSGTYPE_SEVERITIES);
    M::getMessages(list, M::getRootMsgSrcHandle(), M::MSGTYPE_SEVERITIES);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0]->line(), "ERROR: [B-1] loaded");
    EXPECT_EQ(list[1]->line(), "INFO: [A-1] mine");
    EXPECT_EQ(M::getMessages(M::MSGTYPE_OUTPUT)[0]->getMessage(), "line\n");
    EXPECT_EQ(M::getCurrentMsgSrcHandle(), M::getRootMsgSrcHandle());
    M::setCurrentMsgSrcHandle(other);
    EXPECT_EQ(M::getCurrentMsgSrcHandle(), other);
}

TEST_F(ComMsgMgrQueries, veryManyIdsAreKeptApart) {
    for (int i = 0; i < 2000; ++i)
        for (int j = 0; j <= i % 3; ++j)
            M::sendMsgById("Many", i, M::MSGTYPE_INFO, "x");
    for (int i = 0; i < 2000; ++i)
        ASSERT_EQ(M::getMsgCount("Many-" + std::to_string(i)), static_cast<unsigned>(i % 3 + 1)) << i;
}

TEST_F(ComMsgMgrQueries, eightThreadsCountExactlyAndKeepTheLimit) {
    M::setMsgLimit(100, "Limited-1");
    std::vector<std::thread> running;
    for (int t = 0; t < 8; ++t)
        running.emplace_back([] {
            for (int i = 0; i < 1000; ++i)
                M::sendMsgById("Limited", 1, M::MSGTYPE_INFO, "x");
        });
    for (std::thread& thread : running)
        thread.join();
    EXPECT_EQ(M::getMsgCount("Limited-1"), 8000u);
    EXPECT_EQ(log->texts().size(), 101u); // with one notice
}

TEST_F(ComMsgMgrQueries, aFullDiskIsToldOnceAndTheSessionGoesOn) {
    M::setSink(M::Destination::log, nullptr);
    HUTLogFileMgr::createLogFile("/dev/full", false);
    M::sendMsgById("A", 1, M::MSGTYPE_INFO, std::string(100'000, 'x'));
    M::sendMsgById("A", 1, M::MSGTYPE_INFO, "more");
    HUTLogFileMgr::flush();
    EXPECT_TRUE(HUTLogFileMgr::takeWriteError().has_value());
    M::sendMsgById("A", 1, M::MSGTYPE_INFO, "still there");
    HUTLogFileMgr::flush();
    EXPECT_FALSE(HUTLogFileMgr::takeWriteError().has_value());
    EXPECT_EQ(console->texts().back(), "INFO: [A-1] still there\n");
    HUTLogFileMgr::closeLog();
}

} // namespace
