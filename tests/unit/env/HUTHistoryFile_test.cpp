#include "platform/env/HUTHistoryFile.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include "../support/TempDir.h"
#include "platform/env/HUTFile.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class HUTHistoryFileTest : public testing::Test {
protected:
    ~HUTHistoryFileTest() override {
        std::filesystem::permissions(m_folder.root(), std::filesystem::perms::owner_all);
    }

    std::string path(const std::string& name = "history") const { return m_folder.path(name); }
    std::vector<std::string> all(const std::string& name = "history") const {
        return HUTHistoryFile(path(name)).newest(1000000);
    }

    const TempDir m_folder;
};

TEST_F(HUTHistoryFileTest, GivesTheEntriesOfEarlierSessionsInTheirOrder) {
    HUTHistoryFile(path()).add("first");
    HUTHistoryFile(path()).add("second");
    HUTHistoryFile file(path());
    file.add("third");
    EXPECT_THAT(file.newest(10), ElementsAre("first", "second", "third"));
    EXPECT_THAT(file.newest(2), ElementsAre("second", "third"));
    EXPECT_THAT(file.newest(0), IsEmpty());
}

TEST_F(HUTHistoryFileTest, KeepsAnEntryOfSeveralLinesTogether) {
    const std::string entry = "if 1 {\n\tputs \"a\\nb\\\\n\"\n}\n\\";
    HUTHistoryFile file(path());
    file.add(entry);
    file.add("last");
    EXPECT_THAT(file.newest(10), ElementsAre(entry, "last"));
}

TEST_F(HUTHistoryFileTest, HasNoEntriesWithoutAFile) {
    EXPECT_THAT(all(), IsEmpty());
    HUTHistoryFile nowhere("");
    nowhere.add("lost");
    EXPECT_THAT(nowhere.newest(10), IsEmpty());
}

