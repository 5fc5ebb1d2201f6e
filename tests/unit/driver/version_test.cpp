#include "tcltasks/driver/detail/version.h"

#include <gtest/gtest.h>
#include <sstream>
#include <vector>

#include "platform/env/HUTEnv.h"
#include "platform/env/HUTMemUtils.h"

namespace {

std::vector<std::string> lines(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> all;
    for (std::string line; std::getline(in, line);) {
        all.push_back(line);
    }
    return all;
}

std::string value_of(const std::string& text, const std::string& label) {
    for (const std::string& line : lines(text)) {
        if (line.starts_with("# " + label)) {
            return line.substr(23);
        }
    }
    return "(none)";
}

TEST(Version, theShortFormIsTheNumberAlone) {
    EXPECT_EQ(driver::detail::getVersion(true), HUTEnv::getProductVersion());
}

TEST(Version, theLongFormHasNoEmptyLineForWhatIsNotThere) {
    const auto all = lines(driver::detail::getVersion(false));
    ASSERT_EQ(all.size(), 4u);
    EXPECT_EQ(all[0], HUTEnv::getFullProductStr());
    EXPECT_EQ(all[1], HUTEnv::getFullBuildStr());
    EXPECT_EQ(all[2], HUTEnv::getCopyrightLines()[0]);
    EXPECT_EQ(all[3], HUTEnv::getCopyrightLines()[1]);
}

TEST(Banner, everyLineIsACommentAndTheFirstAndLastAreRules) {
    const auto all = lines(driver::detail::banner(false));
    ASSERT_EQ(all.size(), 21u);
    for (const std::string& line : all) {
        EXPECT_TRUE(line.starts_with('#')) << line;
    }
    EXPECT_EQ(all.front(), "#" + std::string(59, '-'));
    EXPECT_EQ(all.back(), all.front());
}

TEST(Banner, theDirectoryStandsBeforeTheCommandLine) {
    const std::string text = driver::detail::banner(false);
    EXPECT_LT(text.find("# Current directory  : "), text.find("# Command line       : "));
}

TEST(Banner, inRegressionModeTheVersionLinesAreLeftOut) {
    const std::string text = driver::detail::banner(true);
    EXPECT_EQ(text.find(HUTEnv::getFullProductStr()), std::string::npos);
    EXPECT_EQ(text.find(HUTEnv::getFullBuildStr()), std::string::npos);
    EXPECT_EQ(lines(text).size() + 2, lines(driver::detail::banner(false)).size());
}

TEST(Banner, memoryIsCountedInMillionsOfBytes) {
    const auto memory = HUTMemUtils::getMemInfo();
    EXPECT_EQ(value_of(driver::detail::banner(true), "Host memory"),
              std::to_string(memory.physical / 1000000) + " MB");
}

TEST(Banner, theCommandLineBeginsWithTheProgramsFileName) {
    HUTEnv::setCmdline({"/some/where/corvane", "-mode", "two words"});
    EXPECT_EQ(value_of(driver::detail::banner(true), "Command line"), "corvane -mode \"two words\"");
}

} // namespace
