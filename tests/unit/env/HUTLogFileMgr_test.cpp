#include "platform/env/HUTLogFileMgr.h"

#include "platform/env/HUTFile.h"
#include "test_support.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <map>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

namespace fs = std::filesystem;
using Log = HUTLogFileMgr;
using ::testing::HasSubstr;

/// What this process may write into a file, as a disk has room for it.
class Room {
public:
    Room() {
        ::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
    }
    /// From here on a file may have so many bytes.
    void limit(rlim_t bytes) const { set({bytes, m_before.rlim_max}); }
    void lift() const { set(m_before); }

private:
    static void set(const struct rlimit& limit) { ::setrlimit(RLIMIT_FSIZE, &limit); }

    struct rlimit m_before {};
};

class LogFileTest : public InTempDir {
protected:
    void TearDown() override {
        Log::closeLog();
        Log::closeJournal();
        while (Log::takeWriteError()) {
        }
        InTempDir::TearDown();
    }
    static void write_file(const fs::path& path, const std::string& text) { std::ofstream(path) << text; }
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(dir))
            found.push_back(entry.path().filename());
        std::sort(found.begin(), found.end());
        return found;
    }
    static std::string refusal(const std::function<void()>& action, std::errc reason) {
        try {
            action();
        } catch (const HUTLogFileError& error) {
            EXPECT_EQ(error.code(), reason) << error.what();
            return error.what();
        }
        ADD_FAILURE() << "must throw";
        return {};
    }
};

TEST_F(LogFileTest, WritesLogAndJournalApart) {
    Log::createLogFile("corvane.log", false);
    Log::createJournalFile("corvane.jou", false);
    Log::writeLog("one\n");
    Log::writeJournal("puts 1\n");
    Log::writeLog("two\n");
    Log::flush();
    EXPECT_EQ(HUTFile::read("corvane.log"), "one\ntwo\n");
    EXPECT_EQ(HUTFile::read("corvane.jou"), "puts 1\n");
}

TEST_F(LogFileTest, NamesAreTheGivenAndTheAbsoluteOne) {
    EXPECT_EQ(Log::getLogFileName(), "");
    EXPECT_EQ(Log::getLogFullName(), "");
    fs::create_directory("d");
    Log::createLogFile("d/../my.log", false);
    Log::createJournalFile("my.jou", false);
    EXPECT_EQ(Log::getLogFileName(), "d/../my.log");
    EXPECT_EQ(Log::getLogFullName(), (dir / "my.log").string());
    EXPECT_EQ(Log::getJournalFileName(), "my.jou");
    EXPECT_EQ(Log::getJournalFullName(), (dir / "my.jou").string());
    Log::closeLog();
    EXPECT_EQ(Log::getLogFileName(), "");
    EXPECT_EQ(Log::getJournalFileName(), "my.jou");
}

TEST_F(LogFileTest, WithoutAFileTextIsDropped) {
    Log::writeLog("x\n");
    Log::flush();
    Log::createLogFile("l", false);
    Log::closeLog();
    Log::writeLog("y\n");
    Log::flush();
    EXPECT_EQ(HUTFile::read("l"), "");
    EXPECT_FALSE(Log::takeWriteError());
}

TEST_F(LogFileTest, AnOlderFileIsKeptAsANumberedBackup) {
    write_file("corvane.log", "first");
    Log::createLogFile("corvane.log", false);
    Log::closeLog();
    Log::createLogFile("corvane.log", false);
    EXPECT_THAT(names(),
                ::testing::ElementsAre("corvane.log", "corvane_1.backup.log", "corvane_2.backup.log"));
    EXPECT_EQ(HUTFile::read("corvane_1.backup.log"), "first");
}

TEST_F(LogFileTest, TheNextBackupGetsANumberAboveAllOthers) {
    write_file("a.log", "x");
    write_file("a_41.backup.log", "");
    write_file("a_x.backup.log", "");
    write_file("a_99999999999999999999999.backup.log", "");
    write_file("ab_77.backup.log", "");
    Log::createLogFile("a.log", false);
    EXPECT_TRUE(fs::exists("a_42.backup.log"));
}

