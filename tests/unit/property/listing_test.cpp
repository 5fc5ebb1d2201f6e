#include "tcltasks/property/detail/listing.h"

#include <gtest/gtest.h>

#include "sample_classes.h"
#include "tcltasks/property/detail/arghelper.h"

using namespace HTCProperty::detail;
using HCPProperty::tclany;

TEST(BrokenLines, BreaksAtTheLastBlankThatFits) {
    EXPECT_EQ(listing::brokenLines("one two three four", 10), "one two\nthree four");
    EXPECT_EQ(listing::brokenLines("0123456789 abc", 10), "0123456789\nabc");
    EXPECT_EQ(listing::brokenLines("", 10), "");
}

TEST(BrokenLines, BreaksAtTheWidthWhereThereIsNoBlank) {
    EXPECT_EQ(listing::brokenLines("0123456789abcdef", 10), "0123456789\nabcdef");
}

TEST(BrokenLines, KeepsLinesAndCountsCharacters) {
    EXPECT_EQ(listing::brokenLines("one\ntwo three four", 10), "one\ntwo three\nfour");
    const std::string umlauts =
        "\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4";
    EXPECT_EQ(listing::brokenLines(umlauts, 10), umlauts);
}

TEST(BrokenLines, ANarrowColumnLeavesTheText) {
    EXPECT_EQ(listing::brokenLines("one two three four", 9), "one two three four");
}

TEST(Listing, ADebugSessionSeesWhatIsHiddenAndWho) {
    sample::register_classes();
    const tclany object(sample::new_gate("a"));
    listing::Entries entries;
    HCPProperty::Utils::getPropertyNames(object, entries);
    listing::keepMatching(entries, "(secret|fanout)", true);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(listing::normalReport(object, entries, {.all = true, .owners = true, .tclDebug = true}),
              "Property  Type  Read-only  Visible  Owner   Value\n"
              "--------  ----  ---------  -------  ------  -----\n"
              "fanout    int   true       true     common\n"
              "secret    int   true       false    common\n");
    EXPECT_EQ(listing::normalReport(object, entries, {.all = true, .owners = true}),
              "Property  Type  Read-only  Value\n"
              "--------  ----  ---------  -----\n"
              "fanout    int   true\n");
    const std::string text =
        listing::detailedReport(tclany(), entries, {.all = false, .owners = true, .tclDebug = true});
    EXPECT_NE(text.find("Visible: false\n"), std::string::npos) << text;
    EXPECT_NE(text.find("Owner: common\n"), std::string::npos) << text;
}

TEST(Arghelper, WithAClassTheObjectIsThePattern) {
    HCPProperty::Objects objects;
    objects->push_back(tclany(std::string("FOO*")));
    std::string pattern = "*";
    arghelper::adjustObjectAndPatternOrError(objects, pattern, "gate");
    EXPECT_EQ(pattern, "FOO*");
    EXPECT_EQ(objects.size(), 0u);
}

TEST(Arghelper, WithoutAClassNothingChanges) {
    HCPProperty::Objects objects;
    objects->push_back(tclany(std::string("FOO*")));
    std::string pattern = "*";
    arghelper::adjustObjectAndPatternOrError(objects, pattern, "");
    EXPECT_EQ(pattern, "*");
    EXPECT_EQ(objects.size(), 1u);
}

TEST(Arghelper, AClassAndObjectsAreRefused) {
    HCPProperty::Objects objects;
    objects->push_back(tclany(std::string("FOO*")));
    std::string pattern = "BAR*";
    EXPECT_THROW(arghelper::adjustObjectAndPatternOrError(objects, pattern, "gate"), HEXAll);
    objects = HCPProperty::Objects();
    objects->push_back(tclany(7));
    pattern = "*";
    EXPECT_THROW(arghelper::adjustObjectAndPatternOrError(objects, pattern, "gate"),
                 vek::tcltasks::bad_tclany_cast);
}
