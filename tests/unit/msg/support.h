#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../support/RecordingSink.h"
#include "../support/TempDir.h"
#include "platform/msg/ComMsgMgr.h"

void write_file(const std::string& path, const std::string& content);
std::string read_file(const std::string& path);

/// A manager that nothing was sent to, with recording sinks. The subsystem "trial" (number 90, alias "Trial")
/// has the messages of support.cpp; "common" is the installed one.
class MsgTest : public ::testing::Test {
protected:
    MsgTest();
    ~MsgTest() override;

    static ComMsgMgrInstance trial(ComMsgMgr::MsgMask mask, std::string_view key,
                                   std::vector<ComMsgMgrArg> args) {
        return ComMsgMgrInstance::fromKey("trial", mask, key, std::move(args));
    }

    std::shared_ptr<RecordingSink> console = std::make_shared<RecordingSink>();
    std::shared_ptr<RecordingSink> log = std::make_shared<RecordingSink>();
    std::shared_ptr<RecordingSink> journal = std::make_shared<RecordingSink>();
};