TEST_F(LogFileTest, NamesWithoutOrWithOddExtensionsAreBackedUpToo) {
    for (const char* name : {"plain", ".hidden", "a.b.c", "100%s"}) {
        write_file(name, name);
        Log::createLogFile(name, false);
    }
    EXPECT_EQ(HUTFile::read("plain_1.backup"), "plain");
    EXPECT_EQ(HUTFile::read(".hidden_1.backup"), ".hidden");
    EXPECT_EQ(HUTFile::read("a.b_1.backup.c"), "a.b.c");
    EXPECT_EQ(HUTFile::read("100%s_1.backup"), "100%s");
}

TEST_F(LogFileTest, AppendAddsToTheFile) {
    write_file("l", "old\n");
    Log::createLogFile("l", true);
    Log::writeLog("new\n");
    Log::closeLog();
    EXPECT_EQ(HUTFile::read("l"), "old\nnew\n");
    EXPECT_THAT(names(), ::testing::ElementsAre("l"));
    Log::createLogFile("fresh", true);
    EXPECT_TRUE(fs::exists("fresh"));
}

TEST_F(LogFileTest, OpeningAnewEndsTheFormerFile) {
    Log::createLogFile("a", false);
    Log::writeLog("to a\n");
    Log::createLogFile("b", false);
    Log::writeLog("to b\n");
    Log::createLogFile("b", false);
    Log::writeLog("to the next b\n");
    Log::flush();
    EXPECT_EQ(HUTFile::read("a"), "to a\n");
    EXPECT_EQ(HUTFile::read("b_1.backup"), "to b\n");
    EXPECT_EQ(HUTFile::read("b"), "to the next b\n");
}

TEST_F(LogFileTest, LogAndJournalCannotBeOneFile) {
    Log::createJournalFile("both", false);
    const std::string text = refusal([] { Log::createLogFile("./both", false); }, std::errc::file_exists);
    EXPECT_EQ(text, "The log file \"" + (dir / "both").string() +
                        "\" cannot be opened: it is already open for this session.");
    EXPECT_THAT(names(), ::testing::ElementsAre("both"));
}

TEST_F(LogFileTest, RefusalsGiveTheReasonAndLeaveTheOpenFileAlone) {
    Log::createLogFile("good", false);
    const std::string text =
        refusal([] { Log::createLogFile("no/such/x.log", false); }, std::errc::no_such_file_or_directory);
    EXPECT_THAT(text, HasSubstr("x.log\" cannot be opened: its directory does not exist."));
    EXPECT_THAT(refusal([] { Log::createJournalFile("good/j", true); }, std::errc::not_a_directory),
                HasSubstr("The journal file"));
    fs::create_directory("d");
    refusal([] { Log::createLogFile("d", false); }, std::errc::is_a_directory);
    refusal([] { Log::createLogFile("d", true); }, std::errc::is_a_directory);
    refusal([] { Log::createLogFile("new/", true); }, std::errc::is_a_directory);
    refusal([] { Log::createLogFile("", false); }, std::errc::no_such_file_or_directory);
    refusal([] { Log::createLogFile(std::string("a\0b", 3), false); }, std::errc::invalid_argument);
    refusal([] { Log::createLogFile(std::string(300, 'n'), false); }, std::errc::filename_too_long);
    Log::writeLog("still here\n");
    Log::flush();
    EXPECT_EQ(HUTFile::read("good"), "still here\n");
    EXPECT_EQ(Log::getLogFileName(), "good");
}

TEST_F(LogFileTest, APipeWithoutAReaderIsRefusedAtOnce) {
    ASSERT_EQ(::mkfifo("pipe", 0600), 0);
    refusal([] { Log::createLogFile("pipe", false); }, std::errc::no_such_device_or_address);
    EXPECT_THAT(names(), ::testing::ElementsAre("pipe"));
}

