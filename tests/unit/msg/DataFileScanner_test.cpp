#include "platform/msg/DataFileScanner.h"

#include <gtest/gtest.h>

namespace {

using Token = DataFileScanner::Token;

TEST(DataFileScanner, cutsWordsAndStringsAndPassesOverComments) {
    DataFileScanner scanner("one two\"three\"  # four\n  \"fi\\tve\"#six\nseven");
    const Token one = scanner.next();
    EXPECT_EQ(one.text, "one");
    EXPECT_TRUE(one.firstOfLine);
    const Token two = scanner.next();
    EXPECT_EQ(two.text, "two");
    EXPECT_FALSE(two.firstOfLine);
    EXPECT_EQ(two.column, 5u);
    const Token three = scanner.next();
    EXPECT_EQ(three.kind, Token::string);
    EXPECT_EQ(three.text, "three");
    const Token five = scanner.next();
    EXPECT_EQ(five.text, "fi\tve");
    EXPECT_TRUE(five.firstOfLine);
    EXPECT_EQ(five.line, 2u);
    EXPECT_EQ(five.column, 3u);
    EXPECT_EQ(scanner.next().text, "seven");
    EXPECT_EQ(scanner.next().kind, Token::end);
    EXPECT_EQ(scanner.next().kind, Token::end);
}

TEST(DataFileScanner, aLineBreakInAStringIsOneBlank) {
    DataFileScanner scanner("\"a  \r\n\n   b\"");
    EXPECT_EQ(scanner.next().text, "a b");
}

TEST(DataFileScanner, anyBytesAreText) {
    const std::string text("\"a\0\xff\"", 5);
    DataFileScanner scanner(text);
    EXPECT_EQ(scanner.next().text, std::string("a\0\xff", 3));
}

} // namespace
