#include "platform/env/HUTProcHandlers.h"

#include "platform/env/HUTEnv.h"
#include "platform/env/HUTFile.h"
#include "platform/env/HUTLogFileMgr.h"
#include "test_support.h"

#include <atomic>
#include <csignal>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <thread>

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

class ProcHandlersTest : public InTempDir {
protected:
    void SetUp() override {
        InTempDir::SetUp();
        // A death that is wanted leaves no core behind.
        const struct rlimit none { 0, 0 };
        ::setrlimit(RLIMIT_CORE, &none);
    }
    static fs::path report_of(const ChildResult& child) {
        return "corvane_pid" + std::to_string(child.pid) + ".crash";
    }
    static void expect_death_by(const ChildResult& child, int signal) {
        ASSERT_TRUE(WIFSIGNALED(child.status)) << child.status << child.standard_error;
        EXPECT_EQ(WTERMSIG(child.status), signal);
    }
};

namespace {

// Out of the optimiser's sight, or it would be taken out or turned into a trap.
void strike_memory() {
    volatile int* volatile nowhere = reinterpret_cast<int*>(0x10);
    *nowhere = 1;
}

int recurse(volatile int* depth) {
    volatile char frame[4096];
    frame[0] = static_cast<char>(*depth);
    *depth = *depth + 1;
    if (*depth < 0)
        return 0;
    return recurse(depth) + frame[0];
}

} // namespace

class FatalSignal : public ProcHandlersTest, public ::testing::WithParamInterface<int> {};

TEST_P(FatalSignal, WritesAReportFlushesTheLogAndEndsWithTheSignal) {
    const auto child = run_child([] {
        HUTLogFileMgr::createLogFile("l", false);
        HUTLogFileMgr::createJournalFile("j", false);
        HUTProcHandlers::installHandlers();
        HUTProcHandlers::recordCommand("get_cells -hierarchical");
        HUTLogFileMgr::writeLog("last words\n");
        HUTLogFileMgr::writeJournal("get_cells\n");
        ::raise(GetParam());
    });
    expect_death_by(child, GetParam());
    const std::string report = HUTFile::read(report_of(child));
    EXPECT_THAT(report, HasSubstr("Corvane v2026.1"));
    EXPECT_THAT(report, HasSubstr("Process ID: " + std::to_string(child.pid)));
    EXPECT_THAT(report, HasSubstr("Signal: " + std::to_string(GetParam()) + " (SIG"));
    EXPECT_THAT(report, ::testing::ContainsRegex("Time: 20[0-9][0-9]-[0-9][0-9]-[0-9][0-9] [0-9:]{8} UTC"));
    EXPECT_THAT(report, HasSubstr("\n  get_cells -hierarchical\n"));
    EXPECT_THAT(report.substr(report.find("Stack:")), HasSubstr("libzq_common"));
    EXPECT_EQ(HUTFile::read("l"), "last words\n");
    EXPECT_EQ(HUTFile::read("j"), "get_cells\n");
    EXPECT_EQ(child.standard_error, "Abnormal program termination (signal " + std::to_string(GetParam()) +
                                        "). A report is in \"" + (dir / report_of(child)).string() + "\".\n");
}

INSTANTIATE_TEST_SUITE_P(All, FatalSignal, ::testing::Values(SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT));

TEST_F(ProcHandlersTest, AFaultTellsItsAddress) {
    const auto child = run_child([] {
        HUTProcHandlers::installHandlers();
        strike_memory();
    });
    expect_death_by(child, SIGSEGV);
    EXPECT_THAT(HUTFile::read(report_of(child)), HasSubstr("Address: 0x10\n"));
}

TEST_F(ProcHandlersTest, ASignalSentTellsTheSender) {
    const auto child = run_child([] {
        HUTProcHandlers::installHandlers();
        ::kill(::getpid(), SIGSEGV);
        ::pause();
    });
    expect_death_by(child, SIGSEGV);
    EXPECT_THAT(HUTFile::read(report_of(child)), HasSubstr("Sent by process: " + std::to_string(child.pid)));
}

