#include "support.h"

#include "platform/msg/HEX.h"

namespace {

using M = ComMsgMgr;
class HEXTest : public MsgTest {};

TEST_F(HEXTest, whatIsTheMessageLine) {
    try {
        throw HEXError(ComMsgMgrInstance("common", M::MSGTYPE_ERROR, "@17-153@%s\n", "x y"));
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "ERROR: [Common 17-153] No parameter is named 'x y'.");
    }
    EXPECT_EQ(ComMsgMgr::getMsgCount(M::MSGTYPE_ERROR), 0u);
    EXPECT_TRUE(console->texts().empty());
}

TEST_F(HEXTest, printSendsTheMessage) {
    const HEXAll error(ComMsgMgrInstance("common", M::MSGTYPE_ERROR, "@17-153@%s\n", "x"));
    error.print();
    EXPECT_EQ(console->all(), std::string(error.what()) + '\n');
    EXPECT_EQ(log->all(), console->all());
    EXPECT_TRUE(ComMsgMgr::wasIssued(error.what()));
}

TEST_F(HEXTest, kindsDeriveFromOneAnother) {
    EXPECT_THROW(throw HEXFatal(ComMsgMgrInstance("common", M::MSGTYPE_ERROR, "@17-3944@%s", "p")), HEXAll);
    EXPECT_THROW(throw HEXInternalException("odd"), HEXAlgException);
    EXPECT_THROW(throw HEXAlgException("odd"), HEXAll);
    EXPECT_STREQ(HEXInternalException("Conversion failed").what(),
                 "ERROR: [Common 17-5150] Internal fault: Conversion failed.");
}

TEST_F(HEXTest, aCopyOutlivesItsOriginal) {
    auto original = std::make_unique<HEXError>(ComMsgMgrInstance("trial", M::MSGTYPE_ERROR, "@90-2@%s", "v"));
    const HEXError copy = *original;
    original.reset();
    EXPECT_STREQ(copy.what(), "ERROR: [Trial 90-2] One 'v'.");
    EXPECT_EQ(copy.message().number(), "90-2");
}

} // namespace