TEST_F(LogFileTest, APipeWithAReaderIsWritten) {
    ASSERT_EQ(::mkfifo("pipe", 0600), 0);
    const int reader = ::open("pipe", O_RDONLY | O_NONBLOCK);
    Log::createLogFile("pipe", false);
    Log::writeLog("through\n");
    Log::flush();
    char text[32] = {};
    EXPECT_EQ(::read(reader, text, sizeof text), 8);
    EXPECT_STREQ(text, "through\n");
    ::close(reader);
}

TEST_F(LogFileTest, ADeviceIsNotRenamed) {
    Log::createLogFile("/dev/null", false);
    Log::writeLog("x\n");
    Log::flush();
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_FALSE(Log::takeWriteError());
}

TEST_F(LogFileTest, ALinkStaysAndTheBackupStandsBesideTheFile) {
    fs::create_directory("d");
    write_file("d/real.log", "old");
    fs::create_symlink("d/real.log", "l.log");
    Log::createLogFile("l.log", false);
    Log::writeLog("new\n");
    Log::flush();
    EXPECT_TRUE(fs::is_symlink("l.log"));
    EXPECT_EQ(HUTFile::read("d/real_1.backup.log"), "old");
    EXPECT_EQ(HUTFile::read("d/real.log"), "new\n");
}

TEST_F(LogFileTest, ALinkToNothingMakesItsTarget) {
    fs::create_symlink("target", "l.log");
    Log::createLogFile("l.log", false);
    EXPECT_TRUE(fs::is_regular_file("target"));
    fs::create_symlink("no/such/dir", "bad.log");
    refusal([] { Log::createLogFile("bad.log", false); }, std::errc::no_such_file_or_directory);
}

TEST_F(LogFileTest, AFileThatAnotherSessionWritesIsNotCutOff) {
    Log::createLogFile("corvane.log", false);
    Log::writeLog("mine\n");
    Log::flush();
    const auto other = run_child([] {
        Log::createLogFile("corvane.log", false);
        Log::writeLog("the other's\n");
        Log::flush();
    });
    EXPECT_EQ(other.status, 0);
    Log::writeLog("mine again\n");
    Log::flush();
    EXPECT_EQ(HUTFile::read("corvane.log"), "the other's\n");
    EXPECT_EQ(HUTFile::read("corvane_1.backup.log"), "mine\nmine again\n");
}

TEST_F(LogFileTest, ManySessionsThatStartTogetherLoseNothing) {
    std::vector<pid_t> children;
    for (int i = 0; i < 8; ++i) {
        const pid_t pid = ::fork();
        if (pid == 0) {
            try {
                Log::createLogFile("l.log", false);
                Log::writeLog("session " + std::to_string(i) + "\n");
                Log::flush();
            } catch (const std::exception&) {
                ::_exit(1);
            }
            ::_exit(0);
        }
        children.push_back(pid);
    }
    for (const pid_t pid : children) {
        int status = 0;
        ::waitpid(pid, &status, 0);
        EXPECT_EQ(status, 0);
    }
    std::string all;
    for (const std::string& name : names())
        all += HUTFile::read(name);
    EXPECT_EQ(names().size(), 8u);
    for (int i = 0; i < 8; ++i)
        EXPECT_THAT(all, HasSubstr("session " + std::to_string(i) + "\n"));
}

TEST_F(LogFileTest, TheTenNewestBackupsAreKept) {
    for (int i = 1; i <= 25; ++i)
        write_file("corvane_" + std::to_string(i) + ".backup.log", "x");
    write_file("corvane.log", "x");
    write_file("corvane_a.backup.log", "x");
    write_file("corvane_3.backup.jou", "x");
    write_file("corvane_03.backup.log", "x");
    fs::create_directory("corvane_0.backup.log");
    Log::RemoveOldBackups("corvane.log");
    for (int i = 1; i <= 25; ++i)
        EXPECT_EQ(fs::exists("corvane_" + std::to_string(i) + ".backup.log"), i > 15) << i;
    for (const char* other : {"corvane.log", "corvane_a.backup.log", "corvane_3.backup.jou",
                              "corvane_03.backup.log", "corvane_0.backup.log"})
        EXPECT_TRUE(fs::exists(other)) << other;
}