TEST_F(ProcHandlersTest, AnAbortIsReported) {
    const auto child = run_child([] {
        HUTProcHandlers::installHandlers();
        std::abort();
    });
    expect_death_by(child, SIGABRT);
    EXPECT_TRUE(fs::exists(report_of(child)));
}

TEST_F(ProcHandlersTest, AStackThatRanOutIsReported) {
    const auto child = run_child([] {
        const struct rlimit small { 1 << 20, 1 << 20 };
        ::setrlimit(RLIMIT_STACK, &small);
        HUTProcHandlers::installHandlers();
        volatile int depth = 0;
        recurse(&depth);
    });
    expect_death_by(child, SIGSEGV);
    EXPECT_THAT(HUTFile::read(report_of(child)), HasSubstr("Stack:\n"));
}

TEST_F(ProcHandlersTest, AThreadWithItsOwnStackForHandlersIsReportedToo) {
    const auto child = run_child([] {
        HUTProcHandlers::installHandlers();
        std::thread([] {
            HUTProcHandlers::installAltStack();
            HUTProcHandlers::installAltStack();
            volatile int depth = 0;
            recurse(&depth);
        }).join();
    });
    expect_death_by(child, SIGSEGV);
    EXPECT_TRUE(fs::exists(report_of(child)));
}

TEST_F(ProcHandlersTest, ThreadsThatEndGiveTheirStackBack) {
    const auto child = run_child([] {
        HUTProcHandlers::installHandlers();
        for (int i = 0; i < 20; ++i)
            std::thread([] { HUTProcHandlers::installAltStack(); }).join();
        ::raise(SIGSEGV);
    });
    expect_death_by(child, SIGSEGV);
    EXPECT_TRUE(fs::exists(report_of(child)));
}

TEST_F(ProcHandlersTest, ManyThreadsStruckAtOnceGiveOneReport) {
    const auto child = run_child([] {
        HUTProcHandlers::installHandlers();
        std::vector<std::thread> threads;
        std::atomic<int> ready{0};
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&] {
                HUTProcHandlers::installAltStack();
                for (++ready; ready < 4;)
                    std::this_thread::yield();
                strike_memory();
            });
        for (auto& thread : threads)
            thread.join();
    });
    expect_death_by(child, SIGSEGV);
    const std::string report = HUTFile::read(report_of(child));
    EXPECT_EQ(report.find("Signal:"), report.rfind("Signal:"));
}

TEST_F(ProcHandlersTest, TheLastTwentyCommandsAreToldInOrder) {
    const auto child = run_child([] {
        HUTProcHandlers::installHandlers();
        for (int i = 1; i <= 45; ++i)
            HUTProcHandlers::recordCommand("command " + std::to_string(i));
        ::raise(SIGABRT);
    });
    expect_death_by(child, SIGABRT);
    const std::string report = HUTFile::read(report_of(child));
    EXPECT_THAT(report, Not(HasSubstr("command 25\n")));
    size_t at = 0;
    for (int i = 26; i <= 45; ++i) {
        at = report.find("  command " + std::to_string(i) + "\n", at);
        ASSERT_NE(at, std::string::npos) << i;
    }
}

TEST_F(ProcHandlersTest, ALongCommandIsCutVisibly) {
    const auto child = run_child([] {
        HUTProcHandlers::installHandlers();
        HUTProcHandlers::recordCommand(std::string(600, 'x'));
        HUTProcHandlers::recordCommand(std::string(512, 'y'));
        HUTProcHandlers::recordCommand("");
        ::raise(SIGABRT);
    });
    const std::string report = HUTFile::read(report_of(child));
    EXPECT_THAT(report,
                HasSubstr("  " + std::string(512, 'x') + "...\n  " + std::string(512, 'y') + "\n  \n"));
}

TEST_F(ProcHandlersTest, WithoutCommandsTheReportSaysSo) {
    const auto child = run_child([] {
        HUTProcHandlers::installHandlers();
        ::raise(SIGABRT);
    });
    EXPECT_THAT(HUTFile::read(report_of(child)), HasSubstr("at the end:\n  none\n"));
}

