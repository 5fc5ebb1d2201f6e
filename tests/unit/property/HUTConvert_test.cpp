#include "platform/env/HUTConvert.h"

#include <gtest/gtest.h>
#include <string>

TEST(HUTConvert, ReadsTheWordsOfABoolWhateverTheirCase) {
    for (const char* word : {"1", "true", "YES", "On"}) {
        bool value = false;
        EXPECT_TRUE(HUTConvert::toBool(word, value)) << word;
        EXPECT_TRUE(value) << word;
    }
    for (const char* word : {"0", "FALSE", "no", "off"}) {
        bool value = true;
        EXPECT_TRUE(HUTConvert::toBool(word, value)) << word;
        EXPECT_FALSE(value) << word;
    }
}

TEST(HUTConvert, LeavesTheValueAloneForWhatIsNoBool) {
    bool value = true;
    for (const char* word : {"", "2", "tru", "truee", " 1"}) {
        EXPECT_FALSE(HUTConvert::toBool(word, value)) << word;
        EXPECT_TRUE(value);
    }
}

TEST(HUTConvert, ReadsIntegersUpToTheEndsOfTheirType) {
    int small = 0;
    EXPECT_TRUE(HUTConvert::stringToInteger("-2147483648", small));
    EXPECT_EQ(small, -2147483647 - 1);
    EXPECT_TRUE(HUTConvert::stringToInteger("+2147483647", small));
    EXPECT_EQ(small, 2147483647);
    EXPECT_TRUE(HUTConvert::stringToInteger("0x10", small));
    EXPECT_EQ(small, 16);
    long large = 0;
    EXPECT_TRUE(HUTConvert::stringToInteger("-9223372036854775808", large));
    EXPECT_EQ(large, std::numeric_limits<long>::min());
}

TEST(HUTConvert, RefusesWhatIsNoIntegerOrDoesNotFit) {
    int value = 7;
    for (const char* text : {"", "-", "+", "0x", "1.0", " 1", "1 ", "2147483648", "-2147483649", "--1", "1e3",
                             "99999999999999999999999"}) {
        EXPECT_FALSE(HUTConvert::stringToInteger(text, value)) << text;
    }
    EXPECT_EQ(value, 7);
}

TEST(HUTConvert, ReadsFiniteNumbersOnly) {
    double value = 0;
    EXPECT_TRUE(HUTConvert::stringToFloat("-1.5e2", value));
    EXPECT_EQ(value, -150);
    EXPECT_TRUE(HUTConvert::stringToFloat("+3", value));
    EXPECT_EQ(value, 3);
    for (const char* text : {"", "inf", "nan", "1e999", "1,5", "1.5x", "0x1p3"}) {
        EXPECT_FALSE(HUTConvert::stringToFloat(text, value)) << text;
    }
    EXPECT_EQ(value, 3);
}
