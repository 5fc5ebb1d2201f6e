#include <gmock/gmock.h>

#include "platform/taskcore/value_hints.h"
#include "tcltasks/builtin/completion/HTCInfoCommands.h"
#include "tcltasks/builtin/completion/HTCMatchOptions.h"
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

TEST_F(Completion, AnOpenBracketAloneListsAllCommands) {
    const std::string all = listed("^");
    EXPECT_EQ(listed("puts [^"), all);
    EXPECT_EQ(listed("[^"), all);
    EXPECT_EQ(listed("puts \"[^"), all);
    EXPECT_EQ(listed("wk_x; puts [^"), all);
    EXPECT_EQ(listed("if 1 {[^"), all);
    EXPECT_EQ(tab("puts \\[^"), "redisplayed beep");
    EXPECT_EQ(tab("puts {}[^"), "redisplayed beep");
}

TEST_F(Completion, ACommandBehindAnOpenBracketIsCompleted) {
    EXPECT_EQ(finished("puts [get_prop^"), "puts [get_property ^");
}

TEST_F(Completion, TheOptionsOfACommandAreCompleted) {
    EXPECT_EQ(finished("get_property -o^"), "get_property -object ^");
    EXPECT_EQ(listed("get_property -^"), "-max -min -name -object ");
}

TEST_F(Completion, TheListingCommandsAreAskedForTheWordThatWasTyped) {
    for (const char* command : {"info_commands", "match_options"}) {
        eval(std::string("rename omu::") + command + " omu::wk_" + command + "; proc omu::" + command +
             " args {lappend ::wk_asked [list " + command + " {*}$args]; return {}}");
    }
    for (const char* line : {"^", " \t^", "wk_x; ^", "puts [get_prop^", "foo; ba^"}) {
        EXPECT_EQ(tab(line), "error");
    }
    EXPECT_EQ(eval("set wk_asked"),
              "{info_commands *} {info_commands *} {info_commands *} {info_commands get_prop*} "
              "{info_commands ba*}");
    eval("unset wk_asked");
    for (const char* line : {"get_property -o^", "get_property -^", "foo; bar -x^", "puts [bar a -x^"}) {
        EXPECT_EQ(tab(line), "error");
    }
    EXPECT_EQ(eval("set wk_asked"), "{match_options get_property o} {match_options get_property {}} "
                                    "{match_options bar x} {match_options bar x}");
    eval(
        "foreach name {info_commands match_options} {rename omu::$name {}; rename omu::wk_$name omu::$name}");
}

TEST_F(Completion, WhatIsReplacedIsCountedFromTheStartOfTheLine) {
    EXPECT_EQ(complete(interp, "foo; wk_build -col").replace, 14U);
    EXPECT_EQ(complete(interp, "foo; puts [wk_pa").replace, 11U);
    EXPECT_EQ(complete(interp, "größe; wk_x wkbe").replace, 14U) << "in bytes";
    EXPECT_EQ(complete(interp, "foo; if 1 {wk_x {wk_pa").replace, 17U);
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

TEST_F(Completion, WithoutItsCommandsTabBeepsAndRunsNothingElse) {
    eval("set wk_unknown {}; proc unknown args {lappend ::wk_unknown $args; error no}");
    HTCLibEditInit::HTCInfoCommands::uninit();
    HTCLibEditInit::HTCMatchOptions::uninit();
    for (const char* name : {"info_commands", "match_options", "hide_commands", "hide_namespaces"}) {
        EXPECT_EQ(eval(std::string("info commands ::omu::") + name), "");
    }
    EXPECT_EQ(tab("wk_pa^"), "redisplayed beep");
    EXPECT_EQ(tab("wk_build -col^"), "redisplayed beep");
    HTCLibEditInit::HTCMatchOptions::init(interp);
    HTCLibEditInit::HTCInfoCommands::init(interp);
    EXPECT_EQ(finished("wk_pa^"), "wk_paint ^");
    EXPECT_EQ(finished("wk_build -col^"), "wk_build -color ^");
    EXPECT_EQ(eval("set wk_unknown"), "");
}

TEST_F(Completion, AnotherInterpreterHasItsOwnCommands) {
    eval("interp create kid; kid eval {proc wk_kid {} {}}");
    EXPECT_EQ(tab("wk_kid^"), "error");
}

TEST_F(Completion, WhatWasHiddenAfterAListingStaysAway) {
    eval("proc wk_shed args {}; proc wk_shelf args {}");
    EXPECT_EQ(listed("wk_s^"), "wk_shed wk_shelf ");
    eval("omu::hide_commands wk_shed");
    EXPECT_EQ(finished("wk_s^"), "wk_shelf ^");
}

TEST_F(Completion, ClassesAndTheirPropertiesAreOffered) {
    EXPECT_EQ(finished("list_property -class attr_s^"), "list_property -class attr_spec ^");
    const std::string properties = " " + listed("list_property_value -class attr_spec -name ^");
    EXPECT_EQ(" " + listed("get_property ^"), properties) << "attr_spec is the only class here";
    EXPECT_THAT(properties, HasSubstr(" type "));
    EXPECT_EQ(tab("list_property_value -class nosuch -name zz^"), "redisplayed beep");
}

TEST_F(Completion, FeaturesAreOffered) {
    EXPECT_EQ(finished("load_features netl^"), "load_features netlist_report ^");
    EXPECT_EQ(listed("load_features ^"), "netlist_report session_tools ");
}

TEST_F(Completion, ASourceOfValuesThatFailsOffersNothing) {
    vek::tcltasks::value_hints::add("wk_broken", [](Tcl_Interp*, const auto&) -> std::vector<std::string> {
        throw std::runtime_error("no values today");
    });
    EXPECT_EQ(listed("zz_guess ^"), "<it> ");
    EXPECT_EQ(tab("zz_guess zz^"), "redisplayed beep");
}

TEST_F(Completion, TheFirstSourceOfAKindStays) {
    using vek::tcltasks::value_hints;
    const auto one = [](Tcl_Interp*, const auto&) { return std::vector<std::string>{"one"}; };
    const auto two = [](Tcl_Interp*, const auto&) { return std::vector<std::string>{"two"}; };
    EXPECT_EQ(value_hints::find("wk_kind"), nullptr);
    value_hints::add("wk_kind", one);
    value_hints::add("wk_kind", two);
    EXPECT_EQ((*value_hints::find("wk_kind"))(interp, {}), std::vector<std::string>{"one"});
}

} // namespace
