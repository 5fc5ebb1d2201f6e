#include "platform/env/HUTEnv.h"

#include "platform/env/HUTFile.h"
#include "test_support.h"

#include <atomic>
#include <clocale>
#include <fstream>
#include <gmock/gmock.h>
#include <thread>

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

namespace {

// Runs in a process of its own: what it sets stays with it.
void apart(const std::function<void()>& body) {
    const auto child = run_child(body);
    EXPECT_TRUE(WIFEXITED(child.status));
    EXPECT_EQ(WEXITSTATUS(child.status), 0) << child.standard_error;
}

std::vector<HUTEnvMessage> issued() {
    std::vector<HUTEnvMessage> messages;
    HUTEnv::setMessageSink([&](const HUTEnvMessage& m) { messages.push_back(m); });
    HUTEnv::issuePendingMesssages();
    HUTEnv::setMessageSink(nullptr);
    return messages;
}

std::string own_root() {
    return fs::canonical(CORVANE_ROOT).string();
}

// Behind the own root comes the one with Tcl's manual pages, where these are installed.
std::vector<std::string> with_tcl_manual(std::vector<std::string> roots) {
    const std::string manual = own_root() + "/share/tcl8.6";
    if (fs::is_directory(manual))
        roots.push_back(manual);
    return roots;
}

} // namespace

class EnvTest : public InTempDir {};

TEST_F(EnvTest, IsCorvaneUnlessTheHostSaysOtherwise) {
    EXPECT_EQ(HUTEnv::getProductName(), "Corvane");
    EXPECT_EQ(HUTEnv::getProductVersion(), "2026.1");
    EXPECT_EQ(HUTEnv::getProductMajorMinorVersion(), "2026.1");
    EXPECT_EQ(HUTEnv::getProgramName(), "corvane");
    EXPECT_EQ(HUTEnv::getTclPackageVersion(), "2026.1");
    EXPECT_EQ(HUTEnv::getFullProductStr(), "Corvane v2026.1 (64-bit)");
    EXPECT_FALSE(HUTEnv::isFpgaCompilerProductFamily());
    EXPECT_FALSE(HUTEnv::isInternalTA());
    EXPECT_FALSE(HUTEnv::isStandalone());
}

TEST_F(EnvTest, VersionLinesAreLinesAndTellTheBuildsDay) {
    EXPECT_THAT(HUTEnv::getFullBuildStr(), MatchesRegex("Build [^ ]+ of 20[0-9]{2}-[0-9]{2}-[0-9]{2}"));
    EXPECT_EQ(HUTEnv::getFullIPBuildStr(), "");
    EXPECT_EQ(HUTEnv::getFullSharedDataBuildStr(), "");
    ASSERT_EQ(HUTEnv::getCopyrightLines().size(), 2u);
    for (const std::string& line : HUTEnv::getCopyrightLines())
        EXPECT_THAT(line, ::testing::Not(HasSubstr("\n")));
}

TEST_F(EnvTest, AHostCanShipAnotherProduct) {
    apart([] {
        HUTProductInfo info;
        info.name = "corvane_bench";
        info.version = "2027.3.1-beta";
        info.programName = "bench";
        info.fpgaCompilerFamily = info.internal = info.standalone = true;
        HUTEnv::setProductInfo(info);
        EXPECT_EQ(HUTEnv::getProductName(), "corvane_bench");
        EXPECT_EQ(HUTEnv::getProductMajorMinorVersion(), "2027.3");
        EXPECT_EQ(HUTEnv::getTclPackageVersion(), "2027.3.1");
        EXPECT_EQ(HUTEnv::getProgramName(), "bench");
        EXPECT_EQ(HUTEnv::getFullProductStr(), "corvane_bench v2027.3.1-beta (64-bit)");
        EXPECT_TRUE(HUTEnv::isFpgaCompilerProductFamily());
        EXPECT_TRUE(HUTEnv::isInternalTA());
        EXPECT_TRUE(HUTEnv::isStandalone());
    });
}

TEST_F(EnvTest, ThePackageVersionIsAlwaysOneThatTclAccepts) {
    apart([] {
        for (const auto& [version, expected] : std::vector<std::pair<std::string, std::string>>{
                 {"7", "7"}, {"7.", "7"}, {"7..2", "7"}, {"next", "1.0"}, {"", "1.0"}, {".5", "1.0"}}) {
            HUTProductInfo info;
            info.version = version;
            HUTEnv::setProductInfo(info);
            EXPECT_EQ(HUTEnv::getTclPackageVersion(), expected) << version;
        }
    });
}

