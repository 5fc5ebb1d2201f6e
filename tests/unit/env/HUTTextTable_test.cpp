#include "platform/env/HUTTextTable.h"

#include "platform/env/HSTStringUtils.h"

#include <gtest/gtest.h>
#include <sstream>

TEST(TextTable, AlignsColumns) {
    HUTTextTable table;
    table.setHeaders({"Name", "Value"});
    table.setAlign(1, HUTTextTable::Align::right);
    table.addRow({"fanout", "16"});
    table.addRow({"ref_name", "LUT6"});
    EXPECT_EQ(table.getAsString(), "Name      Value\n"
                                   "--------  -----\n"
                                   "fanout       16\n"
                                   "ref_name   LUT6\n");
}

TEST(TextTable, SeparatorCanBeLeftOut) {
    HUTTextTable table;
    table.setHeaders({"A", "B"});
    table.addRow({"1", "2"});
    EXPECT_EQ(table.getAsString(false), "A  B\n1  2\n");
}

TEST(TextTable, WithoutContentIsEmpty) {
    EXPECT_EQ(HUTTextTable().getAsString(), "");
}

TEST(TextTable, WithoutHeadersHasNoSeparator) {
    HUTTextTable table;
    table.addRow({"a", "b"});
    EXPECT_EQ(table.getAsString(), "a  b\n");
}

TEST(TextTable, RowsMayHaveAnyNumberOfCells) {
    HUTTextTable table;
    table.setHeaders({"A"});
    table.addRow({});
    table.addRow({"1", "2", "3"});
    EXPECT_EQ(table.getAsString(), "A\n-  -  -\n\n1  2  3\n");
}

TEST(TextTable, WrapsTheWidestColumnAtBlanks) {
    HUTTextTable table(24);
    table.setHeaders({"Name", "Description"});
    table.addRow({"fanout", "the number of pins that a net drives"});
    EXPECT_EQ(table.getAsString(), "Name    Description\n"
                                   "------  ----------------\n"
                                   "fanout  the number of\n"
                                   "        pins that a net\n"
                                   "        drives\n");
}

TEST(TextTable, NoLineIsLongerThanTheWidth) {
    HUTTextTable table(40);
    table.setHeaders({"One", "Two", "Three"});
    table.addRow({std::string(100, 'a'), "short", "some words that are put on several lines"});
    std::istringstream lines(table.getAsString());
    size_t seen = 0;
    for (std::string line; std::getline(lines, line); ++seen) {
        EXPECT_LE(line.size(), 40u) << line;
    }
    EXPECT_GT(seen, 5u);
    EXPECT_NE(table.getAsString().find("short"), std::string::npos);
}

TEST(TextTable, ALongWordIsCutButNotLost) {
    HUTTextTable table(10);
    table.addRow({"abcdefghijklmnopqrstuvwxyz"});
    EXPECT_EQ(table.getAsString(), "abcdefghij\nklmnopqrst\nuvwxyz\n");
}

TEST(TextTable, WidthZeroNeverWraps) {
    HUTTextTable table(0);
    table.addRow({std::string(1000, 'x'), "y"});
    EXPECT_EQ(table.getAsString(), std::string(1000, 'x') + "  y\n");
}

TEST(TextTable, ManyColumnsStayReadable) {
    HUTTextTable table(20);
    table.addRow(std::vector<std::string>(10, "abcdefghijkl"));
    std::istringstream lines(table.getAsString());
    std::string first;
    std::getline(lines, first);
    EXPECT_EQ(first.substr(0, 10), "abcdefgh  ");
}

TEST(TextTable, MeasuresWhatATerminalShows) {
    HUTTextTable table;
    table.addRow({"\xE6\xBC\xA2\xE5\xAD\x97", "x"});
    table.addRow({"e\xCC\x81", "x"});
    table.addRow({"abcd", "x"});
    EXPECT_EQ(table.getAsString(), "\xE6\xBC\xA2\xE5\xAD\x97  x\ne\xCC\x81     x\nabcd  x\n");
}

TEST(TextTable, WrapDoesNotSplitACharacter) {
    HUTTextTable table(9);
    std::string cell;
    for (int i = 0; i < 10; ++i)
        cell += "\xE6\xBC\xA2";
    table.addRow({cell});
    std::istringstream lines(table.getAsString());
    std::string all;
    for (std::string line; std::getline(lines, line);) {
        EXPECT_EQ(line.size() % 3, 0u);
        EXPECT_LE(HSTStringUtils::display_width(line), 9u);
        all += line;
    }
    EXPECT_EQ(all, cell);
}

TEST(TextTable, NewlinesMakeFurtherLinesAndControlCharactersAreShown) {
    HUTTextTable table;
    table.addRow({"a", "one\ntwo\n"});
    table.addRow({"b", "x\ty\x1B[31m"});
    EXPECT_EQ(table.getAsString(), "a  one\n   two\nb  x y\\x1B[31m\n");
}

TEST(TextTable, TheLastColumnGoesBelowItsRowWhenTheTableIsTooWide) {
    HUTTextTable table(24);
    table.setHeaders({"Name", "Value", "Description"});
    table.addRow({"fanout", "16", "How many pins a net drives."});
    table.addRow({"ref_name", "LUT6", ""});
    table.addRow({"short"});
    table.setFoldLastColumn(true);
    EXPECT_EQ(table.getAsString(), "Name      Value\n"
                                   "    Description\n"
                                   "--------  -----\n"
                                   "fanout    16\n"
                                   "    How many pins a net\n"
                                   "    drives.\n"
                                   "ref_name  LUT6\n"
                                   "short\n");
    EXPECT_EQ(table.getAsString(false).find("---"), std::string::npos);
}

TEST(TextTable, TheLastColumnStaysBesideTheOthersWhenThereIsRoom) {
    HUTTextTable table(24);
    table.addRow({"fanout", "16", "Pins."});
    const std::string beside = table.getAsString();
    table.setFoldLastColumn(true);
    EXPECT_EQ(table.getAsString(), beside);
}

TEST(TextTable, PrintWritesTheWholeTable) {
    HUTTextTable table;
    table.setHeaders({"A"});
    table.addRow({"1"});
    std::ostringstream out;
    table.print(out);
    EXPECT_EQ(out.str(), table.getAsString(true));
    EXPECT_EQ(table.numRows(), 1u);
}