TEST_F(LogFileTest, ABackupThatASessionStillWritesIsNotRemoved) {
    Log::createLogFile("l_1.backup.log", false);
    for (int i = 2; i <= 15; ++i)
        write_file("l_" + std::to_string(i) + ".backup.log", "x");
    const auto other = run_child([] { Log::RemoveOldBackups("l.log"); });
    EXPECT_EQ(other.status, 0);
    EXPECT_TRUE(fs::exists("l_1.backup.log"));
    EXPECT_FALSE(fs::exists("l_2.backup.log"));
    EXPECT_EQ(names().size(), 11u);
}

TEST_F(LogFileTest, BackupsOfTheOpenFileAreFoundAfterAChangeOfDirectory) {
    fs::create_directory("elsewhere");
    for (int i = 1; i <= 12; ++i)
        write_file("l_" + std::to_string(i) + ".backup.log", "x");
    Log::createLogFile("l.log", false);
    fs::current_path("elsewhere");
    Log::RemoveOldBackups("l.log");
    EXPECT_FALSE(fs::exists(dir / "l_2.backup.log"));
    EXPECT_TRUE(fs::exists(dir / "l_3.backup.log"));
}

TEST_F(LogFileTest, RemovingBackupsWhereThereAreNoneIsQuiet) {
    Log::RemoveOldBackups("");
    Log::RemoveOldBackups("no/such/dir/l.log");
    Log::RemoveOldBackups("l.log");
    EXPECT_TRUE(names().empty());
}

TEST_F(LogFileTest, NothingReachesTheFileBeforeTheFlush) {
    Log::createLogFile("l", false);
    Log::writeLog("text\n");
    EXPECT_EQ(HUTFile::read("l"), "");
    Log::flush();
    EXPECT_EQ(HUTFile::read("l"), "text\n");
}

TEST_F(LogFileTest, TextOfAnySizeArrivesWhole) {
    Log::createLogFile("l", false);
    std::string expected;
    for (const size_t size : {1u, 65535u, 65536u, 65537u, 1000000u, 0u, 10u, 65530u}) {
        const std::string text = std::string(size, static_cast<char>('a' + size % 26)) + '\n';
        Log::writeLog(text);
        expected += text;
    }
    Log::writeLog("");
    Log::writeLog("tail without end \xC3\xA4 \xFF");
    expected += "tail without end \xC3\xA4 \xFF";
    Log::flush();
    EXPECT_TRUE(HUTFile::read("l") == expected);
}

TEST_F(LogFileTest, AFullBufferIsHandedOverInWholeLines) {
    Log::createLogFile("l", false);
    for (int i = 0; i < 3000; ++i)
        Log::writeLog("a line of some thirty characters\n");
    const std::string early = HUTFile::read("l");
    ASSERT_FALSE(early.empty());
    EXPECT_EQ(early.back(), '\n');
}

TEST_F(LogFileTest, OneThreadCanPutALineTogetherPieceByPiece) {
    Log::createLogFile("l", false);
    Log::writeLog("a");
    Log::flush();
    Log::writeLog("b\n");
    Log::writeLog("open");
    std::thread([] { Log::writeLog("of another thread\n"); }).join();
    Log::writeLog("next\n");
    Log::flush();
    EXPECT_EQ(HUTFile::read("l"), "ab\nopen\nof another thread\nnext\n");
}

namespace {
std::string line_of(int thread, int number) {
    std::ostringstream line;
    line << '<' << thread << ' ' << number << ' '
         << std::string(static_cast<size_t>(number % 97), static_cast<char>('a' + thread)) << '>';
    return line.str();
}
} // namespace

