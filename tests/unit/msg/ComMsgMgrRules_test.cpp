#include "support.h"

#include <atomic>
#include <climits>
#include <random>
#include <re2/re2.h>
#include <thread>

#include "platform/msg/ComMsgMgrProjIface.h"
#include "platform/msg/ComMsgMgrRuleIface.h"
#include "platform/msg/ComMsgMgrThreadIface.h"
#include "platform/msg/HEX.h"
#include "platform/msg/detail/RuleIndex.h"
#include "platform/msg/detail/RuleText.h"

namespace {

using M = ComMsgMgr;
using Rules = ComMsgMgrRuleIface;
using Project = ComMsgMgrProjIface;
using Rule = ComMsgMgrMsgControlRule;
using Strings = std::vector<std::string>;

constexpr M::MsgMask any = M::MSGTYPE_ANY;

class ComMsgMgrRules : public MsgTest {
protected:
    static std::string make(ComMsgMgrRuleParts parts) {
        return Rules::createMsgControlRule(parts.strings, parts.id, parts.severity, parts.visible,
                                           parts.source, parts.regexp, parts.limit, parts.suppress,
                                           parts.newSeverity, parts.ruleId, parts.notes, parts.author,
                                           parts.timeStamp, parts.kept);
    }
    static std::string suppress(const std::string& id, Strings strings = {}, M::MsgMask severity = any) {
        return make({.strings = std::move(strings), .id = id, .severity = severity, .suppress = true});
    }
    static std::string grade(const std::string& id, Strings strings, M::MsgMask severity, M::MsgMask to) {
        return make({.strings = std::move(strings), .id = id, .severity = severity, .newSeverity = to});
    }
    /// What the log has got since the last call.
    std::string logged() {
        const std::string text = log->all();
        log->clear();
        return text;
    }
    /// Sends a message by each road there is, with the text "One 'a b'." or nearly so.
    static void sendByAllRoads(M::MsgMask mask) {
        M::sendMsg("trial", mask, "@90-2@%s\n", "a b");
        M::sendMsg(trial(mask, "@90-2@%s", {std::string("a b")}));
        M::sendMsgById("Trial 90", 2, mask, "One 'a b'.\n");
        M::sendFormattedMsg("x", 1, "Trial", mask, "90-2", "One 'a b'.", "", "");
        M::sendMsg(ComMsgMgrInstance("trial", 2, false, mask, "One 'a b'.\n", {}));
    }
    static std::string lines(int count, const std::string& line) {
        std::string out;
        while (count-- > 0)
            out += line;
        return out;
    }
};

TEST_F(ComMsgMgrRules, anIdIsSuppressedOnEveryRoad) {
    suppress("Trial 90-2");
    sendByAllRoads(M::MSGTYPE_WARNING);
    EXPECT_EQ(logged(), "");
    M::sendMsg("trial", M::MSGTYPE_WARNING, "@90-1@\n");
    EXPECT_EQ(logged(), "WARNING: [Trial 90-1] Plain.\n");
}

TEST_F(ComMsgMgrRules, stringsAreLookedForOnEveryRoad) {
    suppress("", {"'a", "b'"});
    sendByAllRoads(M::MSGTYPE_WARNING);
    M::sendMsgString("common", M::MSGTYPE_WARNING, "One 'a b'.");
    EXPECT_EQ(logged(), "");
    M::sendMsg("trial", M::MSGTYPE_WARNING, "@90-2@%s\n", "a c");
    M::sendMsgString("common", M::MSGTYPE_OUTPUT, "'a b'");
    EXPECT_EQ(logged(), "WARNING: [Trial 90-2] One 'a c'.\n'a b'\n");
}

TEST_F(ComMsgMgrRules, severitiesChangeOnEveryRoad) {
    grade("Trial 90-2", {}, any, M::MSGTYPE_ERROR);
    const auto errors = M::errorCount();
    sendByAllRoads(M::MSGTYPE_INFO);
    EXPECT_EQ(logged(), lines(5, "ERROR: [Trial 90-2] One 'a b'.\n"));
    EXPECT_EQ(M::errorCount(), errors + 5);
    EXPECT_EQ(M::getMsgCount(M::MSGTYPE_ERROR), 5u);
    EXPECT_EQ(M::getMsgCount(M::MSGTYPE_INFO), 0u);
    EXPECT_EQ(M::firstErrorLineSince(errors), "ERROR: [Trial 90-2] One 'a b'.");
}

TEST_F(ComMsgMgrRules, severitiesChangeByTextOnEveryRoad) {
    grade("", {"a b"}, M::MSGTYPE_ERROR, M::MSGTYPE_STATUS);
    sendByAllRoads(M::MSGTYPE_ERROR);
    EXPECT_EQ(logged(), lines(5, "STATUS: [Trial 90-2] One 'a b'.\n"));
    EXPECT_FALSE(M::hasIssuedError());
    M::sendMsgString("common", M::MSGTYPE_ERROR, "a b");
    M::sendMsgString("common", M::MSGTYPE_ERROR, "ERROR: a b\n");
    EXPECT_EQ(logged(), "STATUS: a b\nSTATUS: a b\n");
}

TEST_F(ComMsgMgrRules, keptMessagesKnowBothSeverities) {
    M::turnOnMsgCache();
    grade("Trial 90-1", {}, any, M::MSGTYPE_STATUS);
    suppress("Trial 90-2");
    M::sendMsg("trial", M::MSGTYPE_WARNING, "@90-1@\n");
    sendByAllRoads(M::MSGTYPE_WARNING);
    const auto changed = M::getMessages(M::MSGTYPE_STATUS);
    ASSERT_EQ(changed.size(), 1u);
    EXPECT_EQ(changed[0]->getType(), M::MSGTYPE_STATUS);
    EXPECT_EQ(changed[0]->getDefaultSeverity(), M::MSGTYPE_WARNING);
    EXPECT_FALSE(changed[0]->isSuppressed());
    EXPECT_EQ(changed[0]->getMessage(), "STATUS: [Trial 90-1] Plain.\n");
    const auto hidden = M::getMessages(M::MSGTYPE_WARNING);
    ASSERT_EQ(hidden.size(), 5u);
    for (const auto& message : hidden) {
        EXPECT_TRUE(message->isSuppressed());
        EXPECT_EQ(message->line(), "WARNING: [Trial 90-2] One 'a b'.");
    }
}

TEST_F(ComMsgMgrRules, aSuppressedErrorIsAnErrorAllTheSame) {
    suppress("Trial 90-1");
    const auto errors = M::errorCount();
    M::sendMsg("trial", M::MSGTYPE_ERROR, "@90-1@\n");
    EXPECT_EQ(logged(), "");
    EXPECT_EQ(M::errorCount(), errors + 1);
    EXPECT_TRUE(M::hasIssuedError());
    EXPECT_EQ(M::firstErrorLineSince(errors), "ERROR: [Trial 90-1] Plain.");
    EXPECT_FALSE(M::wasIssued("ERROR: [Trial 90-1] Plain."));
}

TEST_F(ComMsgMgrRules, whatIsSuppressedDoesNotUseUpALimit) {
    M::setMsgLimit(1, "Trial 90-1");
    const std::string rule = suppress("Trial 90-1");
    for (int i = 0; i < 3; ++i)
        M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    EXPECT_EQ(M::getMsgCount("Trial 90-1"), 0u);
    EXPECT_EQ(M::getMsgCount(M::MSGTYPE_INFO), 0u);
    EXPECT_EQ(Project::beginMsgControlRules("")->second->count, 3u);
    EXPECT_EQ(Rules::removeMsgControlRuleByRuleId(rule, true), 1u);
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    EXPECT_EQ(logged(), "INFO: [Trial 90-1] Plain.\n");
}

TEST_F(ComMsgMgrRules, aRuleMayLimitWhatItMatches) {
    const std::string rule = make({.strings = {"a"}, .limit = 2});
    const auto send = [] {
        for (const char* text : {"a1", "b", "a2", "a3"})
            M::sendMsgString("common", M::MSGTYPE_INFO, text);
    };
    send();
    EXPECT_EQ(logged(), "INFO: a1\nINFO: b\nINFO: a2\n");
    EXPECT_EQ(Rules::resetMsgControlRuleMsgCnt({"a"}, "", any), 1u);
    send();
    EXPECT_EQ(logged(), "INFO: a1\nINFO: b\nINFO: a2\n");
    EXPECT_EQ(Rules::resetMsgControlRuleMsgCntByRuleId(rule), 1u);
    send();
    EXPECT_EQ(logged(), "INFO: a1\nINFO: b\nINFO: a2\n");
    {
        const M::VerboseScope verbose;
        send();
    }
    EXPECT_EQ(logged(), "INFO: a1\nINFO: b\nINFO: a2\nINFO: a3\n");
    EXPECT_EQ(Rules::resetMsgControlRuleMsgCnt({"b"}, "", any), 0u);
    EXPECT_EQ(Rules::resetMsgControlRuleMsgCntByRuleId("nosuch"), 0u);
    M::resetAllMsgCounts(false, false, true);
    send();
    EXPECT_EQ(logged(), "INFO: a1\nINFO: b\nINFO: a2\n");
}

TEST_F(ComMsgMgrRules, quietMessagesAreNotCountedByRules) {
    suppress("", {}, M::MSGTYPE_INFO);
    {
        const M::QuietScope quiet;
        M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    }
    EXPECT_EQ(Project::beginMsgControlRules("")->second->count, 0u);
}

TEST_F(ComMsgMgrRules, aRuleHoldsInEveryModeAndTheModeIsAskedAfterIt) {
    grade("", {"Plain"}, any, M::MSGTYPE_STATUS);
    auto message = trial(M::MSGTYPE_INFO, "@90-1@", {});
    message.setDisplayInModes(M::MODE_OOC);
    M::sendMsg(message);
    EXPECT_EQ(logged(), "");
    Project::setOperatingMode(M::MODE_OOC);
    M::sendMsg(message);
    EXPECT_EQ(logged(), "STATUS: [Trial 90-1] Plain.\n");
    EXPECT_EQ(M::getMsgCount(M::MSGTYPE_STATUS), 2u);
}

TEST_F(ComMsgMgrRules, outputAndTracesHaveNoRules) {
    suppress("", {}, any);
    suppress("", {"text"}, any);
    M::addScope("scope", 3);
    M::sendMsgString("common", M::MSGTYPE_OUTPUT, "text");
    M::sendScopedMsg("scope", M::MSGTYPE_TRACE | 3, "text");
    EXPECT_EQ(logged(), "text\ntext\n");
}

TEST_F(ComMsgMgrRules, aMaskOfSeveralSeveritiesIsJudgedByTheMostSerious) {
    suppress("", {}, M::MSGTYPE_INFO);
    M::sendMsgString("common", M::MSGTYPE_INFO | M::MSGTYPE_ERROR, "text");
    EXPECT_EQ(logged(), "ERROR: text\n");
}

TEST_F(ComMsgMgrRules, theStampStandsBehindTheNewSeverity) {
    grade("Trial 90-1", {}, any, M::MSGTYPE_CRITICAL_WARNING);
    M::turnOnTimeStamp();
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    EXPECT_THAT(logged(), ::testing::MatchesRegex("CRITICAL WARNING: .Trial 90-1. [-0-9]+ [:0-9]+ Plain.\n"));
}

TEST_F(ComMsgMgrRules, qualifiersNameExactlyTheRulesMadeWithThem) {
    suppress("A", {"x", "y"}, M::MSGTYPE_INFO);
    grade("A", {"x", "y"}, M::MSGTYPE_INFO, M::MSGTYPE_STATUS);
    suppress("A");
    EXPECT_TRUE(Rules::isMsgControlRuleExist({"y", "x"}, "A", M::MSGTYPE_INFO, true, any, false));
    EXPECT_TRUE(
        Rules::isMsgControlRuleExist({"x", "y"}, "A", M::MSGTYPE_INFO, false, M::MSGTYPE_STATUS, true));
    EXPECT_FALSE(
        Rules::isMsgControlRuleExist({"x", "y"}, "A", M::MSGTYPE_INFO, false, M::MSGTYPE_WARNING, false));
    EXPECT_FALSE(Rules::isMsgControlRuleExist({"x", "x"}, "A", M::MSGTYPE_INFO, true, any, false));
    EXPECT_FALSE(Rules::isMsgControlRuleExist({"x", "y"}, "", M::MSGTYPE_INFO, true, any, false));
    EXPECT_EQ(Rules::removeMsgControlRule({"x", "y"}, "A", any, M::SUPPRESS_RULE), 0u);
    EXPECT_EQ(Rules::removeMsgControlRule({"x", "y"}, "A", M::MSGTYPE_INFO, M::SUPPRESS_RULE), 1u);
    EXPECT_EQ(Rules::removeMsgControlRule({"y", "x"}, "A", M::MSGTYPE_INFO, M::SEVERITY_RULE), 1u);
    EXPECT_EQ(Rules::removeMsgControlRule({}, "A", any, M::SEVERITY_RULE), 0u);
    EXPECT_EQ(Rules::getNumberOfSuppressRules(""), 1);
    Rules::removeAllMsgControlRules();
    EXPECT_TRUE(Project::beginMsgControlRules("") == Project::endMsgControlRules(""));
}

TEST_F(ComMsgMgrRules, hiddenRulesAreSeenByThoseWhoAskForThem) {
    const std::string hidden = make({.id = "A", .suppress = true, .visible = false});
    EXPECT_FALSE(Rules::isMsgControlRuleExist({}, "A", any, true, any, true));
    EXPECT_TRUE(Rules::isMsgControlRuleExist({}, "A", any, true, any, false));
    EXPECT_EQ(Rules::getMsgControlRuleConfig({}, "", any, true, true, false, -1), "There are none.");
    EXPECT_NE(Rules::getMsgControlRuleConfig({}, "", any, true, true, true, -1), "There are none.");
    EXPECT_EQ(Rules::getMsgControlRuleConfig({}, "", any, true, true, true, 8), "There are none.");
    EXPECT_EQ(Rules::removeMsgControlRuleByRuleId(hidden, false), 0u);
    EXPECT_EQ(Rules::removeMsgControlRuleByRuleId(hidden, true), 1u);
}

TEST_F(ComMsgMgrRules, aRuleIsToldInWords) {
    make({.strings = {"x", "y", "z"},
          .id = "A",
          .severity = M::MSGTYPE_INFO,
          .limit = 3,
          .ruleId = "r",
          .notes = "why",
          .author = "me",
          .timeStamp = "now"});
    EXPECT_EQ(Rules::getMsgControlRuleConfig("r", false, true),
              "r: show 3 of the INFO messages with the id 'A' that contain 'x', 'y' and 'z'");
    EXPECT_EQ(
        Rules::getMsgControlRuleConfig("r", true, false),
        "show 3 of the INFO messages with the id 'A' that contain 'x', 'y' and 'z', by me, made now: why");
    EXPECT_EQ(Rules::getMsgControlRuleConfig("nosuch", false, false), "");
    EXPECT_EQ(Rules::getMsgControlRuleConfig({}, "A", M::MSGTYPE_INFO, false, false, false, -1),
              "r  A  INFO  x  limit 3  0\n            y\n            z");
}

TEST_F(ComMsgMgrRules, attributesHoldAllOfARule) {
    make({.strings = {"x", "a\nb"},
          .id = "A",
          .severity = M::MSGTYPE_INFO,
          .source = 8,
          .regexp = true,
          .limit = 3,
          .newSeverity = M::MSGTYPE_ADVISORY,
          .ruleId = "r",
          .notes = "n",
          .author = "a",
          .timeStamp = "t",
          .visible = false,
          .kept = false});
    Rule::Attributes list, again;
    Project::beginMsgControlRules("")->second->getMsgRuleAttributes(list);
    Rules::removeAllMsgControlRules();
    EXPECT_EQ(Rules::restoreMsgControlRule(list, "", true), "r");
    Project::beginMsgControlRules("")->second->getMsgRuleAttributes(again);
    EXPECT_EQ(list, again);
    EXPECT_NE(Rules::restoreMsgControlRule({{"id", "B"}, {"suppress", "1"}, {"ruleid", "s"}}, "", false),
              "s");
}

TEST_F(ComMsgMgrRules, whatIsMadeAgainKeepsItsPlaceAmongTheOthers) {
    for (const char* id : {"r9", "r10"})
        make({.id = "A", .newSeverity = id[1] == '9' ? M::MSGTYPE_STATUS : M::MSGTYPE_WARNING, .ruleId = id});
    std::vector<Rule::Attributes> lists;
    for (auto at = Project::beginMsgControlRules(""); at != Project::endMsgControlRules(""); ++at)
        at->second->getMsgRuleAttributes(lists.emplace_back());
    Rules::removeAllMsgControlRules();
    for (const Rule::Attributes& list : lists) // r10 comes first
        Rules::restoreMsgControlRule(list, "", true);
    M::sendMsgById("A", 1, M::MSGTYPE_INFO, "other");
    M::sendMsg(ComMsgMgrInstance::fromText("common", M::MSGTYPE_INFO, "A", "text"));
    EXPECT_EQ(logged(), "INFO: [A-1] other\nWARNING: [A] text\n");
    EXPECT_THROW(Rules::restoreMsgControlRule({{"id", "A"}, {"suppress", "1"}, {"order", "-1"}}, "", true),
                 HEXError);
    EXPECT_THROW(Rules::restoreMsgControlRule(
                     {{"id", "A"}, {"suppress", "1"}, {"order", "18446744073709551615"}}, "", true),
                 HEXError);
}

TEST_F(ComMsgMgrRules, aRuleThatCannotBeIsRefused) {
    const auto reason = [](ComMsgMgrRuleParts parts) -> std::string {
        try {
            make(std::move(parts));
            return "made";
        } catch (const HEXError& error) {
            return error.message().id();
        }
    };
    EXPECT_EQ(reason({.id = "A"}), "Common 17-5463");
    EXPECT_EQ(reason({.id = "A", .newSeverity = 0}), "Common 17-5463");
    EXPECT_EQ(reason({.id = "A", .newSeverity = M::MSGTYPE_INFO | M::MSGTYPE_ERROR}), "Common 17-5463");
    EXPECT_EQ(reason({.id = "A", .severity = 0, .suppress = true}), "Common 17-5469");
    EXPECT_EQ(reason({.id = "A", .severity = M::MSGTYPE_OUTPUT, .suppress = true}), "Common 17-5469");
    EXPECT_EQ(reason({.strings = {"a", ""}, .suppress = true}), "Common 17-5461");
    EXPECT_EQ(reason({.strings = {"a", "(b"}, .regexp = true, .suppress = true}), "Common 17-5460");
    EXPECT_EQ(reason({.strings = {"a", "(b"}, .suppress = true}), "made");
    EXPECT_THROW(Rules::restoreMsgControlRule({{"nosuch", "1"}}, "", true), HEXError);
    EXPECT_THROW(Rules::restoreMsgControlRule({{"limit", "99999999999"}}, "", true), HEXError);
}

TEST_F(ComMsgMgrRules, aWalkSeesTheRulesAsTheyWereWhenItBegan) {
    suppress("A");
    suppress("B");
    auto at = Project::beginMsgControlRules("");
    Rules::removeAllMsgControlRules();
    int count = 0;
    for (; at != Project::endMsgControlRules(""); ++at)
        ++count;
    EXPECT_EQ(count, 2);
}

TEST_F(ComMsgMgrRules, windowsMakeRulesFromMessages) {
    const auto message = trial(M::MSGTYPE_INFO, "@90-1@", {});
    Rules::addSuppressRuleCmd("", {}, true, any, &message, false, M::GUI_CREATED_FROM_MSG, "", "", "");
    M::sendMsg(message);
    EXPECT_EQ(logged(), "");
    std::vector<std::string> list;
    EXPECT_EQ(Rules::getSuppressRules(list, M::GUI_CREATED_FROM_MSG, ""), 1);
    EXPECT_THAT(list,
                ::testing::ElementsAre(::testing::EndsWith("suppress messages with the id 'Trial 90-1'")));
    EXPECT_EQ(Rules::getSuppressRules(list, M::GUI_CREATED_FROM_RULE, ""), 0);
}

TEST_F(ComMsgMgrRules, familiesOfChecksAreFoundByTheFirstWordOfAnId) {
    for (const char* id : {"DRC 23-20", "[DRC 23-20]", "DRC-1", "ADRC-123", "DRC"})
        EXPECT_EQ(M::matchesDRCPrefix(id), "DRC") << id;
    EXPECT_EQ(M::matchesDRCPrefix("CDC 1-1"), "CDC");
    for (const char* id : {"", "[]", "Common 17-1", "drc 1-1", "DRCS-1"})
        EXPECT_EQ(M::matchesDRCPrefix(id), "") << id;
    M::addDRCPrefix("MyCheck", "MINE");
    EXPECT_EQ(M::matchesDRCPrefix("MyCheck 1-1"), "MINE");
}

TEST_F(ComMsgMgrRules, redirectedMessagesLeaveTheLogAndComeBack) {
    TempDir dir;
    const std::string file = dir.path("a.txt");
    ASSERT_TRUE(Rules::createRedirect("Trial 90-1", file));
    ASSERT_TRUE(Rules::createRedirect("Mine-1", file));
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    EXPECT_EQ(read_file(file), "INFO: [Trial 90-1] Plain.\n");
    M::sendMsgById("Mine", 1, M::MSGTYPE_INFO, "two\nlines");
    M::sendMsgString("common", M::MSGTYPE_INFO, "no id");
    EXPECT_EQ(logged(), "INFO: no id\n");
    EXPECT_EQ(console->all(), "INFO: [Trial 90-1] Plain.\nINFO: [Mine-1] two\nlines\nINFO: no id\n");
    EXPECT_TRUE(Rules::cancelRedirect("[Mine-1]"));
    EXPECT_FALSE(Rules::cancelRedirect("Mine-1"));
    M::sendMsgById("Mine", 1, M::MSGTYPE_INFO, "three");
    EXPECT_EQ(logged(), "INFO: [Mine-1] three\n");
    EXPECT_EQ(read_file(file), "INFO: [Trial 90-1] Plain.\nINFO: [Mine-1] two\nlines\n");
    M::uninit();
    std::vector<std::string> list;
    Rules::getRedirects(list, "");
    EXPECT_TRUE(list.empty());
}

TEST_F(ComMsgMgrRules, aFileThatTakesNothingLosesNoMessage) {
    ASSERT_TRUE(Rules::createRedirect("Trial 90-1", "/dev/full"));
    M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
    EXPECT_EQ(logged(), "INFO: [Trial 90-1] Plain.\n");
}

TEST_F(ComMsgMgrRules, aFileThatWasRemovedLosesNoMessageAndCanBeMadeAnew) {
    TempDir dir;
    const std::string file = dir.path("a.txt");
    for (const char* text : {"one", "two"}) {
        ASSERT_TRUE(Rules::createRedirect("Mine-1", file));
        M::sendMsgById("Mine", 1, M::MSGTYPE_INFO, text);
        EXPECT_EQ(read_file(file), std::string("INFO: [Mine-1] ") + text + '\n');
        std::filesystem::remove(file);
    }
    M::sendMsgById("Mine", 1, M::MSGTYPE_INFO, "three");
    EXPECT_EQ(logged(), "INFO: [Mine-1] three\n");
}

TEST_F(ComMsgMgrRules, filesThatCannotBeRedirectedTo) {
    TempDir dir;
    for (const std::string& file :
         {std::string(), dir.root().string(), dir.path("no/such"), dir.path(std::string("a\0b", 3))})
        EXPECT_FALSE(Rules::createRedirect("Trial 90-1", file)) << file;
}

TEST_F(ComMsgMgrRules, heldMessagesAreRedirectedWhenTheyAreReleased) {
    TempDir dir;
    const std::string file = dir.path("a.txt");
    ASSERT_TRUE(Rules::createRedirect("Trial 90-1", file));
    std::thread([&] {
        const int thread = ComMsgMgrThreadIface::getMyThreadId();
        ComMsgMgrThreadIface::holdMsgsForThread(thread);
        M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
        EXPECT_EQ(read_file(file), "");
        ComMsgMgrThreadIface::releaseMsgsForThread(thread);
    }).join();
    EXPECT_EQ(read_file(file), "INFO: [Trial 90-1] Plain.\n");
}

TEST_F(ComMsgMgrRules, rulesMayChangeWhileThreadsSend) {
    M::setMsgLimit(UINT_MAX, "Trial 90-1");
    M::setMsgLimit(UINT_MAX, "Trial 90-2");
    constexpr int threads = 4, messages = 2000;
    std::atomic<int> running{threads};
    std::vector<std::thread> senders;
    for (int i = 0; i < threads; ++i)
        senders.emplace_back([&] {
            for (int n = 0; n < messages; ++n) {
                M::sendMsg("trial", M::MSGTYPE_INFO, "@90-1@\n");
                M::sendMsg("trial", M::MSGTYPE_WARNING, "@90-2@%s\n", "needle in the text");
            }
            --running;
        });
    for (int n = 0; running > 0; ++n) {
        const std::string byId = suppress("Trial 90-1");
        const std::string byText = suppress("", {"needle" + std::to_string(n % 7)});
        const std::string byPattern =
            make({.strings = {"ne+dle", "text"}, .regexp = true, .newSeverity = M::MSGTYPE_STATUS});
        const std::string bySeverity = suppress("", {}, M::MSGTYPE_ADVISORY);
        (void)Rules::getMsgControlRuleConfig({}, "", any, true, true, true, -1);
        for (const std::string& rule : {byId, byText, byPattern, bySeverity})
            EXPECT_EQ(Rules::removeMsgControlRuleByRuleId(rule, true), 1u);
    }
    for (std::thread& sender : senders)
        sender.join();
    const std::string text = logged();
    EXPECT_EQ(static_cast<unsigned>(std::count(text.begin(), text.end(), '\n')),
              M::getMsgCount("Trial 90-1") + M::getMsgCount("Trial 90-2"));
    EXPECT_EQ(M::getMsgCount("Trial 90-2"), unsigned(threads * messages));
    EXPECT_EQ(M::getMsgCount(M::MSGTYPE_WARNING) + M::getMsgCount(M::MSGTYPE_STATUS),
              unsigned(threads * messages));
}

TEST_F(ComMsgMgrRules, aProjectKeepsWhatIsMadeWhileItIsOpen) {
    TempDir dir;
    Project::openProject(dir.root().string());
    EXPECT_EQ(Project::getProject(), std::filesystem::canonical(dir.root()).string());
    suppress("A");
    make({.id = "B", .suppress = true, .kept = false});
    const auto count = [](const std::string& scope) {
        return std::distance(Project::beginMsgControlRules(scope), Project::endMsgControlRules(scope));
    };
    EXPECT_EQ(count(""), 2);
    EXPECT_EQ(count(dir.root().string()), 1);
    EXPECT_EQ(count("/"), 0);
    Project::closeProject();
    EXPECT_EQ(count(""), 1);
    EXPECT_EQ(count(dir.root().string()), 0);
    Project::openProject(dir.root().string());
    Project::openProject(dir.root().string() + "/.");
    EXPECT_EQ(count(""), 2);
    M::uninit();
    EXPECT_EQ(count(""), 0);
    EXPECT_EQ(Project::getProject(), "");
    Project::openProject(dir.root().string());
    EXPECT_EQ(Project::beginMsgControlRules("")->second->parts().id, "A");
}

TEST_F(ComMsgMgrRules, whatABatchHasLeftIsSavedBeforeTheNextCommand) {
    TempDir dir;
    const std::string file = dir.path(Project::ruleFileName);
    Project::openProject(dir.root().string());
    for (int i = 0; i < 100; ++i)
        suppress("A-" + std::to_string(i));
    M::beginCommand();
    const std::string all = read_file(file);
    EXPECT_EQ(std::size_t(100), [&] {
        std::size_t rules = 0;
        for (std::size_t at = all.find("\nrule\n"); at != std::string::npos;
             at = all.find("\nrule\n", at + 1))
            ++rules;
        return rules;
    }());
    suppress("last");
    EXPECT_EQ(read_file(file), all);
    M::beginCommand();
    EXPECT_NE(read_file(file).find("\"last\""), std::string::npos);
}

TEST(RuleText, aWordOfACommandStandsForItsText) {
    using com_msg_mgr::tcl_word;
    EXPECT_EQ(tcl_word("plain-1"), "plain-1");
    EXPECT_EQ(tcl_word(""), "{}");
    EXPECT_EQ(tcl_word("a b"), "{a b}");
    EXPECT_EQ(tcl_word("a {b} $c"), "{a {b} $c}");
    EXPECT_EQ(tcl_word("}{"), "\\}\\{");
    EXPECT_EQ(tcl_word("a\\b"), "a\\\\b");
    EXPECT_EQ(tcl_word("a\nb c"), "a\\nb\\ c");
    EXPECT_EQ(tcl_word(std::string_view("\0", 1)), "\\000");
}

TEST(RuleText, literalsThatEveryMatchHas) {
    using com_msg_mgr::required_literal;
    for (const auto& [expression, literal] : std::vector<std::pair<std::string, std::string>>{
             {"", ""},
             {"cell", "cell"},
             {"cell u[0-9]+", "cell u"},
             {"^a.*the end$", "the end"},
             {"colou?r", "colo"},
             {"ab*cde", "cde"},
             {"ab+cd", "ab"},
             {"a{0,3}bcd", "bcd"},
             {"one|three", ""},
             {"(?i)abc", ""},
             {"(abc)*de", "de"},
             {"x(a(b)\\)c)yz", "yz"},
             {"[])(]abc[^]]", "abc"},
             {"[[:alpha:]x]ab", "ab"},
             {"a\\.b\\[c", "a.b[c"},
             {"abc\\d+efgh", "efgh"},
             {"\\Qab*c\\E", ""},
             {"(\\Q)abc\\E)?de", ""},
             {"{[a{0}b ]cd", "cd"},
             {"a{b}cd", "b}cd"},
             {"abc\\x41", "abc"},
             {"\\pLabc", ""},
             {"gr\xc3\xb6\xc3\x9f?er", "gr"},
         })
        EXPECT_EQ(required_literal(expression), literal) << expression;
}

TEST(RuleText, noMatchIsWithoutItsLiteral) {
    std::mt19937 random(17);
    const auto pick = [&](std::string_view letters) { return letters[random() % letters.size()]; };
    int matches = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string pattern, text;
        for (unsigned n = random() % 9 + 1; n > 0; --n)
            pattern += pick("aaabbbccQE.*+?|()[]^{}\\1,-$d");
        RE2::Options options;
        options.set_log_errors(false);
        const RE2 expression(pattern, options);
        const std::string literal = com_msg_mgr::required_literal(pattern);
        if (!expression.ok())
            continue;
        for (int t = 0; t < 10; ++t) {
            text.clear();
            for (unsigned n = random() % 12; n > 0; --n)
                text += pick("aaabbbcc[]{}()1,d.");
            if (RE2::PartialMatch(text, expression)) {
                ++matches;
                ASSERT_NE(text.find(literal), std::string::npos) << pattern << " on " << text;
            }
        }
    }
    EXPECT_GT(matches, 1000);
}

