#include "tcltasks/builtin/completion/typed_command.h"

#include <gtest/gtest.h>

using namespace HTCLibEdit::detail;

namespace {

// The words of a command with "|" between them, "?" for one that is substituted; behind "||" the one being
// typed, behind what is open around it.
std::string read(const std::string& text) {
    const typed_command command = read_typed_command(text);
    if (!command.readable) {
        return "unreadable";
    }
    std::string result;
    for (const auto& word : command.words) {
        result += word.value.value_or("?") + "|";
    }
    result +=
        "|" + (command.open ? std::string(1, command.open) + " " : "") + command.current.value.value_or("?");
    return result;
}

TEST(TypedCommand, WordsAreReadAsTclReadsThem) {
    EXPECT_EQ(read(""), "|");
    EXPECT_EQ(read("a"), "|a");
    EXPECT_EQ(read("a "), "a||");
    EXPECT_EQ(read("a b"), "a||b");
    EXPECT_EQ(read("a\tb"), "a||b");
    EXPECT_EQ(read("a {b c} d"), "a|b c||d");
    EXPECT_EQ(read("a \"b c\" d"), "a|b c||d");
    EXPECT_EQ(read("a b\\ c d"), "a|b c||d");
    EXPECT_EQ(read("a b\\x41 d"), "a|bA||d");
    EXPECT_EQ(read("a $b d"), "a|?||d");
    EXPECT_EQ(read("a {*}$b d"), "a|?||d");
}

TEST(TypedCommand, WhatIsOpenIsReadToTheCursor) {
    EXPECT_EQ(read("a \"b c"), "a||\" b c");
    EXPECT_EQ(read("a {b c"), "a||{ b c");
    EXPECT_EQ(read("a \""), "a||\" ");
    EXPECT_EQ(read("a {"), "a||{ ");
    EXPECT_EQ(read("a \"b\\\" c"), "a||\" b\" c");
    EXPECT_EQ(read("a {b {c"), "a||{ b {c");
    EXPECT_EQ(read("a b\\"), "a||b\\");
    EXPECT_EQ(read("a ${b"), "a||?");
    EXPECT_EQ(read("a $b(c"), "a||?");
    EXPECT_EQ(read("a \"${b"), "a||\" ?");
    EXPECT_EQ(read("a \"$b(c"), "a||\" ?");
}

TEST(TypedCommand, TheInnermostCommandCounts) {
    EXPECT_EQ(read("a [b c"), "b||c");
    EXPECT_EQ(read("a [b [c d"), "c||d");
    EXPECT_EQ(read("a [b \"c [d e"), "d||e");
    EXPECT_EQ(read("a \"b [c \"d"), "c||\" d");
    EXPECT_EQ(read("a [b {c"), "b||{ c");
    EXPECT_EQ(read("a [b]"), "a||?");
    EXPECT_EQ(read("a [b] [c d"), "c||d");
    EXPECT_EQ(read("a $b([c d"), "c||d");
    EXPECT_EQ(read("a {b [c d"), "a||{ b [c d");
}

TEST(TypedCommand, TheLastCommandOfSeveralLinesCounts) {
    EXPECT_EQ(read("a b\nc d"), "c||d");
    EXPECT_EQ(read("a b\n"), "|");
    EXPECT_EQ(read("a b\\\n c"), "a|b||c");
    EXPECT_EQ(read("a [b\nc d"), "c||d");
    EXPECT_EQ(read("# a b"), "|");
}

TEST(TypedCommand, WhatTclCannotReadIsNotRead) {
    EXPECT_FALSE(read_typed_command("a {b}c d").runs_command());
    EXPECT_TRUE(read_typed_command("a {b}c [d]").runs_command());
    EXPECT_TRUE(read_typed_command("a \"b\"c [d]").runs_command());
    EXPECT_FALSE(read_typed_command(std::string(100000, 'x')).runs_command());
    EXPECT_TRUE(read_typed_command(std::string(100000, '[')).runs_command());
    EXPECT_TRUE(read_typed_command("x [y] " + std::string(100000, '{')).runs_command());
}

bool runs(const std::string& text) {
    return read_typed_command(text).runs_command();
}

TEST(TypedCommand, ACommandSubstitutionIsFoundWhereverItStands) {
    EXPECT_TRUE(runs("a [b]"));
    EXPECT_TRUE(runs("[b]"));
    EXPECT_TRUE(runs("[b] c"));
    EXPECT_TRUE(runs("a x[b]y c"));
    EXPECT_TRUE(runs("a \"x [b] y\" c"));
    EXPECT_TRUE(runs("a \"x [b] y"));
    EXPECT_TRUE(runs("a $c([b])"));
    EXPECT_TRUE(runs("a $c([b]"));
    EXPECT_TRUE(runs("a $c($d([b]))"));
    EXPECT_TRUE(runs("a \"$c([b])"));
    EXPECT_TRUE(runs("a {*}[b]"));
    EXPECT_TRUE(runs("a [[b] c"));
}

TEST(TypedCommand, WhatTclDoesNotSubstituteIsNoSubstitution) {
    EXPECT_FALSE(runs("a {[b]}"));
    EXPECT_FALSE(runs("a {[b]"));
    EXPECT_FALSE(runs("a \\[b]"));
    EXPECT_FALSE(runs("a ${[b]}"));
    EXPECT_FALSE(runs("a [b"));
    EXPECT_FALSE(runs("a [b] [c d"));
    EXPECT_FALSE(runs("[a]\nb c"));
    EXPECT_FALSE(runs(""));
}

std::string variable(const std::string& text) {
    const auto found = read_typed_variable(text);
    return found ? text.substr(0, found->begin) + "|" + found->array + "|" + found->name : "none";
}

TEST(TypedVariable, TheNameBehindTheLastDollarIsFound) {
    EXPECT_EQ(variable("$a"), "$||a");
    EXPECT_EQ(variable("$"), "$||");
    EXPECT_EQ(variable("x$a::b"), "x$||a::b");
    EXPECT_EQ(variable("${a b"), "${||a b");
    EXPECT_EQ(variable("$a(b"), "$a(|a|b");
    EXPECT_EQ(variable("$a$b"), "$a$||b");
    EXPECT_EQ(variable("$a(b)$c"), "$a(b)$||c");
    EXPECT_EQ(variable("\\\\$a"), "\\\\$||a");
}

TEST(TypedVariable, WhatIsNoVariableIsNotFound) {
    for (const char* text : {"", "a", "\\$a", "\\\\\\$a", "$a.", "$a b", "${a}", "$a(b)", "$a(b\\ ", "$ä"}) {
        EXPECT_EQ(variable(text), "none") << text;
    }
}

TEST(Quoting, WhatIsSpecialIsEscaped) {
    EXPECT_EQ(quoted("a b\t$c[d]{e};\"f\\", 0), "a\\ b\\\t\\$c\\[d\\]\\{e\\}\\;\\\"f\\\\");
    EXPECT_EQ(quoted("a b$c[d]{e}\"\\", '"'), "a b\\$c\\[d]{e}\\\"\\\\");
    EXPECT_EQ(quoted("a $b", '{'), "a $b");
    EXPECT_EQ(glob_quoted("a*b?[c]{d}\\"), "a\\*b\\?\\[c\\]\\{d\\}\\\\");
}

} // namespace
