#include "support.h"

#include "platform/msg/ComMsgMgrFile.h"

namespace {

using M = ComMsgMgr;

const std::string head = "subsystem trial 90 \"Trial\"\n";
const std::string fields = " description \"d\" resolution \"r\"\n";

/// "line:column: what" of each problem of a text.
std::string problems_of(const std::string& text, const std::string& subsystem = "") {
    ComMsgMgrFile file(subsystem, "x.msg");
    file.readText(text);
    std::string result;
    for (const auto& problem : file.problems())
        result +=
            std::to_string(problem.line) + ':' + std::to_string(problem.column) + ": " + problem.what + '\n';
    return result;
}

TEST(ComMsgMgrFileTest, aMessageMayBeMarkedAsNotUsedYet) {
    ComMsgMgrFile file("", "");
    EXPECT_TRUE(file.readText(head + "message 90-1 ERROR \"x\"" + fields +
                              "    reserved\nmessage 90-2 ERROR \"y\"" + fields));
    EXPECT_EQ(file.entries().size(), 2u);
}

TEST(ComMsgMgrFile, readsSubsystemAndMessages) {
    ComMsgMgrFile file("trial", "x.msg");
    ASSERT_TRUE(file.readText(
        "# comment\n" + head +
        "message 90-7 CRITICAL_WARNING \"Text with \\\"quotes\\\", \\\\ and # of %d.\" # remark\n"
        "    description \"Runs over   \n      two lines.\"\n"
        "    resolution \"First.\\nSecond.\"\n"));
    EXPECT_EQ(file.subsystem(), "trial");
    EXPECT_EQ(file.alias(), "Trial");
    EXPECT_EQ(file.subsystemNumber(), 90u);
    ASSERT_EQ(file.entries().size(), 1u);
    const auto& entry = file.entries()[0];
    EXPECT_EQ(entry.number, "90-7");
    EXPECT_EQ(entry.severity, M::MSGTYPE_CRITICAL_WARNING);
    EXPECT_EQ(entry.text, "Text with \"quotes\", \\ and # of %d.");
    EXPECT_EQ(entry.description, "Runs over two lines.");
    EXPECT_EQ(entry.resolution, "First.\nSecond.");
    EXPECT_EQ(entry.line, 3u);
}

TEST(ComMsgMgrFile, aFaultIsToldWithLineAndColumn) {
    EXPECT_EQ(problems_of(head + "message 90-1 EROR \"x\"" + fields),
              "2:14: a severity is ERROR, CRITICAL_WARNING, WARNING, INFO, STATUS or ADVISORY, not 'EROR'\n");
    EXPECT_EQ(problems_of(head + "mesage 90-1"),
              "2:1: 'subsystem' or 'message' is expected here, not 'mesage'\n");
    EXPECT_EQ(problems_of(head + "message 17-1 ERROR \"x\"" + fields),
              "2:9: a message number of this subsystem looks like 90-153, not '17-1'\n");
    EXPECT_EQ(problems_of(head + "message 90-1 ERROR text" + fields),
              "2:20: the message's text in double quotes is expected here, not 'text'\n");
    EXPECT_EQ(problems_of(head + "message 90-1 ERROR \"x\" resolution \"r\""),
              "2:24: the description of the message '90-1' is expected here\n");
    EXPECT_EQ(problems_of(head + "message 90-1 ERROR \"x\" description \"d\""),
              "2:39: the resolution of the message '90-1' is expected here\n");
}

TEST(ComMsgMgrFile, columnsCountCharactersNotBytes) {
    EXPECT_EQ(problems_of(head + "message 90-1 ERROR \"\xc3\xa4\xc3\xb6\" x"),
              "2:25: the description of the message '90-1' is expected here\n");
}

TEST(ComMsgMgrFile, anUnclosedStringIsToldWhereItBegins) {
    EXPECT_EQ(problems_of(head + "message 90-1 ERROR \"x\n\n\n"),
              "2:20: the string that begins here is not closed\n");
    EXPECT_EQ(problems_of(head + "message 90-1 ERROR \"a\\q\"" + fields),
              "2:22: the escapes of a string are \\\", \\\\, \\n and \\t\n");
    EXPECT_EQ(problems_of(head + "message 90-1 ERROR \"a\\"),
              "2:22: the escapes of a string are \\\", \\\\, \\n and \\t\n");
}

TEST(ComMsgMgrFile, unsoundConversionsAreRefused) {
    EXPECT_EQ(problems_of(head + "message 90-1 ERROR \"50% of\"" + fields),
              "2:20: '% o' in the text is no conversion; a percent sign is written %%\n");
    EXPECT_EQ(problems_of(head + "message 90-1 ERROR \"%n\"" + fields),
              "2:20: '%n' in the text is no conversion; a percent sign is written %%\n");
    EXPECT_EQ(problems_of(head + "message 90-1 ERROR \"50%\"" + fields),
              "2:20: '%' in the text is no conversion; a percent sign is written %%\n");
    EXPECT_EQ(problems_of(head + "message 90-1 ERROR \"50%% %s %-5.2f %lu\"" + fields), "");
}

TEST(ComMsgMgrFile, argumentsHaveOneTypeAndNoneIsLeftOut) {
    const auto fault = [](const std::string& text) {
        return problems_of(head + "message 90-1 ERROR \"" + text + "\"" + fields);
    };
    EXPECT_EQ(fault("%2$s %1$d %1$5u"), "");
    EXPECT_EQ(fault("%1$s and %1$d"),
              "2:20: the argument 1 stands in the text with two types that do not go together\n");
    EXPECT_EQ(fault("%1$s and %s"), "2:20: the text numbers some of its conversions and not the others\n");
    EXPECT_EQ(fault("%1$s and %3$s"), "2:20: the text leaves out the argument 2\n");
    EXPECT_EQ(fault("%0$s"), "2:20: '%0$s' has no sound number of an argument; they count from 1\n");
    EXPECT_EQ(fault("%99999999999$s"),
              "2:20: '%99999999999$s' has no sound number of an argument; they count from 1\n");
}

TEST(ComMsgMgrFile, allFaultsOfOneMessageAreTold) {
    EXPECT_EQ(problems_of(head + "message 17-1 EROR \"%q and %y\"" + fields),
              "2:9: a message number of this subsystem looks like 90-153, not '17-1'\n"
              "2:14: a severity is ERROR, CRITICAL_WARNING, WARNING, INFO, STATUS or ADVISORY, not 'EROR'\n"
              "2:19: '%q' in the text is no conversion; a percent sign is written %%\n"
              "2:19: '%y' in the text is no conversion; a percent sign is written %%\n");
}

TEST(ComMsgMgrFile, aMessageThatStandsThereTwiceIsTold) {
    EXPECT_EQ(problems_of(head + "message 90-1 ERROR \"x\"" + fields + "message 90-1 INFO \"y\"" + fields),
              "3:9: the message '90-1' stands in the file already\n");
}

TEST(ComMsgMgrFile, bytesThatAreNoTextAreToldOncePerLine) {
    EXPECT_EQ(problems_of(head + "# \xe4 \xf6\nmessage 90-1 ERROR \"\xc3\xa4 \xff\"" + fields +
                          std::string("#\0", 2)),
              "2:3: the byte 0xE4 is no text in UTF-8\n"
              "3:23: the byte 0xFF is no text in UTF-8\n"
              "4:2: the byte 0x00 is no text in UTF-8\n");
    EXPECT_EQ(problems_of("\xEF\xBB\xBF" + head), "");
    EXPECT_NE(problems_of(std::string("\xff\xfes\0u\0b\0", 8)), "");
}

TEST(ComMsgMgrFile, aTextThatBeginsWithAnOpenStringIsAFaultAndNoCrash) {
    EXPECT_EQ(problems_of("\"open"), "1:1: the string that begins here is not closed\n");
}

TEST(ComMsgMgrFile, anEntryThatIsCutOffIsTold) {
    EXPECT_EQ(problems_of(head + "message 90-1"), "2:13: the file ends where a severity is expected\n");
    EXPECT_EQ(problems_of(head + "message 90-1 ERROR"),
              "2:19: the file ends where the message's text in double quotes is expected\n");
}

TEST(ComMsgMgrFile, oneFaultDoesNotHideTheMessagesBehindIt) {
    ComMsgMgrFile file("trial", "x.msg");
    EXPECT_FALSE(file.readText(head + "message 90-1 ERROR \"a\" description \"d\"\n   wrong \"r\"\n" +
                               "message 90-2 ERROR \"b\"" + fields + "message 90-2 INFO \"again\"" + fields +
                               "message 90-3 INFO \"c\"" + fields));
    ASSERT_EQ(file.entries().size(), 2u);
    EXPECT_EQ(file.entries()[0].number, "90-2");
    EXPECT_EQ(file.entries()[1].number, "90-3");
    ASSERT_EQ(file.problems().size(), 2u);
    EXPECT_EQ(file.problems()[0].line, 3u);
    EXPECT_EQ(file.problems()[1].what, "the message '90-2' stands in the file already");
}

TEST(ComMsgMgrFile, theSubsystemComesFirstOnceAndAsExpected) {
    EXPECT_EQ(problems_of(""), "0:0: the file has no 'subsystem' line\n");
    EXPECT_EQ(problems_of("message 90-1 ERROR \"x\""),
              "1:1: a 'subsystem' line must stand before the first message\n");
    EXPECT_EQ(problems_of(head + head), "2:1: the file belongs to the subsystem 'trial' already\n");
    EXPECT_EQ(problems_of(head, "other"), "0:0: the file is for the subsystem 'trial', not 'other'\n");
    EXPECT_EQ(problems_of("subsystem trial ninety \"T\""),
              "1:17: the subsystem's number is a whole number, not 'ninety'\n");
}

TEST(ComMsgMgrFile, noTextMakesItFail) {
    const std::string sound =
        head + "message 90-1 ERROR \"a %s\\n\"" + fields + "message 90-2 INFO \"b\"" + fields;
    for (std::size_t size = 0; size <= sound.size(); ++size) {
        ComMsgMgrFile file("trial", "x.msg");
        file.readText(sound.substr(0, size));
        std::string changed = sound;
        if (size < sound.size())
            changed[size] = static_cast<char>(0xE4);
        file.readText(changed);
    }
    ComMsgMgrFile file("trial", "x.msg");
    EXPECT_TRUE(file.readText(sound));
}

class ComMsgMgrFileInstalled : public MsgTest {};

TEST_F(ComMsgMgrFileInstalled, parseReportsEachFault) {
    TempDir dir;
    write_file(dir.path("a.msg"), head + "mesage\nmessage 90-1 ERROR \"x\"" + fields + "message 90-1\n");
    ComMsgMgrFile file("", dir.path("a.msg"));
    EXPECT_FALSE(file.parse());
    ASSERT_EQ(console->texts().size(), 3u);
    EXPECT_EQ(console->texts()[0],
              "ERROR: [Common 17-5151] The message file '" + dir.path("a.msg") +
                  "' has a fault in line 2, column 1: 'subsystem' or 'message' is expected here, "
                  "not 'mesage'.\n");
}

TEST_F(ComMsgMgrFileInstalled, aMissingFileIsAProblemAndNoCrash) {
    ComMsgMgrFile file("", "/nonexistent/a.msg");
    EXPECT_FALSE(file.parse());
    ASSERT_EQ(file.problems().size(), 1u);
    EXPECT_NE(console->all().find("/nonexistent/a.msg"), std::string::npos);
}

TEST_F(ComMsgMgrFileInstalled, theInstalledMessagesAreSound) {
    ComMsgMgrFile file("common", CORVANE_ROOT "/data/msg/common.msg");
    EXPECT_TRUE(file.read()) << (file.problems().empty() ? "" : file.problems()[0].what);
    EXPECT_GT(file.entries().size(), 20u);
}

TEST_F(ComMsgMgrFileInstalled, aFaultInAnInstalledFileIsToldOnceAndTheRestWorks) {
    ComMsgMgr::sendMsg(ComMsgMgrInstance("broken", M::MSGTYPE_ERROR, "@91-1@"));
    ComMsgMgr::sendMsg(ComMsgMgrInstance("broken", M::MSGTYPE_ERROR, "@91-2@"));
    ComMsgMgr::sendMsg(ComMsgMgrInstance("broken", M::MSGTYPE_ERROR, "@91-3@"));
    ASSERT_EQ(console->texts().size(), 5u) << console->all();
    EXPECT_EQ(console->texts()[0], "ERROR: [Broken 91-1] Sound.\n");
    EXPECT_NE(console->texts()[1].find("broken.msg' has a fault in line 3, column 14"), std::string::npos);
    EXPECT_NE(console->texts()[2].find("broken.msg' has a fault in line 4, column 1"), std::string::npos);
    EXPECT_EQ(console->texts()[3], "ERROR: [Broken 91-2] No text is installed for this message.\n");
    EXPECT_EQ(console->texts()[4], "ERROR: [Broken 91-3] No text is installed for this message.\n");
}

} // namespace
