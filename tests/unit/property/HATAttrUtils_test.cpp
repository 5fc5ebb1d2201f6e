#include "platform/property/HATAttrUtils.h"

#include <gtest/gtest.h>

#include "platform/msg/HEX.h"
#include "platform/tcl/tclobj_ref.h"

using namespace HATAttrTypes;

namespace {

HATAttrSpec spec_of(AttrType type) {
    HATAttrSpec spec("p");
    spec.setAttrType(type);
    return spec;
}

std::string refusal(const HATAttrSpec& spec, const HATAttrAny& value) {
    try {
        HATAttrUtils::convert(spec, value);
    } catch (const HEXError& refused) {
        return refused.message().text();
    }
    return "";
}

} // namespace

TEST(HATAttrUtils, ConvertsTextsToTheTypeOfTheProperty) {
    const auto convert = [](AttrType type, const char* text) {
        return HATAttrUtils::convert(spec_of(type), std::string(text));
    };
    EXPECT_EQ(convert(type_bool, "On"), HATAttrAny(true));
    EXPECT_EQ(convert(type_int, "-3"), HATAttrAny(-3));
    EXPECT_EQ(convert(type_long, "123456789012"), HATAttrAny(123456789012L));
    EXPECT_EQ(convert(type_double, "2.5"), HATAttrAny(2.5));
    EXPECT_EQ(convert(type_string, "x y"), HATAttrAny(std::string("x y")));
    EXPECT_EQ(convert(type_int_list, "1 2 3"), HATAttrAny(std::vector<int>{1, 2, 3}));
    EXPECT_EQ(convert(type_double_list, ""), HATAttrAny(std::vector<double>{}));
    EXPECT_EQ(convert(type_string_list, "a {b c}"), HATAttrAny(std::vector<std::string>{"a", "b c"}));
}

TEST(HATAttrUtils, TakesTypedValuesThatFit) {
    EXPECT_EQ(HATAttrUtils::convert(spec_of(type_double), 3), HATAttrAny(3.0));
    EXPECT_EQ(HATAttrUtils::convert(spec_of(type_long), 3), HATAttrAny(3L));
    EXPECT_EQ(HATAttrUtils::convert(spec_of(type_string), 3), HATAttrAny(std::string("3")));
    EXPECT_EQ(HATAttrUtils::convert(spec_of(type_bool), 1), HATAttrAny(true));
}

TEST(HATAttrUtils, RefusalNamesValuePropertyAndWhatIsAccepted) {
    auto ranged = spec_of(type_int);
    ranged.setRange(2, 24);
    EXPECT_EQ(refusal(ranged, std::string("25")),
              "'25' is not a value of the property 'p', which takes a whole number of 32 bits from 2 to 24.");
    auto words = spec_of(type_enum);
    words.addEnumRange(std::vector<std::string>{"slow", "fast"});
    EXPECT_EQ(refusal(words, std::string("Slow")),
              "'Slow' is not a value of the property 'p', which takes one of 'slow', 'fast'.");
    EXPECT_NE(refusal(spec_of(type_int_list), std::string("1 x")), "");
    EXPECT_NE(refusal(spec_of(type_string_list), std::string("{a")), "");
    EXPECT_NE(refusal(spec_of(type_int), 3000000000L), "");
    EXPECT_NE(refusal(spec_of(type_int), HATAttrAny()), "");
}

TEST(HATAttrUtils, AFileIsKnownByItsExtension) {
    auto file = spec_of(type_file);
    EXPECT_EQ(refusal(file, std::string("any")), "");
    file.addFileExtRange("txt");
    EXPECT_EQ(refusal(file, std::string("a.txt")), "");
    EXPECT_EQ(refusal(file, std::string("")), "");
    EXPECT_NE(refusal(file, std::string("a_txt")), "");
}

TEST(HATAttrUtils, NumbersOrderBySizeAndTextsByText) {
    EXPECT_TRUE(HATAttrUtils::less(9, 10));
    EXPECT_TRUE(HATAttrUtils::less(9, 9.5));
    EXPECT_FALSE(HATAttrUtils::less(std::string("9"), std::string("10")));
    EXPECT_TRUE(HATAttrUtils::less((1L << 60), (1L << 60) + 1));
    EXPECT_FALSE(HATAttrUtils::less(1, 1));
}

TEST(HATAttrUtils, TypesHaveOneWordBothWays) {
    for (const AttrType type : {type_bool, type_int, type_double, type_string, type_int_list,
                                type_double_list, type_string_list, type_enum, type_file, type_long}) {
        EXPECT_EQ(HATAttrUtils::getAttrType(HATAttrUtils::getStringType(type)), type);
    }
    EXPECT_EQ(HATAttrUtils::getAttrType("Int_List"), type_int_list);
    EXPECT_FALSE(HATAttrUtils::getAttrType("integer"));
}

TEST(HATAttrUtils, ListsReachTclAsLists) {
    const vek::tcltasks::tclobj_ref list(HATAttrUtils::getTclValue(std::vector<std::string>{"a b", "c"}));
    int count = 0;
    ASSERT_EQ(Tcl_ListObjLength(nullptr, list.get(), &count), TCL_OK);
    EXPECT_EQ(count, 2);
    EXPECT_STREQ(Tcl_GetString(list.get()), "{a b} c");
}
