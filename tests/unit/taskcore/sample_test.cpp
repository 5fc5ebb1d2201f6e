// What a library outside of Corvane's own writes to add a command and an object type.
#include "support.h"

#include <deque>
#include <fstream>

#include "sample_type.h"

namespace sample {

extern const vek::tcltasks::task_entry entry;

namespace {
std::deque<part>& parts() {
    static std::deque<part> all{{"resistor", 2}, {"transistor", 3}, {"timer", 8}};
    return all;
}
} // namespace

part* find_part(const std::string& name) {
    for (part& p : parts()) {
        if (p.name == name) {
            return &p;
        }
    }
    return nullptr;
}

} // namespace sample

namespace {

int lines(const std::string& file) {
    std::ifstream in(std::string(SAMPLE_DIR) + "/" + file);
    EXPECT_TRUE(in) << file;
    int count = 0;
    for (std::string line; std::getline(in, line);) {
        ++count;
    }
    return count;
}

class Sample : public TaskTest {
protected:
    Sample() { sample::entry.add(interp); }
    ~Sample() override { sample::entry.remove(); }
};

TEST_F(Sample, ACommandOfThreeTypedOptionsTakesAtMost25Lines) {
    EXPECT_LE(lines("sample_command.cpp"), 25);
}

TEST_F(Sample, ANativeTypeTakesAtMost15Lines) {
    EXPECT_LE(lines("sample_type.h"), 15);
}

TEST_F(Sample, TheCommandWorks) {
    EXPECT_EQ(eval("sample::pins timer"), "8");
    EXPECT_EQ(eval("sample::pins -minimum 3 {resistor transistor timer}"), "11");
    EXPECT_EQ(eval("sample::pins -loud resistor"), "4");
    EXPECT_NE(error("sample::pins diode").find("'diode' is not a valid value for option '-parts'"),
              std::string::npos);
    EXPECT_NE(error("sample::pins -minimum x timer").find("expected an integer"), std::string::npos);
    EXPECT_EQ(eval("sample::pins"), "0");
}

} // namespace
