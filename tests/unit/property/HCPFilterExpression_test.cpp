#include "platform/property/HCPFilterExpression.h"

#include <gtest/gtest.h>
#include <set>

#include "platform/msg/HEX.h"

namespace {

// The value of an expression whose tests are bare words, of which those of `truths` hold.
bool holds(const std::string& text, const std::set<std::string>& truths) {
    const HCPFilterExpression filter(text, {});
    return filter.evaluate([&](uint32_t i) { return truths.contains(filter.tests()[i].property); });
}

} // namespace

TEST(HCPFilterExpression, AgreesWithCppOnEveryCombination) {
    for (int bits = 0; bits < 16; ++bits) {
        const bool a = bits & 1, b = bits & 2, c = bits & 4, d = bits & 8;
        std::set<std::string> truths;
        for (const auto& [name, on] : {std::pair("a", a), {"b", b}, {"c", c}, {"d", d}}) {
            if (on) {
                truths.insert(name);
            }
        }
        EXPECT_EQ(holds("a && b || c && d", truths), (a && b) || (c && d)) << bits;
        EXPECT_EQ(holds("a || b && c || d", truths), a || (b && c) || d) << bits;
        EXPECT_EQ(holds("!(a || b) && !(c && d)", truths), !(a || b) && !(c && d)) << bits;
        EXPECT_EQ(holds("!!a && !(b && !(c || !d))", truths), a && !(b && !(c || !d))) << bits;
        EXPECT_EQ(holds("((a)||(b))&&((c)||(d))", truths), (a || b) && (c || d)) << bits;
    }
}

TEST(HCPFilterExpression, DoesNotAskWhatDoesNotMatter) {
    const HCPFilterExpression filter("a && b || c", {});
    std::vector<uint32_t> asked;
    filter.evaluate([&](uint32_t i) { return asked.push_back(i), i == 2; });
    EXPECT_EQ(asked, (std::vector<uint32_t>{0, 2}));
}

TEST(HCPFilterExpression, NestsToAnyDepth) {
    const std::string deep = std::string(1000000, '(') + "a" + std::string(1000000, ')');
    EXPECT_TRUE(holds(deep, {"a"}));
    EXPECT_FALSE(holds(deep, {}));
}

TEST(HCPFilterExpression, ReadsLiteralsInQuotesAndBraces) {
    const HCPFilterExpression filter(R"(a == "x \" \* y" && b == {p {q} r} && c == 'it' && d == 4.5)", {});
    ASSERT_EQ(filter.tests().size(), 4u);
    EXPECT_EQ(filter.tests()[0].literal, "x \" \\* y");
    EXPECT_EQ(filter.tests()[1].literal, "p {q} r");
    EXPECT_EQ(filter.tests()[2].literal, "it");
    EXPECT_EQ(filter.tests()[3].number, 4.5);
}

TEST(HCPFilterExpression, EveryPrefixOfAnExpressionIsReadOrRefused) {
    const std::string text = R"((a == "x\"" && !b =~ {*y}) || c >= 'z' && d\ e != 5)";
    for (size_t length = 0; length <= text.size(); ++length) {
        try {
            HCPFilterExpression(text.substr(0, length), {});
        } catch (const HEXError&) {
        }
    }
    SUCCEED();
}

TEST(HCPFilterExpression, RefusalShowsPartOfALongExpression) {
    try {
        HCPFilterExpression("a == b " + std::string(5000, 'x'), {});
        FAIL();
    } catch (const HEXError& refused) {
        const std::string text = refused.what();
        EXPECT_NE(text.find("wrong at character 8"), std::string::npos) << text;
        EXPECT_LT(text.size(), 500u);
    }
}
