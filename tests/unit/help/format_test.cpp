#include "tcltasks/help/detail/format.h"

#include <gtest/gtest.h>

using namespace HTCHelp::detail::format;

namespace {

const std::string words = "one two three four five six seven";

TEST(FormatText, BreaksAtBlanksTabsAndNewlines) {
    EXPECT_EQ(formatText(words, 10), "one two\nthree four\nfive six\nseven");
    EXPECT_EQ(formatText("one\ttwo  three\nfour", 10), "one two\nthree\nfour");
    EXPECT_EQ(formatText("one\n\ntwo\n", 10), "one\n\ntwo\n");
}

TEST(FormatText, GivesALongWordALineOfItsOwn) {
    EXPECT_EQ(formatText("a veryverylongword b", 10), "a\nveryverylongword\nb");
}

TEST(FormatText, LeavesTheTextAloneWhenThereIsNoRoom) {
    EXPECT_EQ(formatText(words, 9), words);
    EXPECT_EQ(formatText(words, 0), words);
    EXPECT_EQ(formatText(words, -5), words);
}

TEST(FormatText, CountsColumnsOfTheTerminal) {
    EXPECT_EQ(formatText("\u00e4\u00e4\u00e4\u00e4\u00e4 \u00e4\u00e4\u00e4\u00e4", 10),
              "\u00e4\u00e4\u00e4\u00e4\u00e4 \u00e4\u00e4\u00e4\u00e4");
    EXPECT_EQ(formatText("\u4e2d\u4e2d\u4e2d \u4e2d\u4e2d", 10), "\u4e2d\u4e2d\u4e2d\n\u4e2d\u4e2d");
}

TEST(WrapDescription, LeavesAloneWhatFits) {
    EXPECT_EQ(wrapDescription(words, static_cast<int>(words.size())), words);
    EXPECT_EQ(wrapDescription("", 10), "");
}

TEST(WrapDescription, BreaksAtTheLastBlankAndDropsIt) {
    EXPECT_EQ(wrapDescription("one two three four", 14), "one two three\nfour");
    EXPECT_EQ(wrapDescription("one two three four", 13), "one two three\nfour");
    EXPECT_EQ(wrapDescription("one two three four", 12), "one two\nthree four");
}

TEST(WrapDescription, BreaksAWordWhenTheBlankIsFar) {
    EXPECT_EQ(wrapDescription("a veryverylongword", 10), "a veryvery\nlongword");
    EXPECT_EQ(wrapDescription("abcdef veryverylongword", 10), "abcdef\nveryverylo\nngword");
    // Half of the width is far already.
    EXPECT_EQ(wrapDescription("abcde veryverylongword", 10), "abcde very\nverylongwo\nrd");
}

TEST(WrapDescription, OneTabMarksAHangingIndent) {
    EXPECT_EQ(wrapDescription("on: \tone two three", 12), "on: one two\n    three");
    EXPECT_EQ(wrapDescription("a\tb", 12), "ab");
    // A mark behind the width is none.
    EXPECT_EQ(wrapDescription("one two three four\t five", 10), "one two\nthree four\nfive");
}

TEST(WrapDescription, SeveralTabsStayAsTheyStand) {
    EXPECT_EQ(wrapDescription("one\ttwo\tthree four five", 8), "one\ttwo\tthree four five");
}

TEST(WrapDescription, EndsForEveryWidth) {
    for (int width = -3; width < 40; ++width) {
        for (const std::string& text : {words, std::string("\t") + words, std::string("on: \t") + words,
                                        std::string(50, ' '), std::string("\u4e2d\u4e2d\u4e2d\u4e2d")}) {
            EXPECT_LE(wrapDescription(text, width).size(), 50 * (text.size() + 1));
        }
    }
}

} // namespace