TEST_F(EnvTest, RegressionModeIsOffUntilSet) {
    apart([] {
        EXPECT_FALSE(HUTEnv::getRegressMode());
        HUTEnv::setRegressMode(true);
        EXPECT_TRUE(HUTEnv::getRegressMode());
        HUTEnv::setRegressMode(false);
        EXPECT_FALSE(HUTEnv::getRegressMode());
    });
}

TEST_F(EnvTest, TclDebugComesFromTheEnvironmentOrTheHost) {
    for (const char* value : {"1", "yes", "TRUE", "on"}) {
        apart([&] {
            const ScopedEnv debug("CORVANE_TCL_DEBUG", value);
            EXPECT_TRUE(HUTEnv::isTclDebug()) << value;
            HUTEnv::setTclDebug(false);
            EXPECT_FALSE(HUTEnv::isTclDebug());
        });
    }
    for (const std::optional<std::string>& value : {std::optional<std::string>(), {"0"}, {""}, {"no"}}) {
        apart([&] {
            const ScopedEnv debug("CORVANE_TCL_DEBUG", value);
            EXPECT_FALSE(HUTEnv::isTclDebug());
            HUTEnv::setTclDebug(true);
            EXPECT_TRUE(HUTEnv::isTclDebug());
        });
    }
}

TEST_F(EnvTest, TimeStampKeepsEnglishNamesInAnyLocale) {
    EXPECT_THAT(HUTEnv::getTimeStamp(),
                MatchesRegex("(Sun|Mon|Tue|Wed|Thu|Fri|Sat) [A-Z][a-z]{2} [0-9]{2} [0-9:]{8} [0-9]{4}"));
}

TEST_F(EnvTest, KnowsTheProcess) {
    EXPECT_EQ(HUTEnv::getPid(), ::getpid());
    EXPECT_EQ(HUTEnv::getPWD(), dir.string());
    EXPECT_NE(HUTEnv::getHostName(), "");
    EXPECT_NE(HUTEnv::getUserName(), "");
}

TEST_F(EnvTest, AWorkingDirectoryThatIsGoneIsEmpty) {
    fs::create_directory("gone");
    fs::current_path("gone");
    fs::remove(dir / "gone");
    EXPECT_EQ(HUTEnv::getPWD(), "");
    fs::current_path(dir);
}

TEST_F(EnvTest, CommandLineFallsBackToTheSystems) {
    EXPECT_THAT(HUTEnv::getCmdline(), HasSubstr("unit_env"));
    EXPECT_EQ(HUTEnv::getShortCmdline().substr(0, 8), "unit_env");
}

TEST_F(EnvTest, CommandLineShowsWhereWordsEndAndStaysOneLine) {
    apart([] {
        HUTEnv::setCmdline({"/opt/my tools/corvane", "-mode", "batch", "-source", "a b.tcl", "",
                            "x\n y\"\\$\x1B", "\xC3\xA4=1"});
        EXPECT_EQ(HUTEnv::getShortCmdline(),
                  "corvane -mode batch -source \"a b.tcl\" \"\" \"x\\n y\\\"\\\\\\$\\x1b\" \xC3\xA4=1");
        EXPECT_EQ(HUTEnv::getCmdline().substr(0, 23), "\"/opt/my tools/corvane\"");
    });
}

TEST_F(EnvTest, GetEnvTellsUnsetFromEmpty) {
    const ScopedEnv set("CORVANE_TEST_A", ""), unset("CORVANE_TEST_B", std::nullopt);
    EXPECT_STREQ(HUTEnv::getEnv("CORVANE_TEST_A"), "");
    EXPECT_EQ(HUTEnv::getEnv("CORVANE_TEST_B"), nullptr);
    EXPECT_EQ(HUTEnv::getEnv("CORVANE_TEST_A", "x"), "");
    EXPECT_EQ(HUTEnv::getEnv("CORVANE_TEST_B", "x"), "x");
}