TEST_F(LogFileTest, LinesOfEightThreadsNeverMix) {
    constexpr int threads = 8, lines = 3000;
    Log::createLogFile("l", false);
    std::vector<std::thread> writers;
    for (int t = 0; t < threads; ++t)
        writers.emplace_back([t] {
            for (int i = 0; i < lines; ++i) {
                Log::writeLog(line_of(t, i) + '\n');
                if (i % 100 == 0)
                    Log::flush();
            }
        });
    for (auto& writer : writers)
        writer.join();
    Log::flush();

    std::istringstream in(HUTFile::read("l"));
    std::map<int, int> next;
    int count = 0;
    for (std::string line; std::getline(in, line); ++count) {
        int t = -1, i = -1;
        ASSERT_EQ(std::sscanf(line.c_str(), "<%d %d", &t, &i), 2) << line;
        ASSERT_EQ(i, next[t]++) << "order within a thread";
        ASSERT_EQ(line, line_of(t, i));
    }
    EXPECT_EQ(count, threads * lines);
}

TEST_F(LogFileTest, AFullDiskIsToldOnceAndTheSessionGoesOn) {
    Log::createLogFile("/dev/full", false);
    EXPECT_FALSE(Log::takeWriteError());
    Log::writeLog("lost\n");
    Log::flush();
    const auto error = Log::takeWriteError();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->path, "/dev/full");
    EXPECT_EQ(error->code, std::errc::no_space_on_device);
    for (int i = 0; i < 10000; ++i)
        Log::writeLog("more text that finds no place\n");
    Log::writeLog(std::string(200000, 'x'));
    Log::flush();
    EXPECT_FALSE(Log::takeWriteError());
    Log::createLogFile("good", false);
    Log::writeLog("fine\n");
    Log::flush();
    EXPECT_EQ(HUTFile::read("good"), "fine\n");
    EXPECT_FALSE(Log::takeWriteError());
}

TEST_F(LogFileTest, AFailingJournalIsToldToo) {
    Log::createJournalFile("/dev/full", false);
    Log::writeJournal("x\n");
    Log::flush();
    ASSERT_TRUE(Log::takeWriteError());
}

TEST_F(LogFileTest, WhatADiskRefusedIsWrittenOnceThereIsRoomAgain) {
    const auto child = run_child([] {
        Log::createLogFile("l", false);
        const Room room;
        room.limit(10);
        Log::writeLog("a line that is too long\n");
        Log::flush();
        const auto error = Log::takeWriteError();
        EXPECT_TRUE(error && error->code == std::errc::file_too_large);
        EXPECT_EQ(HUTFile::read("l"), "a line tha");
        Log::writeLog("second\n");
        Log::flush();
        EXPECT_FALSE(Log::takeWriteError());
        room.lift();
        Log::flush();
        EXPECT_EQ(HUTFile::read("l"), "a line that is too long\nsecond\n");
        room.limit(10);
        Log::writeLog("third\n");
        Log::flush();
        EXPECT_TRUE(Log::takeWriteError()) << "a new failure is told anew";
    });
    EXPECT_EQ(child.status, 0);
}

TEST_F(LogFileTest, WhatFollowsALostTextStartsOnALineOfItsOwn) {
    const auto child = run_child([] {
        Log::createLogFile("l", false);
        const Room room;
        room.limit(10);
        Log::writeLog(std::string(100000, 'x') + '\n');
        room.lift();
        Log::writeLog("after\n");
        Log::flush();
        EXPECT_EQ(HUTFile::read("l"),
                  "xxxxxxxxxx\n# Text is missing here: the file could not be written.\nafter\n");
    });
    EXPECT_EQ(child.status, 0);
}

