#include "platform/env/HUTMemUtils.h"

#include "platform/env/HUTEnv.h"
#include "platform/env/HUTMemWatcher.h"
#include "platform/env/sysinfo.h"
#include "test_support.h"

#include <gmock/gmock.h>
#include <thread>
#include <vector>

using ::testing::HasSubstr;

TEST(MemUtils, ReadsTheSystemsTextInBytes) {
    const auto info =
        HUTMemUtils::parseMemInfo("MemTotal:       16777216 kB\nMemFree:  5 kB\nMemAvailable:  8000000 kB\n"
                                  "SwapTotal: 1000 kB\nSwapFree:   400 kB\n");
    EXPECT_EQ(info.physical, 17179869184u);
    EXPECT_EQ(info.physical / 1000000, 17179u);
    EXPECT_EQ(info.swap, 1024000u);
    EXPECT_EQ(info.totalVirtual, info.physical + info.swap);
    EXPECT_EQ(info.availableVirtual, uint64_t{8000400} * 1024);
}

TEST(MemUtils, OddTextGivesZeroes) {
    const auto info = HUTMemUtils::parseMemInfo("MemTotal:\nSwapTotal: many kB\nMemAvailable");
    EXPECT_EQ(info.totalVirtual, 0u);
    EXPECT_EQ(info.availableVirtual, 0u);
    EXPECT_EQ(HUTMemUtils::parseMemInfo("").physical, 0u);
}

TEST(MemUtils, KnowsThisMachineAndProcess) {
    const auto info = HUTMemUtils::getMemInfo();
    EXPECT_GT(info.physical, 0u);
    EXPECT_LE(info.availableVirtual, info.totalVirtual);
    const uint64_t before = HUTMemUtils::getCurrentRss();
    std::vector<char> much(64 << 20, 'x');
    EXPECT_GE(HUTMemUtils::getCurrentRss(), before + (32u << 20)) << much[5];
    EXPECT_GE(HUTMemUtils::getPeakRss(), HUTMemUtils::getCurrentRss() / 2);
}

// Each in a process of its own, since the mode cannot be turned off.
TEST(MemWatcher, RecordsNothingUntilAsked) {
    const auto child = run_child([] {
        {
            HUTMemWatcher watch("early");
            HUTMemUtils::setMemLogMode();
        }
        ::_exit(HUTMemWatcher::getTotals().empty() ? 3 : 4);
    });
    EXPECT_EQ(WEXITSTATUS(child.status), 3);
}

TEST(MemWatcher, SumsUpScopesOfOneName) {
    const auto child = run_child([] {
        HUTMemUtils::setMemLogMode();
        std::vector<std::string> sent;
        HUTEnv::setMessageSink([&](const HUTEnvMessage& m) { sent.push_back(m.text); });
        HUTEnv::issuePendingMesssages();
        {
            HUTMemWatcher outer("outer");
            std::vector<std::thread> threads;
            for (int i = 0; i < 4; ++i)
                threads.emplace_back([] {
                    for (int k = 0; k < 25; ++k)
                        HUTMemWatcher inner("inner");
                });
            for (auto& thread : threads)
                thread.join();
        }
        HUTMemWatcher::genLogTotals();
        std::fputs(sent.size() == 1 ? sent[0].c_str() : "not one message", stderr);
    });
    EXPECT_EQ(child.status, 0);
    EXPECT_THAT(child.standard_error, ::testing::ContainsRegex("Scope +Calls +Elapsed"));
    EXPECT_THAT(child.standard_error, ::testing::ContainsRegex("\nouter +1 "));
    EXPECT_THAT(child.standard_error, ::testing::ContainsRegex("\ninner +100 "));
    EXPECT_LT(child.standard_error.find("outer"), child.standard_error.find("inner"));
}

TEST(SysInfo, NamesTheMachine) {
    using isl::sysinfo::info_t;
    EXPECT_NE(info_t::osname(), "");
    EXPECT_NE(info_t::osrelease(), "");
    EXPECT_THAT(info_t::osname(), ::testing::Not(HasSubstr("\"")));
    EXPECT_NE(info_t::processor_architecture(0), "");
    EXPECT_EQ(info_t::processor_architecture(1000000), "");
    EXPECT_EQ(info_t::processor_speed(1000000), "");
}
