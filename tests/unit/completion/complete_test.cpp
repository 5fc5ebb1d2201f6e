#include <gmock/gmock.h>

#include "platform/tcl/HTCTclInterp.h"
#include "world.h"

using HTCLibEdit::detail::complete;
using HTCLibEdit::detail::completion;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

TEST_F(Completion, AnEmptyLineListsAllCommandsAndNamespacesThatAreNotHidden) {
    const std::string all = " " + listed("^");
    EXPECT_THAT(all, HasSubstr(" get_property "));
    EXPECT_THAT(all, HasSubstr(" puts "));
    EXPECT_THAT(all, HasSubstr(" wk_paint "));
    EXPECT_THAT(all, HasSubstr(" wk:: "));
    EXPECT_THAT(all, HasSubstr(" omu:: "));
    EXPECT_THAT(all, Not(HasSubstr(" wk_secret ")));
    EXPECT_THAT(all, Not(HasSubstr(" wk_old ")));
}

TEST_F(Completion, BlanksAloneAreAnEmptyLine) {
    const std::string all = listed("^");
    EXPECT_EQ(listed("  \t^"), all);
    EXPECT_EQ(listed("wk_x; ^"), all);
    EXPECT_EQ(listed("wk_x;^"), all);
}

TEST_F(Completion, ACommandBehindAnOpenBracketIsCompleted) {
    EXPECT_EQ(finished("puts [get_prop^"), "puts [get_property ^");
}

TEST_F(Completion, TheOptionsOfACommandAreCompleted) {
    EXPECT_EQ(finished("get_property -o^"), "get_property -object ^");
    EXPECT_EQ(listed("get_property -^"), "-max -min -name -object ");
}

TEST_F(Completion, ALineThatIsTooLongSaysSoAndBeeps) {
    for (const std::string& line :
         {"wk_build -color " + std::string(5000, 'x') + " -c", "puts " + std::string(100000, 'x'),
          "puts [" + std::string(5000, 'x') + " y"}) {
        const completion result = complete(interp, line);
        EXPECT_EQ(result.output, "\nUnable to tab complete due to command line length.\n");
        EXPECT_TRUE(result.beep);
        EXPECT_EQ(result.then, completion::outcome::error);
        EXPECT_FALSE(result.replacement);
    }
}

TEST_F(Completion, OnlyTheLastCommandOfALongLineCounts) {
    EXPECT_TRUE(
        finished("puts " + std::string(100000, 'x') + "; wk_build -col^").ends_with("; wk_build -color ^"));
}

TEST_F(Completion, ALongFirstWordIsNoCommand) {
    EXPECT_EQ(tab(std::string(100000, 'x') + "^"), "error");
}

TEST_F(Completion, BracketsWithoutEndTakeNoTime) {
    std::string line = "wk_x ";
    for (int i = 0; i < 500; ++i) {
        line += "[a] ";
    }
    EXPECT_EQ(tab(line + "^"), "redisplayed beep");
    EXPECT_TRUE(tab("wk_x " + std::string(4000, '[') + " a wkbe^").starts_with("finished"));
    EXPECT_EQ(tab("wk_x " + std::string(100000, '[') + "^"), "redisplayed beep");
    EXPECT_EQ(tab("wk_x " + std::string(4000, '"') + "^"), "redisplayed beep");
}

TEST_F(Completion, TheResultAndTheErrorOfTheLastCommandStay) {
    EXPECT_EQ(Tcl_Eval(interp, "error oops {the stack} {MY CODE}"), TCL_ERROR);
    const std::string info = Tcl_GetVar(interp, "errorInfo", TCL_GLOBAL_ONLY);
    complete(interp, "puts nosuchfile");
    complete(interp, "wk_p");
    EXPECT_STREQ(Tcl_GetStringResult(interp), "oops");
    EXPECT_EQ(Tcl_GetVar(interp, "errorInfo", TCL_GLOBAL_ONLY), info);
    EXPECT_STREQ(Tcl_GetVar(interp, "errorCode", TCL_GLOBAL_ONLY), "MY CODE");
}

TEST_F(Completion, AListingCommandThatFailsBeeps) {
    eval("rename omu::info_commands wk_kept; proc omu::info_commands args {error no}");
    EXPECT_EQ(tab("wk_pa^"), "redisplayed beep");
    eval("proc omu::info_commands args {return \\{}");
    EXPECT_EQ(tab("wk_pa^"), "error");
    eval("proc omu::info_commands args {return <thing>}");
    EXPECT_EQ(tab("wk_pa^"), "listed\twk_pa^\t<thing> ");
    eval("proc omu::info_commands args {return {wk_b <thing> wk_a <other>}}");
    EXPECT_EQ(tab("wk^"), "listed\twk_^\twk_a wk_b <thing> <other> ");
    eval("proc omu::info_commands args {return {wk_only <thing>}}");
    EXPECT_EQ(tab("wk^"), "listed\twk^\twk_only <thing> ");
    eval("rename omu::info_commands {}; rename wk_kept omu::info_commands");
}

TEST_F(Completion, AnotherInterpreterHasItsOwnCommands) {
    eval("interp create kid; kid eval {proc wk_kid {} {}}");
    EXPECT_EQ(tab("wk_kid^"), "error");
}

TEST_F(Completion, WhatWasHiddenAfterAListingStaysAway) {
    EXPECT_THAT(listed("wk_p^"), HasSubstr("wk_polish"));
    eval("omu::hide_commands wk_polish");
    EXPECT_EQ(listed("wk_p^"), "wk_paint wk_print ");
}

} // namespace
