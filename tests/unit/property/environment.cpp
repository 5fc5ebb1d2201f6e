#include <gtest/gtest.h>
#include <tcl.h>

#include "platform/msg/ComMsgMgr.h"

namespace {

// Tcl's library wants to be started before its first value is made.
class Environment : public ::testing::Environment {
public:
    void SetUp() override {
        Tcl_FindExecutable(nullptr);
        ComMsgMgr::init(ComMsgMgr::MSGCACHE_LATEST, "");
    }
    void TearDown() override { ComMsgMgr::uninit(); }
};

const ::testing::Environment* const environment = ::testing::AddGlobalTestEnvironment(new Environment);

} // namespace