TEST_F(EnvTest, TemporaryDirectoryIsTheOneSetElseTheEnvironments) {
    apart([this] {
        fs::create_directory("t");
        {
            const ScopedEnv tmp("TMPDIR", (dir / "t").string());
            EXPECT_EQ(HUTEnv::getVEKTmpDir(), (dir / "t").string());
        }
        for (const std::optional<std::string>& bad : {std::optional<std::string>(), {"/no/such"}, {""}}) {
            const ScopedEnv tmp("TMPDIR", bad);
            EXPECT_EQ(HUTEnv::getVEKTmpDir(), "/tmp");
        }
        HUTEnv::setVEKTmpDir("t");
        EXPECT_EQ(HUTEnv::getVEKTmpDir(), (dir / "t").string());
        fs::current_path("/");
        EXPECT_EQ(HUTEnv::getVEKTmpDir(), (dir / "t").string());
    });
}

TEST_F(EnvTest, ATemporaryDirectoryThatCannotBeUsedIsRefusedWithAWarning) {
    apart([] {
        const ScopedEnv tmp("TMPDIR", std::nullopt);
        std::ofstream("file") << "x";
        HUTEnv::setVEKTmpDir("file");
        EXPECT_EQ(HUTEnv::getVEKTmpDir(), "/tmp");
        const auto messages = issued();
        ASSERT_EQ(messages.size(), 1u);
        EXPECT_EQ(messages[0].mask, 0x8000000u);
        EXPECT_EQ(messages[0].key, "@17-5100@%s%s\n");
        EXPECT_THAT(messages[0].args, ElementsAre("file", "/tmp"));
    });
}

TEST_F(EnvTest, UserDataLieInTheFirstAbsolutePlace) {
    const ScopedEnv local("TANDREL_LOCAL_USER_DATA", "/local/data"), xdg("XDG_DATA_HOME", "/xdg"),
        home("HOME", "/h");
    EXPECT_EQ(HUTEnv::getVEKAppDataDir(), "/local/data");
    {
        const ScopedEnv yes("TANDREL_LOCAL_USER_DATA", "yes");
        EXPECT_EQ(HUTEnv::getVEKAppDataDir(), "/xdg/corvane");
        const ScopedEnv relative("XDG_DATA_HOME", "data");
        EXPECT_EQ(HUTEnv::getVEKAppDataDir(), "/h/.local/share/corvane");
        const ScopedEnv empty("XDG_DATA_HOME", "");
        EXPECT_EQ(HUTEnv::getVEKAppDataDir(), "/h/.local/share/corvane");
    }
}

TEST_F(EnvTest, WithoutAHomeThereIsNoPlaceForUserData) {
    const ScopedEnv local("TANDREL_LOCAL_USER_DATA", std::nullopt), xdg("XDG_DATA_HOME", std::nullopt);
    {
        const ScopedEnv home("HOME", std::nullopt);
        EXPECT_EQ(HUTEnv::getVEKAppDataDir(), "");
    }
    const ScopedEnv home("HOME", "");
    EXPECT_EQ(HUTEnv::getVEKAppDataDir(), "");
}

TEST_F(EnvTest, TheOwnRootIsFoundFromWhereTheLibraryLies) {
    const ScopedEnv none("OMU_APPROOT", std::nullopt);
    EXPECT_THAT(HUTEnv::getOMUAppRootList(), ElementsAreArray(with_tcl_manual({own_root()})));
    EXPECT_EQ(HUTEnv::getOMUAppRoot("lib/libzq_common.so"), fs::canonical(CORVANE_ROOT).string());
}

TEST_F(EnvTest, FurtherRootsStandInFrontInTheirOrder) {
    fs::create_directories("a/scripts");
    fs::create_directories("b/scripts");
    fs::create_symlink("a", "same");
    std::ofstream("b/scripts/only.tcl") << "x";
    std::ofstream("file") << "x";
    const std::string own = fs::canonical(CORVANE_ROOT).string();
    const ScopedEnv roots("OMU_APPROOT", "a:" + (dir / "b/").string() + "::same:file:/no/such:" + own);
    EXPECT_THAT(HUTEnv::getOMUAppRootList(),
                ElementsAreArray(with_tcl_manual({(dir / "a").string(), (dir / "b").string(), own})));
    EXPECT_EQ(HUTEnv::getOMUAppRoot(""), (dir / "a").string());
    EXPECT_EQ(HUTEnv::getOMUAppRoot("scripts"), (dir / "a").string());
    EXPECT_EQ(HUTEnv::getOMUAppRoot("scripts/only.tcl"), (dir / "b").string());
    EXPECT_EQ(HUTEnv::getOMUAppRoot("/etc/passwd"), "");
    EXPECT_EQ(HUTEnv::getOMUAppRoot("no/such/file"), "");
}