TEST_F(ProcHandlersTest, ThreadsRecordCommandsTogether) {
    const auto child = run_child([] {
        HUTProcHandlers::installHandlers();
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([t] {
                for (int i = 0; i < 5000; ++i)
                    HUTProcHandlers::recordCommand("<" + std::string(30, static_cast<char>('a' + t)) + ">");
            });
        for (auto& thread : threads)
            thread.join();
        HUTProcHandlers::recordCommand("the last");
        ::raise(SIGABRT);
    });
    expect_death_by(child, SIGABRT);
    EXPECT_THAT(HUTFile::read(report_of(child)), HasSubstr("  the last\n"));
}

TEST_F(ProcHandlersTest, WithoutAWorkingDirectoryTheReportGoesToTheTemporaryOne) {
    fs::create_directory("t");
    const auto child = run_child([this] {
        HUTEnv::setVEKTmpDir("t");
        HUTProcHandlers::installHandlers();
        fs::create_directory("gone");
        fs::current_path("gone");
        fs::remove(dir / "gone");
        ::raise(SIGSEGV);
    });
    expect_death_by(child, SIGSEGV);
    EXPECT_TRUE(fs::exists("t" / report_of(child)));
    EXPECT_THAT(child.standard_error, HasSubstr((dir / "t" / report_of(child)).string()));
}

TEST_F(ProcHandlersTest, WithoutAnyPlaceTheReportGoesToStandardError) {
    fs::create_directory("t");
    const auto child = run_child([this] {
        HUTEnv::setVEKTmpDir("t");
        HUTProcHandlers::installHandlers();
        fs::remove(dir / "t");
        fs::create_directory("gone");
        fs::current_path("gone");
        fs::remove(dir / "gone");
        ::raise(SIGSEGV);
    });
    expect_death_by(child, SIGSEGV);
    EXPECT_THAT(child.standard_error, HasSubstr("Signal: 11"));
    EXPECT_THAT(child.standard_error, HasSubstr("Stack:"));
}

TEST_F(ProcHandlersTest, ALinkInThePlaceOfTheReportIsNotFollowed) {
    HUTFile::write_atomically("precious", "keep");
    const auto child = run_child([] {
        fs::create_symlink("precious", "corvane_pid" + std::to_string(::getpid()) + ".crash");
        HUTProcHandlers::installHandlers();
        ::raise(SIGSEGV);
    });
    expect_death_by(child, SIGSEGV);
    EXPECT_EQ(HUTFile::read("precious"), "keep");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(report_of(child))));
}

class EndingSignal : public ProcHandlersTest, public ::testing::WithParamInterface<int> {};

TEST_P(EndingSignal, FlushesAndEndsWithoutAReport) {
    const auto child = run_child([] {
        ::signal(GetParam(), SIG_DFL);
        HUTLogFileMgr::createLogFile("l", false);
        HUTProcHandlers::installHandlers();
        HUTLogFileMgr::writeLog("last words\n");
        ::raise(GetParam());
    });
    expect_death_by(child, GetParam());
    EXPECT_EQ(HUTFile::read("l"), "last words\n");
    EXPECT_FALSE(fs::exists(report_of(child)));
    EXPECT_EQ(child.standard_error, "");
}

TEST_P(EndingSignal, ThatWasIgnoredStaysIgnored) {
    const auto child = run_child([] {
        ::signal(GetParam(), SIG_IGN);
        HUTProcHandlers::installHandlers();
        ::raise(GetParam());
        ::_exit(7);
    });
    EXPECT_TRUE(WIFEXITED(child.status));
    EXPECT_EQ(WEXITSTATUS(child.status), 7);
}

INSTANTIATE_TEST_SUITE_P(Both, EndingSignal, ::testing::Values(SIGTERM, SIGHUP));

TEST_F(ProcHandlersTest, ASecondInstallationLeavesLaterHandlersAlone) {
    const auto child = run_child([] {
        HUTProcHandlers::installHandlers();
        ::signal(SIGTERM, SIG_IGN);
        HUTProcHandlers::installHandlers();
        ::raise(SIGTERM);
        ::_exit(7);
    });
    EXPECT_TRUE(WIFEXITED(child.status));
    EXPECT_EQ(WEXITSTATUS(child.status), 7);
}
