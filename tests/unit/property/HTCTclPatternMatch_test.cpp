#include "platform/tcl/HTCTclPatternMatch.h"

#include <chrono>
#include <gtest/gtest.h>

#include "platform/msg/HEX.h"

namespace {

bool glob(const std::string& pattern, const std::string& text) {
    return HTCTclPatternMatch(pattern).match(text);
}

} // namespace

TEST(HTCTclPatternMatch, GlobMatchesTheWholeName) {
    EXPECT_TRUE(glob("", ""));
    EXPECT_TRUE(glob("*", ""));
    EXPECT_TRUE(glob("*", "abc"));
    EXPECT_TRUE(glob("a*c", "abbc"));
    EXPECT_TRUE(glob("a?c", "abc"));
    EXPECT_TRUE(glob("***a***", "a"));
    EXPECT_FALSE(glob("a*c", "abcd"));
    EXPECT_FALSE(glob("?", ""));
    EXPECT_FALSE(glob("a", "A"));
}

TEST(HTCTclPatternMatch, QuestionMarkIsOneCharacterOfUtf8) {
    EXPECT_TRUE(glob("a?b", "a\xe4\xb8\xad"
                            "b"));
    EXPECT_FALSE(glob("a??b", "a\xe4\xb8\xad"
                              "b"));
}

TEST(HTCTclPatternMatch, SetsHaveRangesAndUtf8) {
    EXPECT_TRUE(glob("[a-c]x", "bx"));
    EXPECT_FALSE(glob("[a-c]x", "dx"));
    EXPECT_TRUE(glob("[c-a]", "b"));
    EXPECT_TRUE(glob("[xyz]", "y"));
    EXPECT_TRUE(glob("[\xc3\xa4-\xc3\xb6]", "\xc3\xa5"));
    EXPECT_TRUE(glob("[a-]", "-"));
    EXPECT_FALSE(glob("[abc", "a"));
    EXPECT_FALSE(glob("[]", "a"));
}

TEST(HTCTclPatternMatch, BackslashTakesTheNextCharacterAsItIs) {
    EXPECT_TRUE(glob("\\*", "*"));
    EXPECT_FALSE(glob("\\*", "a"));
    EXPECT_TRUE(glob("a\\", "a\\"));
}

TEST(HTCTclPatternMatch, BracketsMayStandForThemselves) {
    const HTCTclPatternMatch bus("a[*]", false, false, HTCTclPatternMatch::Brackets::itself);
    EXPECT_TRUE(bus.match("a[3]"));
    EXPECT_FALSE(bus.match("a3"));
    EXPECT_FALSE(
        HTCTclPatternMatch("a[3]", false, false, HTCTclPatternMatch::Brackets::itself).hasWildcards());
    EXPECT_TRUE(HTCTclPatternMatch("a[3]").hasWildcards());
}

TEST(HTCTclPatternMatch, ALiteralIsKnownWhereThereAreNoWildcards) {
    const auto literal = [](const char* pattern, bool nocase = false) {
        return HTCTclPatternMatch(pattern, false, nocase, HTCTclPatternMatch::Brackets::itself).literal();
    };
    EXPECT_EQ(literal("data[3]"), "data[3]");
    EXPECT_EQ(literal("data\\[3\\]"), "data[3]");
    EXPECT_EQ(literal("a\\*"), "a*");
    EXPECT_FALSE(literal("a*"));
    EXPECT_FALSE(literal("abc", true));
    EXPECT_FALSE(HTCTclPatternMatch("data[3]").literal());
    EXPECT_FALSE(HTCTclPatternMatch("abc", true).literal());
}

TEST(HTCTclPatternMatch, TakesLinearTimeForAnyPattern) {
    const std::string text(20000, 'a');
    EXPECT_FALSE(glob("*a*a*a*a*a*a*b", text));
    EXPECT_FALSE(HTCTclPatternMatch("(a*)*(a|aa)*(a|a)*b", true).match(text));
}

TEST(HTCTclPatternMatch, CaseCanBeIgnored) {
    EXPECT_TRUE(HTCTclPatternMatch("AB*", false, true).match("abc"));
    EXPECT_TRUE(HTCTclPatternMatch("AB*").matchNoCase("abc"));
    EXPECT_TRUE(HTCTclPatternMatch("[A-C]", false, true).match("b"));
    EXPECT_TRUE(HTCTclPatternMatch("A.C", true, true).match("abc"));
    EXPECT_TRUE(HTCTclPatternMatch("A.C", true).matchNoCase("abc"));
    EXPECT_FALSE(HTCTclPatternMatch("A.C", true).match("abc"));
}

TEST(HTCTclPatternMatch, RegularExpressionMatchesTheWholeName) {
    EXPECT_TRUE(HTCTclPatternMatch("a(b|c)+", true).match("abcb"));
    EXPECT_FALSE(HTCTclPatternMatch("b", true).match("abc"));
    EXPECT_TRUE(HTCTclPatternMatch("a.b", true).match("a\nb"));
}

TEST(HTCTclPatternMatch, AStarAloneMatchesEveryNameEvenAsARegularExpression) {
    const HTCTclPatternMatch every("*", true);
    EXPECT_TRUE(every.match("rx/fifo"));
    EXPECT_TRUE(every.match(""));
    EXPECT_TRUE(every.hasWildcards());
    EXPECT_FALSE(every.literal());
    EXPECT_THROW(HTCTclPatternMatch("**", true), HEXError);
}

TEST(HTCTclPatternMatch, RefusesAnExpressionThatIsNone) {
    try {
        HTCTclPatternMatch("(a", true);
        FAIL();
    } catch (const HEXError& refused) {
        EXPECT_NE(std::string(refused.what()).find("'(a'"), std::string::npos);
    }
    EXPECT_THROW(HTCTclPatternMatch("((a{1000}){1000}){1000}", true), HEXError);
}

TEST(HTCTclPatternMatch, TakesTimeInProportionWhateverThePattern) {
    const std::string text(20000, 'a');
    std::string stars, pluses;
    for (int i = 0; i < 50; ++i) {
        stars += "*a";
        pluses += "(a*)*";
    }
    // Backtracking would not come to an end before the sun does.
    EXPECT_FALSE(HTCTclPatternMatch(stars + "b").match(text));
    EXPECT_FALSE(HTCTclPatternMatch(pluses + "b", true).match(text));
}
