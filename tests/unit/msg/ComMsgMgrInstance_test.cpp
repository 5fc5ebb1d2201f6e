#include "support.h"

#include <climits>
#include <filesystem>
#include <string>

namespace {

using M = ComMsgMgr;
class ComMsgMgrInstanceTest : public MsgTest {};

TEST_F(ComMsgMgrInstanceTest, lineHasSeverityIdAndText) {
    const ComMsgMgrInstance message("common", M::MSGTYPE_ERROR, "@17-153@%s\n", "nosuch");
    EXPECT_EQ(message.id(), "Common 17-153");
    EXPECT_EQ(message.text(), "No parameter is named 'nosuch'.");
    EXPECT_EQ(message.line(), "ERROR: [Common 17-153] No parameter is named 'nosuch'.");
    EXPECT_EQ(message.getMessage(), message.line() + "\n");
    EXPECT_EQ(message.number(), "17-153");
}

TEST_F(ComMsgMgrInstanceTest, eachTypeOfArgumentIsShown) {
    const ComMsgMgrInstance message("trial", M::MSGTYPE_WARNING, "@90-3@%s%d%u%f%c\n", std::string("x"), -3,
                                    4u, 0.125, 'q');
    EXPECT_EQ(message.text(), "x has -3 of 4, 0.12, q.");
}

TEST_F(ComMsgMgrInstanceTest, numbersOfFullWidthAreShownWhole) {
    EXPECT_EQ(ComMsgMgrInstance("trial", M::MSGTYPE_INFO, "@90-7@%ld", LONG_MIN).text(),
              std::to_string(LONG_MIN));
    EXPECT_EQ(ComMsgMgrInstance("trial", M::MSGTYPE_INFO, "@90-7@%lu", ULONG_MAX).text(),
              std::to_string(ULONG_MAX));
}

TEST_F(ComMsgMgrInstanceTest, pathsViewsAndNullTextAreTexts) {
    const char* none = nullptr;
    EXPECT_EQ(
        ComMsgMgrInstance("trial", M::MSGTYPE_INFO, "@90-6@%s%s", std::filesystem::path("/a/b"), none).text(),
        "/a/b and (null)");
    EXPECT_EQ(ComMsgMgrInstance("trial", M::MSGTYPE_INFO, "@90-2@%s", std::string_view("view")).text(),
              "One 'view'.");
}

TEST_F(ComMsgMgrInstanceTest, conversionsMayNameTheirArgument) {
    EXPECT_EQ(ComMsgMgrInstance("trial", M::MSGTYPE_INFO, "@90-4@%s%s", "a", "b").text(), "b before a.");
}

TEST_F(ComMsgMgrInstanceTest, widthsPrecisionsAndFlagsAreKept) {
    EXPECT_EQ(
        ComMsgMgrInstance("trial", M::MSGTYPE_INFO, "@90-5@%d%s%d%x%d%s", 42, "ab", 42, 255u, 7, "abcdef")
            .text(),
        "100% of [   42|ab   |00042|ff|+7|abc]");
}

TEST_F(ComMsgMgrInstanceTest, argumentsAreNeverReadAsFormats) {
    EXPECT_EQ(ComMsgMgrInstance("trial", M::MSGTYPE_INFO, "@90-6@%s%s", "%s%n%d%1$s%%", "%999999999d").text(),
              "%s%n%d%1$s%% and %999999999d");
}

TEST_F(ComMsgMgrInstanceTest, anyBytesSurvive) {
    const std::string bytes("a\0b\xff\xfe\xc3(\r\t\x1b[0m", 13);
    EXPECT_EQ(ComMsgMgrInstance("trial", M::MSGTYPE_ERROR, "@90-2@%s", bytes).text(), "One '" + bytes + "'.");
}

TEST_F(ComMsgMgrInstanceTest, aTextOfTenMegabytesSurvives) {
    const std::string large(10'000'000, 'x');
    const ComMsgMgrInstance message("trial", M::MSGTYPE_ERROR, "@90-2@%s", large);
    EXPECT_EQ(message.text(), "One '" + large + "'.");
    EXPECT_GE(message.bytes(), large.size());
}

TEST_F(ComMsgMgrInstanceTest, anArgumentOfAnotherTypeIsShownInItsOwnForm) {
    EXPECT_EQ(trial(M::MSGTYPE_INFO, "@90-7@%s", {std::string("text")}).text(), "text");
    EXPECT_EQ(trial(M::MSGTYPE_INFO, "@90-7@%f", {2.5}).text(), "2.5");
    EXPECT_EQ(trial(M::MSGTYPE_ERROR, "@90-2@%d", {std::int64_t(-7)}).text(), "One '-7'.");
}

TEST_F(ComMsgMgrInstanceTest, missingArgumentsLeaveTheirPlaceEmptyAndFurtherOnesAreIgnored) {
    EXPECT_EQ(trial(M::MSGTYPE_INFO, "@90-6@", {}).text(), " and ");
    EXPECT_EQ(trial(M::MSGTYPE_INFO, "@90-7@%d%d", {std::int64_t(1), std::int64_t(2)}).text(), "1");
}

TEST_F(ComMsgMgrInstanceTest, anUnknownMessageSaysSoWithItsArguments) {
    const ComMsgMgrInstance message("trial", M::MSGTYPE_ERROR, "@90-999@%s%d%f\n", "abc", 5, 1.5);
    EXPECT_EQ(message.line(), "ERROR: [Trial 90-999] No text is installed for this message. "
                              "Its arguments are 'abc', '5', '1.5'.");
    EXPECT_EQ(ComMsgMgrInstance("trial", M::MSGTYPE_ERROR, "@90-998@\n").text(),
              "No text is installed for this message.");
}

TEST_F(ComMsgMgrInstanceTest, anUnknownSubsystemGetsAnAliasFromItsName) {
    EXPECT_EQ(ComMsgMgrInstance("nowhere", M::MSGTYPE_INFO, "@5-1@").id(), "Nowhere 5-1");
    EXPECT_EQ(ComMsgMgrInstance("../msg/trial", M::MSGTYPE_INFO, "@5-1@").text(),
              "No text is installed for this message.");
}

TEST_F(ComMsgMgrInstanceTest, eachSeverityHasItsWord) {
    const auto line = [](M::MsgMask mask) { return trial(mask, "@90-1@", {}).line(); };
    EXPECT_EQ(line(M::MSGTYPE_CRITICAL_WARNING), "CRITICAL WARNING: [Trial 90-1] Plain.");
    EXPECT_EQ(line(M::MSGTYPE_WARNING), "WARNING: [Trial 90-1] Plain.");
    EXPECT_EQ(line(M::MSGTYPE_INFO), "INFO: [Trial 90-1] Plain.");
    EXPECT_EQ(line(M::MSGTYPE_STATUS), "STATUS: [Trial 90-1] Plain.");
    EXPECT_EQ(line(M::MSGTYPE_ADVISORY), "ADVISORY: [Trial 90-1] Plain.");
    EXPECT_EQ(line(M::MSGTYPE_OUTPUT), "Plain.");
}

TEST_F(ComMsgMgrInstanceTest, aKeyKnownAtRunTimeIsChecked) {
    for (const char* bad : {"", "@", "17-1", "@17@%s", "@17-@", "@-1@", "@17-1", "@17-1x@", "@1 7-1@"})
        EXPECT_THROW(trial(M::MSGTYPE_INFO, bad, {}), std::invalid_argument) << bad;
    EXPECT_EQ(trial(M::MSGTYPE_INFO, "@17-1@", {}).number(), "17-1");
}

} // namespace