TEST(RuleIndex, findsWhatTryingEveryRuleFinds) {
    std::mt19937 random(4);
    const auto word = [&](unsigned most) {
        std::string text;
        for (unsigned n = random() % most + 1; n > 0; --n)
            text += "abc"[random() % 3];
        return text;
    };
    std::vector<std::unique_ptr<com_msg_mgr::RuleEntry>> entries;
    com_msg_mgr::StringRuleIndex index;
    for (std::uint64_t round = 0; round < 3000; ++round) {
        if (entries.size() > 40 || (!entries.empty() && random() % 3 == 0)) {
            const std::size_t victim = random() % entries.size();
            index.remove(entries[victim].get());
            entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(victim));
        } else {
            ComMsgMgrRuleParts parts{.strings = {word(6)}, .regexp = random() % 4 == 0, .suppress = true};
            if (random() % 2)
                parts.strings.push_back(word(3));
            parts.severity = random() % 2 ? M::MSGTYPE_INFO : any;
            parts.order = round;
            const std::uint64_t rank = com_msg_mgr::RuleEntry::rankOf(parts);
            entries.push_back(std::make_unique<com_msg_mgr::RuleEntry>(
                com_msg_mgr::RuleEntry{std::make_shared<const Rule>(std::move(parts)), rank, false}));
            index.add(entries.back().get());
        }
        const std::string text = word(12);
        for (const M::MsgMask severity : {M::MSGTYPE_INFO, M::MSGTYPE_ERROR}) {
            const com_msg_mgr::RuleEntry* best = nullptr;
            for (const auto& entry : entries)
                if ((entry->rule->parts().severity & severity) && entry->rule->matchesText(text) &&
                    (!best || entry->rank > best->rank))
                    best = entry.get();
            ASSERT_EQ(index.find(severity, text), best) << text;
        }
    }
}

} // namespace
