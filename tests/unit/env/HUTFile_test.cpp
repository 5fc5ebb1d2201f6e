#include "platform/env/HUTFile.h"

#include "platform/env/HUTPathUtils.h"
#include "test_support.h"

#include <csignal>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>

namespace fs = std::filesystem;
using namespace std::string_literals;

class FileTest : public InTempDir {
protected:
    size_t files() const {
        return static_cast<size_t>(std::distance(fs::directory_iterator(dir), fs::directory_iterator()));
    }
    static std::error_code refusal(const std::function<void()>& action) {
        try {
            action();
        } catch (const std::system_error& error) {
            return error.code();
        }
        return {};
    }
};

TEST_F(FileTest, WritesAndReadsAnyBytes) {
    const std::string bytes = "a\0b\xFF\n"s + std::string(200000, 'x');
    HUTFile::write_atomically("f", bytes);
    EXPECT_EQ(HUTFile::read("f"), bytes);
    EXPECT_EQ(files(), 1u);
    HUTFile::write_atomically("f", "");
    EXPECT_EQ(HUTFile::read("f"), "");
}

TEST_F(FileTest, ReadsFilesOfTheSystemThatClaimToBeEmpty) {
    EXPECT_THAT(HUTFile::read("/proc/self/status"), ::testing::HasSubstr("Pid:"));
}

