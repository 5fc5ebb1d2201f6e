#include "platform/taskcore/help_page.h"

#include <fstream>
#include <sys/stat.h>

#include "../env/test_support.h"

using vek::tcltasks::help_page;

namespace {

class HelpPage : public InTempDir {
protected:
    help_page of(const std::string& bytes) {
        std::ofstream("page", std::ios::binary) << bytes;
        return help_page::read("page");
    }
};

TEST_F(HelpPage, HasItsSectionsWithoutBlankLinesAtTheirEnds) {
    const help_page page =
        of("DESCRIPTION\n\n  One.\n\n  Two.\n\n\nEXAMPLES\n  % command\n    more\n\nSEE ALSO\n  "
           "other\n");
    EXPECT_EQ(page.description(), "  One.\n\n  Two.\n");
    EXPECT_EQ(page.examples(), "  % command\n    more\n");
    EXPECT_EQ(page.see_also(), "  other\n");
    EXPECT_FALSE(page.empty());
}

TEST_F(HelpPage, IsEmptyWithoutAFile) {
    EXPECT_TRUE(help_page::read("nosuch").empty());
    EXPECT_TRUE(help_page::read("").empty());
    EXPECT_TRUE(help_page::read("nosuch/page").empty());
}

TEST_F(HelpPage, IsEmptyForWhatIsNoFile) {
    std::filesystem::create_directory("directory");
    std::filesystem::create_symlink("loop", "loop");
    ASSERT_EQ(::mkfifo("pipe", 0600), 0);
    for (const char* name : {"directory", "loop", "pipe", "/dev/null"}) {
        EXPECT_TRUE(help_page::read(name).empty()) << name;
    }
}

TEST_F(HelpPage, IsEmptyForAFileThatCannotBeRead) {
    of("DESCRIPTION\n  One.\n");
    std::filesystem::permissions("page", std::filesystem::perms::none);
    if (::geteuid() == 0) {
        const auto child = run_child([] {
            ASSERT_EQ(::setuid(65534), 0);
            EXPECT_TRUE(help_page::read("page").empty());
        });
        EXPECT_EQ(child.status, 0) << child.standard_error;
        return;
    }
    EXPECT_TRUE(help_page::read("page").empty());
}

TEST_F(HelpPage, LeavesOutWhatStandsAboveTheFirstHeading) {
    EXPECT_TRUE(of("").empty());
    EXPECT_TRUE(of("text without a heading\n").empty());
    EXPECT_EQ(of("title\nDESCRIPTION\n  One.\n").description(), "  One.\n");
}

TEST_F(HelpPage, TakesNoGarbageToTheTerminal) {
    std::string garbage;
    for (int c = 0; c < 256; ++c) {
        garbage += static_cast<char>(c);
    }
    EXPECT_TRUE(of(garbage).empty());
    const help_page page = of("DESCRIPTION\n  \x1b[2J\x07" + std::string(1, '\0') + "\ttext\x7f\r\n");
    EXPECT_EQ(page.description(), "  ?[2J?? text?\n");
}

TEST_F(HelpPage, KeepsTextInOtherScripts) {
    EXPECT_EQ(of("DESCRIPTION\n  \u03b1 \u4e2d\n").description(), "  \u03b1 \u4e2d\n");
}

TEST_F(HelpPage, OfAnyLengthIsReadUpToItsBound) {
    std::string bytes = "DESCRIPTION\n";
    while (bytes.size() < 8 * help_page::most_bytes) {
        bytes += "  line\n";
    }
    const help_page page = of(bytes);
    EXPECT_GT(page.description().size(), help_page::most_bytes / 2);
    EXPECT_LE(page.description().size(), help_page::most_bytes);
    const help_page line = of("DESCRIPTION\n  " + std::string(4 * help_page::most_bytes, 'x'));
    EXPECT_LE(line.description().size(), help_page::most_bytes);
}

TEST_F(HelpPage, LinesEndInEitherWayOrNotAtAll) {
    EXPECT_EQ(of("DESCRIPTION\r\n  One.\r\n\r\n  Two.").description(), "  One.\n\n  Two.\n");
}

TEST_F(HelpPage, ARepeatedHeadingGoesOnWithItsSection) {
    EXPECT_EQ(of("DESCRIPTION\n  One.\nSEE ALSO\n  x\nDESCRIPTION\n  Two.\n").description(),
              "  One.\n  Two.\n");
}

TEST_F(HelpPage, LiesWhereTheNameThatUsersTypeSays) {
    EXPECT_EQ(help_page::place("common::get_param"), "doc/eng/cmd/get_param");
    EXPECT_EQ(help_page::place("::common::get_param"), "doc/eng/cmd/get_param");
    EXPECT_EQ(help_page::place("get_cells"), "doc/eng/cmd/get_cells");
    EXPECT_EQ(help_page::place("debug::list_class"), "doc/eng/cmd/debug__list_class");
    EXPECT_EQ(help_page::place("a::b::c"), "doc/eng/cmd/a__b__c");
}

} // namespace
