#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/env/HUTEnv.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/taskcore/task_manager.h"
#include "platform/taskcore/task_options_base.h"
#include "platform/tcl/HTCTclInterp.h"
#include "tcltasks/driver/HTCDriverInit.h"

using namespace vek::tcltasks;

namespace {

// The options are declared once in a process, for its product: each product has a process of its own.
void as_product(const HUTProductInfo& product, const std::function<void(Tcl_Interp*)>& body) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        HUTEnv::setProductInfo(product);
        Tcl_Interp* interp = Tcl_CreateInterp();
        HTCTclInterp::registerInterp(interp);
        HTCDriverInit::HTCDriver::init(interp);
        body(interp);
        std::cout << std::flush;
        ::_exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "see the failures above";
}

HUTProductInfo product(const char* name, bool compilerFamily = false, bool internal = false) {
    HUTProductInfo info;
    info.name = name;
    info.fpgaCompilerFamily = compilerFamily;
    info.internal = internal;
    return info;
}

const task_options_base& main_options() {
    static const auto task = task_manager::createTask("omu::main");
    return dynamic_cast<const task_options_base&>(*task);
}

const options_description::option* option(const char* name) {
    const auto& description = main_options().get_options_description();
    const int index = description.find(name);
    return index < 0 ? nullptr : &description.options()[static_cast<size_t>(index)];
}

bool is_listed(const char* name) {
    return option(name) && !option(name)->semantic->is_hidden();
}

std::string default_of(const char* name) {
    return main_options().get_option<std::string>(name);
}

std::string result_of(Tcl_Interp* interp, const char* command) {
    Tcl_Eval(interp, command);
    return Tcl_GetStringResult(interp);
}

TEST(MainOptions, theOptionsStandInTheirOrderWithTheirDefaults) {
    as_product(product("Corvane"), [](Tcl_Interp*) {
        const std::vector<std::string> names{
            "mode",       "init",         "source",      "script",        "project",       "nojournal",
            "appjournal", "journal",      "nolog",       "applog",        "log",           "messageDb",
            "version",    "regress",      "metrics",     "quiet",         "jvm",           "java",
            "tclargs",    "notrace",      "stack",       "product",       "noupdatecheck", "tempDir",
            "robot",      "record_robot", "server_mode", "nointernaltcl", "notclinit"};
        std::vector<std::string> declared;
        for (const auto& each : main_options().get_options_description().options()) {
            declared.push_back(each.name);
        }
        EXPECT_EQ(declared, names);
        EXPECT_EQ(default_of("mode"), "gui");
        EXPECT_EQ(default_of("journal"), "corvane.jou");
        EXPECT_EQ(default_of("log"), "corvane.log");
        EXPECT_EQ(default_of("product"), "Corvane");
        EXPECT_EQ(main_options().get_option<int>("stack"), 20);
        ASSERT_EQ(main_options().get_positional_options().positions().size(), 1u);
        EXPECT_EQ(main_options().get_positional_options().positions()[0].name, "project");
    });
}

TEST(MainOptions, theFpgaCompilersHaveNoWindows) {
    as_product(product("Corvane_fc", true), [](Tcl_Interp* interp) {
        EXPECT_EQ(default_of("mode"), "tcl");
        EXPECT_EQ(option("mode")->help, "Invocation mode, allowed values are 'tcl', and 'batch'");
        const std::string refused = result_of(interp, "omu::main -mode gui");
        EXPECT_NE(refused.find("17-3944"), std::string::npos) << refused;
        EXPECT_NE(refused.find("Corvane_fc"), std::string::npos) << refused;
    });
}

TEST(MainOptions, theBenchHasTheWordWidthsAndItsOwnProjects) {
    as_product(product("corvane_bench"), [](Tcl_Interp*) {
        EXPECT_TRUE(is_listed("m32"));
        EXPECT_TRUE(is_listed("m64"));
        EXPECT_EQ(option("project")->help, "Load the specified project (.npr) file");
        EXPECT_EQ(default_of("log"), "corvane_bench.log");
    });
}

TEST(MainOptions, theAnalyzerOpensFilesAndHidesTheRest) {
    as_product(product("meldrin_analyzer"), [](Tcl_Interp*) {
        for (const char* name :
             {"mode", "init", "source", "script", "project", "log", "tclargs", "tempDir"}) {
            EXPECT_TRUE(option(name)) << name;
            EXPECT_FALSE(is_listed(name)) << name;
        }
        EXPECT_TRUE(is_listed("open"));
        EXPECT_TRUE(option("test"));
        EXPECT_FALSE(is_listed("test"));
        EXPECT_TRUE(main_options().get_positional_options().positions().empty());
    });
}

TEST(MainOptions, norrimShowsModeAndScriptOnly) {
    as_product(product("norrim"), [](Tcl_Interp*) {
        EXPECT_TRUE(is_listed("mode"));
        EXPECT_TRUE(is_listed("script"));
        EXPECT_TRUE(is_listed("version"));
        EXPECT_FALSE(is_listed("source"));
        EXPECT_EQ(option("mode")->help, "Invocation mode, allowed values are 'gui', 'tcl', and 'batch'");
        EXPECT_TRUE(main_options().get_positional_options().positions().empty());
    });
}

TEST(MainOptions, theTeamsOwnBuildHasHardVerbose) {
    as_product(product("Corvane", false, true), [](Tcl_Interp*) {
        EXPECT_TRUE(option("hard_verbose"));
        EXPECT_FALSE(is_listed("hard_verbose"));
    });
    as_product(product("Corvane"), [](Tcl_Interp*) { EXPECT_FALSE(option("hard_verbose")); });
}

TEST(MainOptions, anErrorNamesTheProgramAndNotTheCommand) {
    as_product(product("Corvane"), [](Tcl_Interp* interp) {
        const std::string refused = result_of(interp, "omu::main -nosuch");
        EXPECT_NE(refused.find("'-nosuch'"), std::string::npos) << refused;
        EXPECT_NE(refused.find("'corvane'"), std::string::npos) << refused;
        EXPECT_EQ(refused.find("omu::main"), std::string::npos) << refused;
    });
}

TEST(MainOptions, withSkipDriverTheCommandsDoNotExist) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        Tcl_Interp* interp = Tcl_CreateInterp();
        HTCTclInterp::registerInterp(interp);
        Tcl_Eval(interp, "namespace eval omu {variable skip_driver {}}");
        HTCDriverInit::HTCDriver::init(interp);
        const bool absent = !Tcl_FindCommand(interp, "omu::main", nullptr, TCL_GLOBAL_ONLY) &&
                            !Tcl_FindCommand(interp, "common::version", nullptr, TCL_GLOBAL_ONLY);
        HTCDriverInit::HTCDriver::uninit();
        ::_exit(absent && HTCDriverInit::HTCDriver::skip ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

} // namespace
