// What a session tells the windows of its course.
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/env/HSTVector.h"
#include "platform/gui/HUTGuiEventBroker.h"
#include "tcltasks/core/Omu_commontasks.h"
#include "tcltasks/driver/detail/driver.h"
#include "tcltasks/driver/detail/session_events.h"

namespace {

using ::testing::ElementsAre;
using namespace driver::detail;

std::vector<std::string> heard;

template <class Event>
void listen(const std::string& name) {
    static_cast<void>(HUTGuiEventBroker::instance().addListener<Event>([name](const Event& event) {
        std::string text = name;
        const boost::any item = event.getData(0);
        if (auto* const* list = boost::any_cast<HSTVector<std::string>*>(&item)) {
            for (const std::string& word : **list) {
                text += "|" + word;
            }
        }
        heard.push_back(text);
    }));
}

// What is heard of a session with these options. A process has one session, so each has a process of its own.
void in_session(const std::string& options, const std::function<void(const std::string& argv0)>& expect,
                const std::string& setup = "") {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        Tcl_FindExecutable(nullptr);
        Tcl_Interp* interp = Tcl_CreateInterp();
        EXPECT_EQ(Tcl_Init(interp), TCL_OK);
        EXPECT_EQ(Omu_commontasks_Init(interp), TCL_OK) << Tcl_GetStringResult(interp);
        listen<engine_start>("engine_start");
        listen<engine_stop>("engine_stop");
        listen<start_progress_dialog>("start");
        listen<stop_progress_dialog>("stop");
        listen<source_in_gui>("source_in_gui");
        Tcl_CreateObjCommand(
            interp, "heard",
            [](ClientData, Tcl_Interp*, int, Tcl_Obj* const* words) {
                heard.push_back(Tcl_GetString(words[1]));
                return TCL_OK;
            },
            nullptr, nullptr);
        Tcl_SetVar(interp, "argv0", "outside", TCL_GLOBAL_ONLY);
        std::ofstream("session_a.tcl") << "heard $argv0";
        std::ofstream("session_b.tcl") << "heard b; error away";
        const std::string command = "proc exit {args} {heard [list exit {*}$args]}\n" + setup +
                                    "\nomu::main -quiet -notrace -notclinit -nolog -nojournal " + options;
        EXPECT_EQ(Tcl_Eval(interp, command.c_str()), TCL_OK) << Tcl_GetStringResult(interp);
        driver::uninit(true);
        driver::uninit(true);
        expect(Tcl_GetVar(interp, "argv0", TCL_GLOBAL_ONLY));
        std::cout << std::flush;
        ::_exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "see the failures above";
}

TEST(SessionEvents, ProgressFramesEachScriptAlsoOneThatFails) {
    in_session("-mode tcl -source session_a.tcl -source session_b.tcl", [](const std::string& argv0) {
        EXPECT_THAT(heard, ElementsAre("engine_start", "start|Sourcing Tcl script 'session_a.tcl'",
                                       "session_a.tcl", "stop", "start|Sourcing Tcl script 'session_b.tcl'",
                                       "b", "stop", "engine_stop"));
        EXPECT_EQ(argv0, "outside");
    });
}

TEST(SessionEvents, ARegressionRunLeavesTheScriptsToTheWindows) {
    in_session(
        "-mode gui -regress -script session_b.tcl -source session_a.tcl",
        [](const std::string&) {
            EXPECT_THAT(heard,
                        ElementsAre("engine_start", "heard start_gui",
                                    "source_in_gui|session_a.tcl|session_b.tcl", "exit", "engine_stop"));
        },
        "proc common::start_gui {args} {heard {heard start_gui}}");
}

TEST(SessionEvents, ARegressionRunWithoutWindowsSourcesTheScriptsItself) {
    in_session("-mode gui -regress -source session_b.tcl", [](const std::string&) {
        EXPECT_THAT(heard, ElementsAre("engine_start", "start|Sourcing Tcl script 'session_b.tcl'", "b",
                                       "stop", "exit 1", "engine_stop"));
    });
}

} // namespace
