#include "platform/env/HSTStringUtils.h"

#include <gtest/gtest.h>

using S = HSTStringUtils;
using namespace std::string_literals;

TEST(StringUtils, StartsWithIgnoresCase) {
    EXPECT_TRUE(S::istarts_with("Batch", "b"));
    EXPECT_TRUE(S::istarts_with("batch", "BAT"));
    EXPECT_TRUE(S::istarts_with("batch", ""));
    EXPECT_TRUE(S::istarts_with("", ""));
    EXPECT_FALSE(S::istarts_with("batch", "bx"));
    EXPECT_FALSE(S::istarts_with("b", "batch"));
}

TEST(StringUtils, EqualityIgnoresCaseOfAsciiOnly) {
    EXPECT_TRUE(S::iequals("YES", "yes"));
    EXPECT_FALSE(S::iequals("yes", "yes "));
    EXPECT_FALSE(S::iequals("", "y"));
    EXPECT_FALSE(S::iequals("\xC3\x84", "\xC3\xA4"));
    EXPECT_FALSE(S::iequals("@", "`"));
    EXPECT_FALSE(S::iequals("a\0b"s, "a\0c"s));
    EXPECT_EQ(S::to_lower("AbC_\xC3\x84"), "abc_\xC3\x84");
}

TEST(StringUtils, TrimTakesWhiteSpaceFromBothEnds) {
    EXPECT_EQ(S::trim(" \t a b \r\n"), "a b");
    EXPECT_EQ(S::trim("   "), "");
    EXPECT_EQ(S::trim(""), "");
    EXPECT_EQ(S::trim("\xC2\xA0x"), "\xC2\xA0x");
}

TEST(StringUtils, SplitKeepsEmptyPieces) {
    EXPECT_EQ(S::split("a:b", ':'), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(S::split("a::b:", ':'), (std::vector<std::string>{"a", "", "b", ""}));
    EXPECT_EQ(S::split("", ':'), std::vector<std::string>{""});
}

struct GlobCase {
    const char* pattern;
    const char* text;
    bool matches;
};

class Glob : public ::testing::TestWithParam<GlobCase> {};

TEST_P(Glob, MatchesTheWholeText) {
    const auto& c = GetParam();
    EXPECT_EQ(S::glob_match(c.pattern, c.text), c.matches) << c.pattern << " with " << c.text;
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, Glob,
    ::testing::Values(
        GlobCase{"", "", true}, GlobCase{"", "a", false}, GlobCase{"*", "", true},
        GlobCase{"**", "abc", true}, GlobCase{"a*c", "abbc", true}, GlobCase{"a*c", "abcd", false},
        GlobCase{"*a*b", "xxaxxabxb", true}, GlobCase{"?", "", false}, GlobCase{"?", "ab", false},
        GlobCase{"a?c",
                 "a\xC3\xA4"
                 "c",
                 true},
        GlobCase{"??", "\xC3\xA4", false}, GlobCase{"*\xA4", "\xC3\xA4", false},
        GlobCase{"[a-c]x", "bx", true}, GlobCase{"[a-c]x", "dx", false}, GlobCase{"[^a-c]", "d", true},
        GlobCase{"[!a-c]", "a", false}, GlobCase{"[]]", "]", true}, GlobCase{"[a-]", "-", true},
        GlobCase{"[c-a]", "b", true}, GlobCase{"[a\\]b]", "]", true},
        GlobCase{"[\xC3\xA0-\xC3\xB0]", "\xC3\xA4", true}, GlobCase{"[abc", "[abc", true},
        GlobCase{"[abc", "a", false}, GlobCase{"\\*", "*", true}, GlobCase{"\\*", "a", false},
        GlobCase{"a\\", "a\\", true}, GlobCase{"a[1]", "a[1]", false}, GlobCase{"a\\[1\\]", "a[1]", true},
        GlobCase{"\xFF?", "\xFFx", true}, GlobCase{"\xFF", "\xFE", false}, GlobCase{"A", "a", false}));

TEST(StringUtils, GlobCanIgnoreCase) {
    EXPECT_TRUE(S::glob_match("LUT*", "lut6", true));
    EXPECT_TRUE(S::glob_match("[a-c]", "B", true));
    EXPECT_FALSE(S::glob_match("[a-c]", "D", true));
}

TEST(StringUtils, GlobWithManyStarsTakesNoExponentialTime) {
    std::string pattern;
    for (int i = 0; i < 200; ++i)
        pattern += "a*";
    EXPECT_FALSE(S::glob_match(pattern + "b", std::string(5000, 'a')));
}

TEST(StringUtils, NearestFindsTheMisspeltName) {
    const std::vector<std::string> names{"source", "script", "journal", "nojournal", "log"};
    EXPECT_EQ(S::nearest("soruce", names), "source");
    EXPECT_EQ(S::nearest("jurnal", names), "journal");
    EXPECT_EQ(S::nearest("SCRIPT", names), "script");
    EXPECT_EQ(S::nearest("lgo", names), "log");
    EXPECT_EQ(S::nearest("nojurnal", names), "nojournal");
}

TEST(StringUtils, NearestTakesTheFirstOfEquals) {
    EXPECT_EQ(S::nearest("cat", {"bat", "hat"}), "bat");
    EXPECT_EQ(S::nearest("hat", {"bat", "hat"}), "hat");
}

TEST(StringUtils, NearestStaysSilentWithoutLikeness) {
    EXPECT_EQ(S::nearest("xyzzy", {"source", "log"}), "");
    EXPECT_EQ(S::nearest("", {"a"}), "");
    EXPECT_EQ(S::nearest("x", {"y", "z"}), "");
    EXPECT_EQ(S::nearest("source", {}), "");
    EXPECT_EQ(S::nearest(std::string(1000000, 'a'), {"a", std::string(1000000, 'b')}), "");
}

TEST(StringUtils, DisplayWidthCountsColumns) {
    EXPECT_EQ(S::display_width("abc"), 3u);
    EXPECT_EQ(S::display_width("\xC3\xA4"), 1u);                 // one letter of two bytes
    EXPECT_EQ(S::display_width("e\xCC\x81"), 1u);                // letter and combining accent
    EXPECT_EQ(S::display_width("\xE6\xBC\xA2\xE5\xAD\x97"), 4u); // two ideographs
    EXPECT_EQ(S::display_width("\xF0\x9F\x98\x80"), 2u);         // emoji
    EXPECT_EQ(S::display_width("\xFF\xC3"), 2u);                 // not UTF-8
    EXPECT_EQ(S::display_width("\xC0\x80"), 2u);                 // overlong
    EXPECT_EQ(S::display_width("\xED\xA0\x80"), 3u);             // surrogate
}
