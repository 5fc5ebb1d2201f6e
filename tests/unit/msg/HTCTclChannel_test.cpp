#include "support.h"

#include <fcntl.h>
#include <set>
#include <sstream>
#include <sys/wait.h>
#include <tcl.h>
#include <thread>
#include <unistd.h>

#include "platform/tcl/HTCTclChannel.h"

namespace {

using M = ComMsgMgr;

/// Runs `body` in a child process with standard output to a pipe or file, and gives what it wrote. The child
/// starts with a Tcl library of its own.
std::string output_of(void (*body)(Tcl_Interp*)) {
    TempDir dir;
    const std::string file = dir.path("out");
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        const int out = ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        ::dup2(out, STDOUT_FILENO);
        ::close(out);
        Tcl_FindExecutable(nullptr);
        Tcl_Interp* interp = Tcl_CreateInterp();
        body(interp);
        Tcl_DeleteInterp(interp);
        Tcl_Finalize();
        std::fflush(nullptr);
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    return read_file(file);
}

void say(const char* text) {
    M::sendMsgString("common", M::MSGTYPE_OUTPUT, text);
}

void tcl(Tcl_Interp* interp, const char* script) {
    if (Tcl_Eval(interp, script) != TCL_OK)
        say(Tcl_GetStringResult(interp));
}

TEST(HTCTclChannel, messagesKeepTheirPlaceAmongTheScriptsOutput) {
    EXPECT_EQ(output_of([](Tcl_Interp* interp) {
                  say("zero");
                  HTCTclChannel::forwardMsg2Stdout();
                  HTCTclChannel::initConsoleChannels();
                  tcl(interp, "puts one; puts -nonewline two,");
                  say("three");
                  tcl(interp, "puts four");
              }),
              "zero\none\ntwo,three\nfour\n");
}

TEST(HTCTclChannel, bytesPassUnchanged) {
    EXPECT_EQ(output_of([](Tcl_Interp*) {
                  HTCTclChannel::forwardMsg2Stdout();
                  M::sendMsgString("common", M::MSGTYPE_OUTPUT, std::string_view("\0\xff\xc3\xa4\n", 5));
              }),
              std::string("\0\xff\xc3\xa4\n", 5));
}

TEST(HTCTclChannel, aTransformedStdoutSeesMessages) {
    EXPECT_EQ(output_of([](Tcl_Interp* interp) {
                  HTCTclChannel::forwardMsg2Stdout();
                  tcl(interp, "namespace eval up {\n"
                              "proc initialize {handle mode} { return {initialize finalize write} }\n"
                              "proc finalize handle {}\n"
                              "proc write {handle data} { string toupper $data }\n"
                              "namespace export *; namespace ensemble create }\n"
                              "chan push stdout up");
                  say("loud");
                  tcl(interp, "chan pop stdout");
                  say("soft");
              }),
              "LOUD\nsoft\n");
}

TEST(HTCTclChannel, aStdoutThatTheScriptRedirectsTakesTheMessages) {
    TempDir dir;
    ::setenv("CORVANE_TEST_REDIRECT", dir.path("elsewhere").c_str(), 1);
    EXPECT_EQ(output_of([](Tcl_Interp* interp) {
                  HTCTclChannel::forwardMsg2Stdout();
                  say("here");
                  tcl(interp, "close stdout; set f [open $env(CORVANE_TEST_REDIRECT) w]");
                  say("there");
                  std::thread([] { say("from a thread"); }).join();
                  tcl(interp, "update; close $f");
                  say("nowhere");
              }),
              "here\n");
    EXPECT_EQ(read_file(dir.path("elsewhere")), "there\nfrom a thread\n");
}

TEST(HTCTclChannel, aChannelThatSendsMessagesItselfDoesNotRecurse) {
    const std::string output = output_of([](Tcl_Interp* interp) {
        HTCTclChannel::forwardMsg2Stdout();
        Tcl_CreateObjCommand(
            interp, "say",
            [](ClientData, Tcl_Interp*, int, Tcl_Obj* const objv[]) {
                say(Tcl_GetString(objv[1]));
                return TCL_OK;
            },
            nullptr, nullptr);
        tcl(interp, "namespace eval talk {\n"
                    "proc initialize {handle mode} { return {initialize finalize write} }\n"
                    "proc finalize handle {}\n"
                    "proc write {handle data} { say inner; return $data }\n"
                    "namespace export *; namespace ensemble create }\n"
                    "chan push stdout talk");
        say("outer");
        tcl(interp, "chan pop stdout");
    });
    EXPECT_NE(output.find("inner\n"), std::string::npos);
    EXPECT_NE(output.find("outer\n"), std::string::npos);
}

TEST(HTCTclChannel, otherThreadsWriteWholeLines) {
    const std::string output = output_of([](Tcl_Interp* interp) {
        HTCTclChannel::forwardMsg2Stdout();
        std::vector<std::thread> threads;
        for (int t = 0; t < 8; ++t)
            threads.emplace_back([t] {
                const std::string line(10000, static_cast<char>('a' + t));
                for (int i = 0; i < 50; ++i)
                    say(line.c_str());
            });
        for (int i = 0; i < 50; ++i) {
            say(std::string(10000, 'z').c_str());
            tcl(interp, "puts tcl");
        }
        for (std::thread& thread : threads)
            thread.join();
    });
    std::istringstream lines(output);
    std::multiset<std::string> seen, expected;
    for (std::string line; std::getline(lines, line);)
        seen.insert(line.size() == 10000 ? line.substr(0, 1) + line.substr(9999) : line);
    for (int i = 0; i < 50; ++i) {
        for (const char c : std::string("abcdefghz"))
            expected.insert(std::string(2, c));
        expected.insert("tcl");
    }
    EXPECT_EQ(seen, expected);
}

TEST(HTCTclChannel, messagesAfterTheThreadsEndGoToTheProcess) {
    EXPECT_EQ(output_of([](Tcl_Interp*) {
                  std::thread([] {
                      Tcl_Interp* interp = Tcl_CreateInterp();
                      HTCTclChannel::forwardMsg2Stdout();
                      say("one");
                      Tcl_DeleteInterp(interp);
                      Tcl_FinalizeThread();
                  }).join();
                  say("two");
              }),
              "one\ntwo\n");
}

TEST(HTCTclChannel, stopAndUninitLeadBackToTheProcess) {
    EXPECT_EQ(output_of([](Tcl_Interp*) {
                  HTCTclChannel::forwardMsg2Stdout();
                  say("one");
                  HTCTclChannel::stopMsg2Stdout();
                  say("two");
                  HTCTclChannel::forwardMsg2Stdout();
                  ComMsgMgr::uninit();
                  say("three");
              }),
              "one\ntwo\nthree\n");
}

TEST(HTCTclChannel, allMessagesCanBeSentToStdout) {
    EXPECT_EQ(output_of([](Tcl_Interp*) {
                  HTCTclChannel::forwardMsg2Stdout();
                  M::sendMsgString("common", M::MSGTYPE_HEADER, "# unseen");
                  HTCTclChannel::setAllMsg2Stdout();
                  M::sendMsgString("common", M::MSGTYPE_HEADER, "# seen");
              }),
              "# seen\n");
}

TEST(HTCTclChannel, consoleChannelsBlockWhateverWasInherited) {
    EXPECT_EQ(output_of([](Tcl_Interp* interp) {
                  ::fcntl(STDOUT_FILENO, F_SETFL, ::fcntl(STDOUT_FILENO, F_GETFL) | O_NONBLOCK);
                  HTCTclChannel::forwardMsg2Stdout();
                  HTCTclChannel::initConsoleChannels();
                  say(::fcntl(STDOUT_FILENO, F_GETFL) & O_NONBLOCK ? "does not block" : "blocks");
                  tcl(interp, "puts [fconfigure stdout -buffering]");
              }),
              "blocks\nline\n");
}

TEST(HTCTclChannel, aSlowReaderOfANonBlockingPipeLosesNothing) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        ::dup2(ends[1], STDOUT_FILENO);
        ::close(ends[1]);
        ::fcntl(STDOUT_FILENO, F_SETFL, ::fcntl(STDOUT_FILENO, F_GETFL) | O_NONBLOCK);
        say(std::string(1'000'000, 'x').c_str());
        ::_exit(0);
    }
    ::close(ends[1]);
    std::size_t total = 0;
    char buffer[4096];
    for (ssize_t n; (n = ::read(ends[0], buffer, sizeof buffer)) > 0;)
        total += static_cast<std::size_t>(n);
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(total, 1'000'001u);
}

} // namespace
