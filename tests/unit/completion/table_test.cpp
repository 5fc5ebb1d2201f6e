// The table of lines and what Tab makes of them, tests/data/completion/table.txt.
#include <fstream>
#include <set>

#include "world.h"

namespace {

// A field of the table: \t, \n and \\ stand for a tab, a line end and a backslash.
std::string unescaped(const std::string& field) {
    std::string text;
    for (size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 1 < field.size()) {
            ++i;
            text += field[i] == 't' ? '\t' : field[i] == 'n' ? '\n' : field[i];
        } else {
            text += field[i];
        }
    }
    return text;
}

TEST_F(Completion, EveryRowOfTheTableHolds) {
    std::ifstream table(std::string(CORVANE_TEST_DATA) + "/completion/table.txt");
    ASSERT_TRUE(table);
    std::set<std::string> lines;
    int number = 0;
    for (std::string row; std::getline(table, row);) {
        ++number;
        if (row.empty() || row.starts_with("#")) {
            continue;
        }
        const size_t end = row.find('\t');
        const std::string line = row.substr(0, end);
        EXPECT_TRUE(lines.insert(line).second) << "line " << number << " repeats a case";
        EXPECT_NE(line.find('^'), std::string::npos) << "line " << number << " has no cursor";
        std::string expected;
        for (size_t at = end; at != std::string::npos;) {
            const size_t next = row.find('\t', at + 1);
            const size_t size = next == std::string::npos ? next : next - at - 1;
            expected += (at == end ? "" : "\t") + unescaped(row.substr(at + 1, size));
            at = next;
        }
        EXPECT_EQ(tab(unescaped(line)), expected) << "in line " << number << ": " << row;
    }
    EXPECT_GE(lines.size(), 400U);
}

} // namespace
