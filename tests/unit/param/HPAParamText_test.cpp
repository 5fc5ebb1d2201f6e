#include "platform/param/HPAParamText.h"

#include <climits>

#include <gtest/gtest.h>

namespace {

using namespace hpa_param_text;

TEST(HPAParamText, boolsHaveManySpellings) {
    for (const char* text : {"yes", "YES", "True", "1", "+1", "0001", "+0001"})
        EXPECT_EQ(to_bool(text), true) << text;
    for (const char* text : {"no", "NO", "False", "0", "+0", "-0", "-000"})
        EXPECT_EQ(to_bool(text), false) << text;
    for (const char* text :
         {"", "-1", "2", "10", "++1", "+-0", " 1", "1 ", "on", "off", "t", "yess", "0x1", "1.0", "+"})
        EXPECT_EQ(to_bool(text), std::nullopt) << text;
}

TEST(HPAParamText, intsAreWholeAndFit) {
    EXPECT_EQ(to_int("0"), 0);
    EXPECT_EQ(to_int("+12"), 12);
    EXPECT_EQ(to_int("-12"), -12);
    EXPECT_EQ(to_int("007"), 7);
    EXPECT_EQ(to_int("0xd00bf"), 0xd00bf);
    EXPECT_EQ(to_int("2147483647"), INT_MAX);
    EXPECT_EQ(to_int("-2147483648"), INT_MIN);
    for (const char* text : {"", "-", "+", "0x", "1.5", "1e3", " 1", "1 ", "2147483648", "-2147483649", "--1",
                             "+-1", "99999999999999999999999", "12a"})
        EXPECT_EQ(to_int(text), std::nullopt) << text;
}

TEST(HPAParamText, floatsAreFiniteAndFit) {
    EXPECT_EQ(to_float("1.5"), 1.5f);
    EXPECT_EQ(to_float("+1e3"), 1000.0f);
    EXPECT_EQ(to_float("-.5"), -0.5f);
    for (const char* text : {"", "inf", "nan", "1e39", "1e999", "1.5x", " 1", "0x10", "++1"})
        EXPECT_EQ(to_float(text), std::nullopt) << text;
    EXPECT_EQ(from_float(0.1f), "0.1");
    EXPECT_EQ(to_float(from_float(1.0f / 3)), 1.0f / 3);
}

} // namespace
