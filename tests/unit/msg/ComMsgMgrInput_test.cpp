// What the message manager makes of masks, ids and texts that nobody should give it.
#include "support.h"

#include <algorithm>
#include <climits>
#include <random>

namespace {

using M = ComMsgMgr;
class ComMsgMgrInput : public MsgTest {};

TEST_F(ComMsgMgrInput, eachSingleBitOfAMaskGoesToItsPlaceOrNowhere) {
    const M::MsgMask severities = M::MSGTYPE_SEVERITIES;
    const M::MsgMask toConsole = severities | M::MSGTYPE_LINE | M::MSGTYPE_ERRORINFO | M::MSGTYPE_OUTPUT |
                                 M::MSGTYPE_TRACED_COMMAND | M::MSGTYPE_SESSION_COMMAND;
    const M::MsgMask toJournal = M::MSGTYPE_USER_COMMAND | M::MSGTYPE_SESSION_COMMAND | M::MSGTYPE_HEADER;
    const M::MsgMask toLog = toConsole | toJournal;
    for (int bit = 0; bit < 32; ++bit) {
        const M::MsgMask mask = M::MsgMask(1) << bit;
        M::sendMsgString("common", mask, "text");
        EXPECT_EQ(console->texts().size(), (mask & toConsole) != 0) << bit;
        EXPECT_EQ(log->texts().size(), (mask & toLog) != 0) << bit;
        EXPECT_EQ(journal->texts().size(), (mask & toJournal) != 0) << bit;
        for (const auto& sink : {console, log, journal})
            sink->clear();
    }
}

TEST_F(ComMsgMgrInput, aMaskOfManyBitsIsShownOnceWithItsMostSeriousWord) {
    M::sendMsgString("common", 0xFFFFFFFFu, "text");
    ASSERT_EQ(console->texts().size(), 1u);
    EXPECT_EQ(log->texts(), console->texts());
    EXPECT_THAT(console->all(), ::testing::EndsWith(": text\n"));
    console->clear();
    M::sendMsgById("A", 1, M::MSGTYPE_WARNING | M::MSGTYPE_CRITICAL_WARNING | M::MSGTYPE_OUTPUT, "text");
    EXPECT_EQ(console->all(), "CRITICAL WARNING: [A-1] text\n");
}

TEST_F(ComMsgMgrInput, noMaskMakesItFailOrGoToAPlaceTwice) {
    std::mt19937 random(20261121);
    for (int i = 0; i < 5000; ++i) {
        const M::MsgMask mask = random();
        M::sendMsgString("common", mask, "text");
        M::sendMsgById("Odd", static_cast<int>(random() % 50), mask, "text");
        M::sendScopedMsg("odd", mask, "text");
        M::sendMsg(trial(mask, "@90-1@", {}));
        for (const auto& sink : {console, log, journal}) {
            EXPECT_LE(sink->texts().size(), 8u) << std::hex << mask; // with a notice of the limit for each
            sink->clear();
        }
    }
}

TEST_F(ComMsgMgrInput, oddIdsHaveCountsAndLimitsOfTheirOwn) {
    const std::string large(10'000'000, 'i');
    for (const std::string& prefix :
         {std::string(), std::string(" "), std::string("-"), std::string("[x]"), std::string("%s%n"),
          std::string("a\0b", 3), std::string("\xff\xc3"), std::string("\n"), large}) {
        const std::string id = prefix + "-0";
        M::setMsgLimit(1, id);
        EXPECT_EQ(M::getMsgLimit(id), 1u);
        M::sendMsgById(prefix, 0, M::MSGTYPE_INFO, "shown");
        M::sendMsgById(prefix, 0, M::MSGTYPE_INFO, "silent");
        EXPECT_EQ(M::getMsgCount(id), 2u);
        const auto texts = console->texts();
        EXPECT_EQ(texts.front(), "INFO: [" + id + "] shown\n");
        EXPECT_EQ(std::count(texts.begin(), texts.end(), "INFO: [" + id + "] silent\n"), 0);
        console->clear();
    }
}

TEST_F(ComMsgMgrInput, helpOnAnIdThatIsNoneSaysSo) {
    const std::string large(1'000'000, '[');
    for (const std::string& id : {std::string(), std::string("-"), std::string("[]"), std::string("Common"),
                                  std::string("Common 17-"), std::string("Common 17-99999999999999999999"),
                                  std::string("a\0b", 3), std::string("%s"), large}) {
        std::string text;
        EXPECT_FALSE(M::getHelpOnMessage(id, text));
        EXPECT_FALSE(text.empty());
    }
}

TEST_F(ComMsgMgrInput, countsOfUnknownIdsAndSeveritiesAreNone) {
    EXPECT_EQ(M::getMsgCount(std::string("never sent")), 0u);
    EXPECT_EQ(M::getMsgCount(M::MsgMask(0)), 0u);
    EXPECT_EQ(M::getMsgCount(M::MSGTYPE_OUTPUT), 0u);
    M::resetMsgCount("[");
    M::resetMsgCount("");
    M::setMsgLimit(3, M::MsgMask(0));
    M::sendMsgById("A", INT_MAX, M::MSGTYPE_INFO, "text");
    EXPECT_EQ(console->all(), "INFO: [A-2147483647] text\n");
}

} // namespace