TEST_F(FileTest, KeepsTheModeOfTheFile) {
    HUTFile::write_atomically("f", "1");
    ::chmod("f", 0751);
    HUTFile::write_atomically("f", "2");
    struct stat status;
    ASSERT_EQ(::stat("f", &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0751u);
}

TEST_F(FileTest, ANewFileHasTheModeThatTheUmaskAllows) {
    const mode_t old = ::umask(027);
    HUTFile::write_atomically("f", "1");
    ::umask(old);
    struct stat status;
    ASSERT_EQ(::stat("f", &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_F(FileTest, ALinkIsFollowedAndStays) {
    fs::create_directory("d");
    fs::create_symlink("d/real", "link");
    HUTFile::write_atomically("link", "one");
    HUTFile::write_atomically("link", "two");
    EXPECT_TRUE(fs::is_symlink("link"));
    EXPECT_EQ(HUTFile::read("d/real"), "two");
}

TEST_F(FileTest, ADeviceIsWrittenNotReplaced) {
    HUTFile::write_atomically("/dev/null", "gone");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_EQ(refusal([] { HUTFile::write_atomically("/dev/full", "x"); }), std::errc::no_space_on_device);
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST_F(FileTest, RefusalsNameThePath) {
    try {
        HUTFile::write_atomically("no/such/f", "x");
        FAIL() << "must throw";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
        EXPECT_THAT(error.what(), ::testing::HasSubstr("cannot write \"no/such/f\""));
    }
    try {
        HUTFile::read("missing");
        FAIL() << "must throw";
    } catch (const std::system_error& error) {
        EXPECT_THAT(error.what(), ::testing::HasSubstr("cannot read \"missing\""));
    }
}

TEST_F(FileTest, RefusesWhatIsNoFile) {
    fs::create_directory("d");
    EXPECT_EQ(refusal([] { HUTFile::write_atomically("d", "x"); }), std::errc::is_a_directory);
    EXPECT_EQ(refusal([] { HUTFile::read("d"); }), std::errc::is_a_directory);
    EXPECT_EQ(refusal([] { HUTFile::write_atomically("", "x"); }), std::errc::no_such_file_or_directory);
    EXPECT_EQ(refusal([] { HUTFile::write_atomically("a\0b"s, "x"); }), std::errc::invalid_argument);
    EXPECT_EQ(refusal([] { HUTFile::read("a\0b"s); }), std::errc::invalid_argument);
    HUTFile::write_atomically("f", "x");
    EXPECT_EQ(refusal([] { HUTFile::write_atomically("f/g", "x"); }), std::errc::not_a_directory);
    fs::create_symlink("loop", "loop");
    EXPECT_NE(refusal([] { HUTFile::write_atomically("loop/x", "x"); }), std::error_code());
    EXPECT_EQ(files(), 3u);
}

TEST_F(FileTest, AFailedWriteLeavesTheOldContentAndNothingElse) {
    HUTFile::write_atomically("f", "old");
    const auto child = run_child([] {
        ::signal(SIGXFSZ, SIG_IGN);
        const struct rlimit limit { 1000, 1000 };
        ::setrlimit(RLIMIT_FSIZE, &limit);
        try {
            HUTFile::write_atomically("f", std::string(5000, 'n'));
        } catch (const std::system_error& error) {
            ::_exit(error.code() == std::errc::file_too_large ? 3 : 4);
        }
    });
    EXPECT_EQ(WEXITSTATUS(child.status), 3);
    EXPECT_EQ(HUTFile::read("f"), "old");
    EXPECT_EQ(files(), 1u);
}

TEST_F(FileTest, WritesANameOfTheGreatestLength) {
    const std::string name(255, 'n');
    HUTFile::write_atomically(name, "x");
    EXPECT_EQ(HUTFile::read(name), "x");
}

TEST_F(FileTest, ReadersSeeOneWholeContentWhileWritersReplaceIt) {
    HUTFile::write_atomically("f", std::string(10000, 'a'));
    std::thread a([] {
        for (int i = 0; i < 50; ++i)
            HUTFile::write_atomically("f", std::string(10000, 'a'));
    });
    std::thread b([] {
        for (int i = 0; i < 50; ++i)
            HUTFile::write_atomically("f", std::string(10000, 'b'));
    });
    for (int i = 0; i < 100; ++i) {
        const std::string bytes = HUTFile::read("f");
        ASSERT_EQ(bytes, std::string(10000, bytes.at(0)));
    }
    a.join();
    b.join();
    EXPECT_EQ(files(), 1u);
}

TEST_F(FileTest, CanonicalNameIsAbsoluteAndResolved) {
    fs::create_directories("d/e");
    fs::create_symlink("d/e", "l");
    EXPECT_EQ(HUTFile::getCanonicalName("l/../x//y/./z"), (dir / "d/x/y/z").string());
    EXPECT_EQ(HUTFile::getCanonicalName("init.tcl"), (dir / "init.tcl").string());
    EXPECT_EQ(HUTFile::getCanonicalName("d/"), (dir / "d").string());
    EXPECT_EQ(HUTFile::getCanonicalName("new/"), (dir / "new").string());
    EXPECT_EQ(HUTFile::getCanonicalName("/"), "/");
    EXPECT_EQ(HUTFile::getCanonicalName("."), dir.string());
    EXPECT_EQ(HUTFile::getCanonicalName(""), "");
    EXPECT_EQ(HUTFile::getCanonicalName("/no/such/../place"), "/no/place");
}

TEST_F(FileTest, CanonicalNameSurvivesALoopOfLinks) {
    fs::create_symlink("loop", "loop");
    EXPECT_EQ(HUTFile::getCanonicalName("loop/x"), (dir / "loop/x").string());
}

TEST_F(FileTest, PathQuestionsAnswerForEveryKind) {
    fs::create_directory("d");
    std::ofstream("f") << "x";
    fs::create_symlink("nowhere", "dangling");
    EXPECT_TRUE(HUTPathUtils::exists("d"));
    EXPECT_TRUE(HUTPathUtils::exists("f"));
    EXPECT_TRUE(HUTFile::exists("f"));
    EXPECT_FALSE(HUTPathUtils::exists("dangling"));
    EXPECT_FALSE(HUTPathUtils::exists(""));
    EXPECT_FALSE(HUTPathUtils::exists("f\0g"s));
    EXPECT_FALSE(HUTPathUtils::exists("f/x"));
    EXPECT_TRUE(HUTPathUtils::isRegularFile("f"));
    EXPECT_FALSE(HUTPathUtils::isRegularFile("d"));
    EXPECT_FALSE(HUTPathUtils::isRegularFile("/dev/null"));
    EXPECT_TRUE(HUTPathUtils::isDirectory("d"));
    EXPECT_FALSE(HUTPathUtils::isDirectory("f"));
    EXPECT_TRUE(HUTPathUtils::isWritableDirectory("d"));
    EXPECT_FALSE(HUTPathUtils::isWritableDirectory("f"));
    EXPECT_FALSE(HUTPathUtils::isWritableDirectory("/proc/self/fdinfo/none"));
}

TEST_F(FileTest, SaysWhereAFileCanBeWritten) {
    fs::create_directory("d");
    std::ofstream("f") << "x";
    fs::create_symlink("nowhere", "dangling");
    for (const char* path : {"f", "new", "./new", "d/new", "dangling", "/dev/null"})
        EXPECT_TRUE(HUTFile::isWriteable(path)) << path;
    for (const std::string& path : {""s, "d"s, "d/"s, "new/"s, "nosuch/new"s, "f/new"s, "f\0g"s})
        EXPECT_FALSE(HUTFile::isWriteable(path)) << path;
    EXPECT_FALSE(fs::exists("new"));
}

TEST_F(FileTest, JoinsAndTakesPathsApart) {
    EXPECT_EQ(HUTPathUtils::join({"/root", "lib", "x.tcl"}), "/root/lib/x.tcl");
    EXPECT_EQ(HUTPathUtils::join({"/root/", "/lib"}), "/root/lib");
    EXPECT_EQ(HUTPathUtils::join({"", "a", "", "b"}), "a/b");
    EXPECT_EQ(HUTPathUtils::join({"/", "a"}), "/a");
    EXPECT_EQ(HUTPathUtils::join({}), "");
    EXPECT_EQ(HUTPathUtils::fileName("/a/b.log"), "b.log");
    EXPECT_EQ(HUTPathUtils::fileName("b"), "b");
    EXPECT_EQ(HUTPathUtils::fileName("/a/"), "");
    EXPECT_EQ(HUTPathUtils::extension("/a.d/b"), "");
    EXPECT_EQ(HUTPathUtils::extension("run.cdi"), ".cdi");
    EXPECT_EQ(HUTPathUtils::extension("a.tar.gz"), ".gz");
    EXPECT_EQ(HUTPathUtils::extension(".profile"), "");
    EXPECT_EQ(HUTPathUtils::extension(".."), "");
}
