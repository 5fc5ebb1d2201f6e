#include "platform/env/HSTVector.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

TEST(HSTVector, HasTheConstructorsOfAVector) {
    EXPECT_EQ(HSTVector<int>({1, 2, 3}).size(), 3u);
    EXPECT_EQ(HSTVector<std::string>(2, "x"), HSTVector<std::string>({"x", "x"}));
    const std::string text = "ab";
    EXPECT_EQ(HSTVector<char>(text.begin(), text.end()).back(), 'b');
    EXPECT_TRUE(HSTVector<int>().empty());
}

TEST(HSTVector, ConvertsFromAndToAVector) {
    const std::vector<std::string> plain{"a", "b"};
    HSTVector<std::string> list = plain;
    EXPECT_EQ(static_cast<const std::vector<std::string>&>(list), plain);
    list = {"c"};
    EXPECT_EQ(list.front(), "c");
}

TEST(HSTVector, MovesElementsThatCannotBeCopied) {
    std::vector<std::unique_ptr<int>> plain;
    plain.push_back(std::make_unique<int>(7));
    HSTVector<std::unique_ptr<int>> list(std::move(plain));
    HSTVector<std::unique_ptr<int>> other = std::move(list);
    EXPECT_EQ(*other.at(0), 7);
}