TEST_F(EnvTest, RelativeRootsStayWhereTheyWereFound) {
    fs::create_directories("a/sub");
    const ScopedEnv roots("OMU_APPROOT", "a");
    EXPECT_EQ(HUTEnv::getOMUAppRoot("sub"), (dir / "a").string());
    fs::current_path("/");
    EXPECT_EQ(HUTEnv::getOMUAppRoot("sub"), (dir / "a").string());
}

TEST_F(EnvTest, DataLieUnderARoot) {
    fs::create_directories("a");
    fs::create_directories("b/data/msg");
    fs::create_directories("c/data/other");
    const ScopedEnv roots("OMU_APPROOT", "a:b:c");
    EXPECT_EQ(HUTEnv::getOMUDataDir(""), (dir / "b/data").string());
    EXPECT_EQ(HUTEnv::getOMUDataDir("msg"), (dir / "b/data").string());
    EXPECT_EQ(HUTEnv::getOMUDataDir("other"), (dir / "c/data").string());
    EXPECT_EQ(HUTEnv::getOMUDataDir("none/such"), "");
}

TEST_F(EnvTest, MessagesWaitUntilTheyCanBeShownAndKeepTheirOrder) {
    apart([] {
        HUTEnv::post({1, "", {}, "first"});
        HUTEnv::issuePendingMesssages();
        HUTEnv::post({2, "", {}, "second"});
        std::vector<std::string> texts;
        HUTEnv::setMessageSink([&](const HUTEnvMessage& m) {
            texts.push_back(m.text);
            if (m.text == "second")
                HUTEnv::post({3, "", {}, "from the sink"});
        });
        EXPECT_TRUE(texts.empty());
        HUTEnv::issuePendingMesssages();
        EXPECT_THAT(texts, ElementsAre("first", "second", "from the sink"));
        HUTEnv::post({4, "", {}, "later"});
        EXPECT_EQ(texts.back(), "later");
        HUTEnv::setMessageSink(nullptr);
        HUTEnv::post({5, "", {}, "nobody hears"});
        EXPECT_EQ(texts.size(), 4u);
    });
}

TEST_F(EnvTest, NoMessageIsLostWhenThreadsPostWhileTheSinkOpens) {
    apart([] {
        std::atomic<int> seen{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([] {
                for (int k = 0; k < 1000; ++k)
                    HUTEnv::post({0, "", {}, "x"});
            });
        HUTEnv::setMessageSink([&](const HUTEnvMessage&) { ++seen; });
        HUTEnv::issuePendingMesssages();
        for (auto& thread : threads)
            thread.join();
        EXPECT_EQ(seen, 4000);
    });
}

TEST_F(EnvTest, HeaderShowsProductAndBuild) {
    apart([] {
        std::string text;
        HUTEnv::setMessageSink([&](const HUTEnvMessage& m) {
            EXPECT_EQ(m.mask, 0x20000u);
            text = m.text;
        });
        HUTEnv::printHeader(false);
        const std::string lines = HUTEnv::getFullProductStr() + '\n' + HUTEnv::getFullBuildStr() + '\n';
        EXPECT_EQ(text, lines);
        HUTEnv::printHeader(true);
        EXPECT_EQ(text,
                  lines + HUTEnv::getCopyrightLines()[0] + '\n' + HUTEnv::getCopyrightLines()[1] + '\n');
    });
}

TEST_F(EnvTest, LocaleGivesTextsOfAnyScriptButNumbersInCForm) {
    apart([] {
        const ScopedEnv all("LC_ALL", "C");
        HUTEnv::maybeAdjustLocaleSetting();
        EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C.UTF-8");
        EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
        EXPECT_TRUE(issued().empty());
    });
}

TEST_F(EnvTest, AnUnknownLocaleIsToldAndReplaced) {
    apart([] {
        const ScopedEnv all("LC_ALL", "tlh_XX.UTF-8");
        HUTEnv::maybeAdjustLocaleSetting();
        EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C.UTF-8");
        EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
        const auto messages = issued();
        ASSERT_EQ(messages.size(), 1u);
        EXPECT_EQ(messages[0].key, "@17-5101@%s\n");
        EXPECT_THAT(messages[0].args, ElementsAre("tlh_XX.UTF-8"));
    });
}