TEST_F(HUTHistoryFileTest, MakesTheFoldersAndKeepsTheFileToItsUser) {
    HUTHistoryFile(path("a/b/history")).add("entry");
    EXPECT_THAT(all("a/b/history"), ElementsAre("entry"));
    struct stat info;
    ASSERT_EQ(::stat(path("a/b/history").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
}

TEST_F(HUTHistoryFileTest, IsWrittenAnewWithTheNewestEntriesWhenItHasManyMore) {
    HUTHistoryFile file(path(), 100);
    for (int i = 1; i <= 1000; ++i) {
        file.add("entry " + std::to_string(i));
        ASSERT_LE(all().size(), 227u); // 125 that are let be, and 101 more until they are counted again
    }
    EXPECT_EQ(all().back(), "entry 1000");
    EXPECT_THAT(file.newest(100), testing::SizeIs(100));
    EXPECT_EQ(file.newest(100).front(), "entry 901");
}

TEST_F(HUTHistoryFileTest, ShortensWhatAnEarlierSessionLeftTooLong) {
    std::string text;
    for (int i = 1; i <= 500; ++i) {
        text += std::to_string(i) + "\n";
    }
    HUTFile::write_atomically(path(), text);
    HUTHistoryFile(path(), 100).add("new");
    EXPECT_THAT(all(), testing::SizeIs(100));
    EXPECT_EQ(all().back(), "new");
}

TEST_F(HUTHistoryFileTest, LosesNoEntryOfSessionsAtTheSameTime) {
    constexpr int sessions = 8, entries = 500;
    for (int s = 0; s < sessions; ++s) {
        if (::fork() == 0) {
            HUTHistoryFile file(path());
            for (int i = 0; i < entries; ++i) {
                file.add("session " + std::to_string(s) + "\nentry " + std::to_string(i));
            }
            ::_exit(0);
        }
    }
    for (int s = 0; s < sessions; ++s) {
        int status = 0;
        ::wait(&status);
        EXPECT_EQ(status, 0);
    }
    std::vector<std::string> expected;
    for (int s = 0; s < sessions; ++s) {
        for (int i = 0; i < entries; ++i) {
            expected.push_back("session " + std::to_string(s) + "\nentry " + std::to_string(i));
        }
    }
    EXPECT_THAT(all(), testing::UnorderedElementsAreArray(expected));
}

TEST_F(HUTHistoryFileTest, LosesNoNewEntryWhileOthersShortenTheFile) {
    constexpr int sessions = 4, entries = 300, limit = 60;
    for (int s = 0; s < sessions; ++s) {
        if (::fork() == 0) {
            HUTHistoryFile file(path(), limit);
            for (int i = 0; i < entries; ++i) {
                file.add(std::to_string(s) + " " + std::to_string(i));
            }
            ::_exit(0);
        }
    }
    for (int s = 0; s < sessions; ++s) {
        int status = 0;
        ::wait(&status);
        EXPECT_EQ(status, 0);
    }
    // What is left of a session's entries is its end, without a gap.
    const auto left = all();
    EXPECT_GE(left.size(), static_cast<size_t>(limit));
    EXPECT_LT(left.size(), static_cast<size_t>(sessions * entries));
    std::map<std::string, int> expected;
    for (auto entry = left.rbegin(); entry != left.rend(); ++entry) {
        const size_t blank = entry->find(' ');
        ASSERT_NE(blank, std::string::npos) << *entry;
        int& number = expected.try_emplace(entry->substr(0, blank), entries - 1).first->second;
        EXPECT_EQ(entry->substr(blank + 1), std::to_string(number--));
    }
    EXPECT_FALSE(std::filesystem::exists(path("history.new")));
}

TEST_F(HUTHistoryFileTest, LeavesOutWhatIsNoEntry) {
    const std::string good = "g\xc3\xbct", huge(3 << 20, 'x'), wrong = "no\xff\xfetext";
    HUTFile::write_atomically(path(), good + "\n" + std::string("a\0b", 3) + "\n\n" + huge + "\n" + wrong +
                                          "\n\\x\\\\\nlast");
    EXPECT_THAT(all(), ElementsAre(good, wrong, "\\x\\", "last"));
    EXPECT_THAT(HUTHistoryFile(path()).newest(1), ElementsAre("last"));
}

TEST_F(HUTHistoryFileTest, SurvivesAFileOfOneHugeLine) {
    HUTFile::write_atomically(path(), std::string(5 << 20, '\0'));
    EXPECT_THAT(all(), IsEmpty());
    HUTHistoryFile(path()).add("after");
    EXPECT_THAT(all(), ElementsAre("after"));
}

TEST_F(HUTHistoryFileTest, StartsALineOfItsOwnBehindAnEntryThatWasCutOff) {
    HUTFile::write_atomically(path(), "whole\ncut o");
    HUTHistoryFile(path()).add("new");
    EXPECT_THAT(all(), ElementsAre("whole", "cut o", "new"));
}

TEST_F(HUTHistoryFileTest, KeepsNoEntryThatIsEmptyHugeOrHasANul) {
    HUTHistoryFile file(path());
    file.add("");
    file.add(std::string("a\0b", 3));
    file.add(std::string((1 << 20) + 1, 'x'));
    file.add(std::string(1 << 20, '\\'));
    EXPECT_THAT(file.newest(10), ElementsAre(std::string(1 << 20, '\\')));
}

TEST_F(HUTHistoryFileTest, FollowsALinkAndLeavesItALink) {
    HUTFile::write_atomically(path("real"), "");
    std::filesystem::create_symlink("real", path());
    HUTHistoryFile file(path(), 10);
    for (int i = 0; i < 100; ++i) {
        file.add(std::to_string(i));
    }
    EXPECT_TRUE(std::filesystem::is_symlink(path()));
    EXPECT_EQ(all("real").back(), "99");
}

TEST_F(HUTHistoryFileTest, TellsOnceWhyNothingIsKeptAndCatchesUpLater) {
    std::filesystem::create_directory(path());
    HUTHistoryFile file(path());
    EXPECT_THROW(file.add("one"), std::system_error);
    EXPECT_NO_THROW(file.add("two"));
    std::filesystem::remove(path());
    file.add("three");
    EXPECT_THAT(all(), ElementsAre("one", "two", "three"));
}

TEST_F(HUTHistoryFileTest, RefusesToReadADirectory) {
    EXPECT_THROW(HUTHistoryFile(m_folder.root().string()).newest(1), std::system_error);
}

TEST_F(HUTHistoryFileTest, WaitsForTheLockNotForever) {
    HUTHistoryFile file(path());
    file.add("one");
    const int other = ::open(path().c_str(), O_RDONLY);
    ASSERT_EQ(::flock(other, LOCK_EX), 0);
    EXPECT_THROW(file.add("two"), std::system_error);
    ::close(other);
    file.add("three");
    EXPECT_THAT(all(), ElementsAre("one", "two", "three"));
}

TEST_F(HUTHistoryFileTest, LiesWhereTheUserWantsHisState) {
    const auto place = [](const char* data, const char* state, const char* home) {
        const std::pair<const char*, const char*> variables[] = {
            {"TANDREL_LOCAL_USER_DATA", data}, {"XDG_STATE_HOME", state}, {"HOME", home}};
        for (const auto& [name, value] : variables) {
            value ? ::setenv(name, value, 1) : ::unsetenv(name);
        }
        return HUTHistoryFile::userPath();
    };
    EXPECT_EQ(place("/data", "/state", "/home/me"), "/data/history");
    EXPECT_EQ(place(nullptr, "/state", "/home/me"), "/state/corvane/history");
    EXPECT_EQ(place("data", "state", "/home/me"), "/home/me/.local/state/corvane/history");
    EXPECT_EQ(place(nullptr, nullptr, nullptr), "");
}

} // namespace
