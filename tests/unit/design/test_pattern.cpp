#include "design/Pattern.h"

#include "netlists.h"

using namespace design;

TEST(Pattern, GlobKnowsStarQuestionMarkAndBackslash) {
    EXPECT_TRUE(Pattern::glob("*").matches(""));
    EXPECT_TRUE(Pattern::glob("a*c").matches("abcbc"));
    EXPECT_FALSE(Pattern::glob("a*c").matches("abcd"));
    EXPECT_TRUE(Pattern::glob("a?c").matches("abc"));
    EXPECT_TRUE(Pattern::glob("a?c").matches("a\u20acc"));
    EXPECT_FALSE(Pattern::glob("a?c").matches("ac"));
    EXPECT_TRUE(Pattern::glob("a\\*").matches("a*"));
    EXPECT_FALSE(Pattern::glob("a\\*").matches("ab"));
    EXPECT_TRUE(Pattern::glob("**x**").matches("x"));
    EXPECT_FALSE(Pattern::glob("").matches("x"));
}

TEST(Pattern, BracketsOfAGlobStandForThemselves) {
    EXPECT_TRUE(Pattern::glob("data[*]").matches("data[12]"));
    EXPECT_FALSE(Pattern::glob("data[1]").matches("data1"));
}

TEST(Pattern, LiteralIsKnownWhereThereAreNoWildcards) {
    EXPECT_EQ(Pattern::glob("data[3]").literal(), "data[3]");
    EXPECT_EQ(Pattern::glob("data\\[3\\]").literal(), "data[3]");
    EXPECT_EQ(Pattern::glob("a\\*").literal(), "a*");
    EXPECT_FALSE(Pattern::glob("a*").literal());
    EXPECT_FALSE(Pattern::glob("abc", true).literal());
}

TEST(Pattern, NocaseMatchesLettersOfEitherCase) {
    EXPECT_TRUE(Pattern::glob("LUT*", true).matches("lut4"));
    EXPECT_FALSE(Pattern::glob("LUT*").matches("lut4"));
    EXPECT_TRUE(Pattern::regexp("lut[0-9]", true).matches("LUT4"));
}

TEST(Pattern, RegexpMatchesTheWholeName) {
    EXPECT_TRUE(Pattern::regexp("u[0-9]+/.*").matches("u12/x"));
    EXPECT_FALSE(Pattern::regexp("u[0-9]+").matches("u12/x"));
}

TEST(Pattern, RefusesAWrongRegexpWithItsReason) {
    EXPECT_EQ(error_of([] { Pattern::regexp("a(b"); }),
              "The regular expression 'a(b' cannot be used: missing ): a(b.");
}

TEST(Pattern, TakesLinearTimeForAnyExpression) {
    const std::string text(20000, 'a');
    EXPECT_FALSE(Pattern::regexp("(a*)*(a|aa)*(a|a)*b").matches(text));
    EXPECT_FALSE(Pattern::glob("*a*a*a*a*a*a*b").matches(text));
}