TEST_F(LogFileTest, WhereTextWasLostStandsOneComment) {
    const auto child = run_child([] {
        Log::createJournalFile("j", false);
        const Room room;
        room.limit(0);
        const std::string line = std::string(99, 'k') + '\n';
        for (int i = 0; i < 10'000; ++i)
            Log::writeJournal(line);
        Log::writeJournal(std::string(200'000, 'x'));
        Log::flush();
        room.lift();
        Log::writeJournal("after\n");
        Log::flush();
        const std::string text = HUTFile::read("j");
        const std::string tail = "# Text is missing here: the file could not be written.\nafter\n";
        ASSERT_TRUE(text.ends_with(line + tail));
        const std::string kept = text.substr(0, text.size() - tail.size());
        EXPECT_GT(kept.size(), 65'000u);
        EXPECT_EQ(kept.size() % line.size(), 0u);
        EXPECT_EQ(kept.find_first_not_of("k\n"), kept.npos);
    });
    EXPECT_EQ(child.status, 0);
}

TEST_F(LogFileTest, EachGapHasACommentOfItsOwn) {
    const auto child = run_child([] {
        Log::createLogFile("l", false);
        const Room room;
        room.limit(0);
        for (const char* word : {"one", "two"}) {
            Log::writeLog(std::string(200'000, 'x'));
            Log::writeLog(std::string(word) + "\n");
        }
        for (int i = 0; i < 3; ++i)
            Log::writeLog(std::string(200'000, 'x') + '\n');
        room.lift();
        Log::flush();
        const std::string mark = "# Text is missing here: the file could not be written.\n";
        EXPECT_EQ(HUTFile::read("l"), mark + "one\n" + mark + "two\n" + mark);
    });
    EXPECT_EQ(child.status, 0);
}

TEST_F(LogFileTest, ARemovedFileIsToldOnce) {
    Log::createLogFile("l", false);
    Log::createJournalFile("j", false);
    Log::checkFiles();
    EXPECT_FALSE(Log::hasWriteError());
    std::filesystem::remove("l");
    Log::checkFiles();
    EXPECT_TRUE(Log::hasWriteError());
    const auto error = Log::takeWriteError();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->path, (std::filesystem::current_path() / "l").string());
    EXPECT_EQ(error->code, std::errc::no_such_file_or_directory);
    Log::writeLog("into nowhere\n");
    Log::flush();
    Log::checkFiles();
    EXPECT_FALSE(Log::hasWriteError());
    std::filesystem::remove("j");
    Log::checkFiles();
    EXPECT_TRUE(Log::takeWriteError()) << "the journal is a file of its own";
    Log::createLogFile("l", false);
    std::filesystem::remove("l");
    Log::checkFiles();
    EXPECT_TRUE(Log::takeWriteError()) << "so is a new log";
}

TEST_F(LogFileTest, ARenamedFileAndADeviceAreStillThere) {
    Log::createLogFile("l", false);
    Log::createJournalFile("/dev/null", false);
    std::filesystem::rename("l", "other");
    Log::checkFiles();
    EXPECT_FALSE(Log::hasWriteError());
}

TEST_F(LogFileTest, TheHandlersFlushWritesBothFiles) {
    Log::createLogFile("l", false);
    Log::createJournalFile("j", false);
    Log::writeLog("log\n");
    Log::writeJournal("journal\n");
    Log::flushFromSignalHandler();
    Log::flush();
    EXPECT_EQ(HUTFile::read("l"), "log\n");
    EXPECT_EQ(HUTFile::read("j"), "journal\n");
}

namespace {
void flush_in_handler(int) {
    Log::flushFromSignalHandler();
}
} // namespace

TEST_F(LogFileTest, TheHandlersFlushDoesNotHangOrLoseTextWhereverASignalStrikes) {
    const auto child = run_child([] {
        ::alarm(60);
        Log::createLogFile("l", false);
        ::signal(SIGUSR1, flush_in_handler);
        const pthread_t self = ::pthread_self();
        std::atomic<bool> done{false};
        std::thread striker([&] {
            for (int i = 0; i < 50; ++i) {
                ::pthread_kill(self, SIGUSR1);
                std::this_thread::sleep_for(std::chrono::microseconds(200));
            }
            done = true;
        });
        std::vector<std::string> written;
        while (!done) {
            written.push_back("line " + std::to_string(written.size()) + " of the log\n");
            Log::writeLog(written.back());
        }
        striker.join();
        Log::flush();
        // A handler that strikes within a write may put text out twice, but never drops any.
        const std::string all = HUTFile::read("l");
        size_t at = 0;
        for (const std::string& line : written) {
            at = all.find(line, at);
            ASSERT_NE(at, std::string::npos) << line;
        }
    });
    EXPECT_EQ(child.status, 0);
}
