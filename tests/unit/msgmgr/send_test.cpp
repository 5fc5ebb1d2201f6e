// What the commands that send messages leave behind in the message manager.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../support/ConsoleTest.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/ComMsgMgrTclIface.h"
#include "platform/taskcore/task_manager.h"

using ::testing::HasSubstr;
using vek::tcltasks::task_manager;

namespace {

class NoSink : public ComMsgMgrSink {
    void write(std::string_view) override {}
};

class SendCommands : public ConsoleTest {
protected:
    SendCommands() {
        ComMsgMgr::uninit();
        ComMsgMgr::setSink(ComMsgMgr::Destination::console, std::make_shared<NoSink>());
        ComMsgMgr::clearIssuedError();
    }
    ~SendCommands() override {
        ComMsgMgr::setSink(ComMsgMgr::Destination::console, nullptr);
        ComMsgMgr::clearIssuedError();
    }
};

TEST_F(SendCommands, AnErrorOfSendMsgIdCountsAndLeavesNoMark) {
    const unsigned before = ComMsgMgrTclIface::getLifetimeErrorCount();
    EXPECT_EQ(run("send_msg_id -continue A-1 ERROR bad"), TCL_OK);
    EXPECT_FALSE(ComMsgMgr::hasIssuedError());
    EXPECT_EQ(ComMsgMgrTclIface::getLifetimeErrorCount(), before + 1);
    EXPECT_EQ(run("send_msg_id A-1 ERROR bad"), TCL_ERROR) << "the dispatcher sees it all the same";
    EXPECT_FALSE(ComMsgMgr::hasIssuedError());
}

TEST_F(SendCommands, AMarkThatStoodBeforeSendMsgIdStaysSet) {
    ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_ERROR, "before");
    ASSERT_TRUE(ComMsgMgr::hasIssuedError());
    EXPECT_EQ(run("send_msg_id A-1 INFO fine"), TCL_OK);
    EXPECT_EQ(run("send_msg_id -continue A-1 ERROR bad"), TCL_OK);
    EXPECT_TRUE(ComMsgMgr::hasIssuedError());
}

TEST_F(SendCommands, NoMessageOfSendGidMsgCountsAsAnErrorOfTheSession) {
    ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_ERROR, "one");
    const unsigned before = ComMsgMgrTclIface::getLifetimeErrorCount();
    EXPECT_EQ(run("send_gid_msg -continue -ssname BD -id 1 -severity ERROR bad"), TCL_OK);
    EXPECT_EQ(run("send_gid_msg -ssname BD -id 1 -severity ERROR bad"), TCL_ERROR);
    for (const char* words : {"-id 0 -ssname BD -severity ERROR", "-id 1 -severity ERROR",
                              "-id 1 -ssname Unknown -severity ERROR", "-id 1 -ssname BD -severity odd"}) {
        EXPECT_EQ(run(std::string("send_gid_msg ") + words + " text"), TCL_ERROR) << words;
    }
    EXPECT_EQ(ComMsgMgrTclIface::getLifetimeErrorCount(), before);
}

TEST_F(SendCommands, DescriptionAndResolutionAreTheHelpOfTheId) {
    EXPECT_EQ(run("send_gid_msg -ssname BoardRule::file -id 9 -severity INFO -description Why.%s "
                  "-resolution How.%d text"),
              TCL_OK);
    std::string text;
    EXPECT_TRUE(ComMsgMgr::getHelpOnMessage("BoardRule::file 102-9", text));
    EXPECT_THAT(text, HasSubstr("Why.%s"));
    EXPECT_THAT(text, HasSubstr("How.%d"));
}

TEST_F(SendCommands, AMessageMaySpeakOfAnObject) {
    ComMsgMgr::turnOnMsgCache();
    EXPECT_EQ(run("debug::send_message -severity INFO -ssn Mine -id 3 -sarg0 top.v|file|/a/top.v|5|9 "
                  "-sarg1 12|line -msg {in %s, line %s}"),
              TCL_OK);
    const auto kept = ComMsgMgr::getMessages(ComMsgMgr::MSGTYPE_INFO);
    ComMsgMgr::turnOffMsgCache();
    ASSERT_FALSE(kept.empty());
    const auto& meta = kept.back()->metaTypes();
    ASSERT_EQ(meta.size(), 2u);
    EXPECT_EQ(meta[0].type, ComMsgMgr::metaStr2Type("file"));
    EXPECT_EQ(meta[0].value, "/a/top.v");
    EXPECT_EQ(meta[0].context, "9") << "the last of several";
    EXPECT_EQ(meta[1].type, ComMsgMgr::metaStr2Type("line"));
    EXPECT_EQ(meta[1].value, "");
}

} // namespace
