#include "tcltasks/help/detail/HelpResolver.h"

#include <algorithm>
#include <fstream>
#include <gmock/gmock.h>

#include "../env/test_support.h"
#include "platform/taskcore/options_description.h"
#include "tcltasks/core/Omu_commontasks.h"
#include "tcltasks/core/task.h"
#include "tcltasks/help/detail/HelpCategoryMgr.h"
#include "tcltasks/help/detail/HelpState.h"
#include "tcltasks/help/detail/features.h"

using namespace HTCHelp::detail;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

struct bare : vek::tcltasks::HTCITaskHelper<bare> {
    static constexpr const char* command = "bare_command";
    static void load_description() { description_instance("Have no category", ""); }
};

class Resolver : public InTempDir {
protected:
    void SetUp() override {
        InTempDir::SetUp();
        Tcl_FindExecutable(nullptr);
        g_interp = Tcl_CreateInterp();
        ASSERT_EQ(Tcl_Init(g_interp), TCL_OK);
        ASSERT_EQ(Omu_commontasks_Init(g_interp), TCL_OK) << Tcl_GetStringResult(g_interp);
        g_helpType() = "long";
    }
    void TearDown() override {
        Tcl_DeleteInterp(g_interp);
        g_interp = nullptr;
        InTempDir::TearDown();
    }

    std::vector<std::string> names(const std::vector<HelpInfo>& topics) {
        std::vector<std::string> result;
        for (const HelpInfo& topic : topics) {
            result.push_back(topic.name);
        }
        return result;
    }
    std::vector<std::string> tasks(const std::string& pattern, const std::string& category, bool hidden) {
        std::vector<HelpInfo> topics;
        HelpResolver().findTasks(hidden, pattern, category, topics);
        return names(topics);
    }
    std::vector<HelpInfo> pages(const std::string& pattern, HelpInfo::TopicType type) {
        std::vector<HelpInfo> topics;
        HelpResolver().findManPages(pattern, type, topics);
        return topics;
    }
    void make_page(const std::string& root, const std::string& name) {
        std::filesystem::create_directories(dir / root / "doc/eng/tcl");
        std::ofstream(dir / root / "doc/eng/tcl" / name) << "text";
    }
};

TEST_F(Resolver, TheValuesOfTopicTypesAreFixed) {
    EXPECT_EQ(HelpInfo::task_topic, 0);
    EXPECT_EQ(HelpInfo::auto_loaded, 1);
    EXPECT_EQ(HelpInfo::man_page, 2);
    EXPECT_EQ(HelpInfo::tcl_builtin, 3);
    EXPECT_EQ(HelpInfo::tcl_package, 4);
}

TEST_F(Resolver, ThePackagesOfTclAreTheseEight) {
    for (const char* name : {"http", "msgcat", "platform", "platform_shell", "platform::shell", "tcltest",
                             "mathop", "mathfunc"}) {
        EXPECT_TRUE(HelpResolver::isTclPackage(name)) << name;
    }
    EXPECT_FALSE(HelpResolver::isTclPackage("lsort"));
    EXPECT_FALSE(HelpResolver::isTclPackage(""));
}

TEST_F(Resolver, TasksAreFoundByFullAndByPlainName) {
    EXPECT_THAT(tasks("get_param", "", false), ElementsAre("common::get_param"));
    EXPECT_THAT(tasks("common::get_param", "", false), ElementsAre("common::get_param"));
    EXPECT_THAT(tasks("*get_para*", "", false), ElementsAre("common::get_param"));
    EXPECT_THAT(tasks("source", "", false), ElementsAre("omu::source"));
}

TEST_F(Resolver, NamespacesAreLookedIntoWhenHiddenIsWantedOrThePatternNamesOne) {
    EXPECT_THAT(tasks("*list_class", "", false), IsEmpty());
    EXPECT_THAT(tasks("*list_class", "", true), ElementsAre("debug::list_class"));
    EXPECT_THAT(tasks("debug::list_class", "", false), ElementsAre("debug::list_class"));
}

TEST_F(Resolver, TopicsAreSortedByTheNameThatUsersKnow) {
    std::vector<HelpInfo> topics;
    HelpResolver().findTasks(false, "", "", topics);
    EXPECT_GT(topics.size(), 10u);
    EXPECT_TRUE(std::is_sorted(topics.begin(), topics.end(),
                               [](const auto& a, const auto& b) { return a.helpName < b.helpName; }));
    EXPECT_THAT(names(topics), Not(Contains(::testing::AllOf(::testing::StartsWith("omu::"),
                                                             ::testing::Not("omu::source")))));
}

TEST_F(Resolver, ACategoryIsTheBeginningOfANameInAnyCase) {
    EXPECT_THAT(tasks("*", "propertyAnd", false), Contains("common::get_param"));
    EXPECT_THAT(tasks("get_param", "Nosuch", false), IsEmpty());
    EXPECT_EQ(tasks("*", "PATOPICS", false), tasks("*", "", false));
}

TEST_F(Resolver, ATaskWithoutCategoryCountsAsUnknown) {
    vek::tcltasks::register_task<bare>(g_interp);
    EXPECT_THAT(tasks("*", "Unknown", false), ElementsAre("bare_command"));
    EXPECT_THAT(HelpCategoryMgr::getCategories(true), Not(Contains("Unknown")));
    vek::tcltasks::unregister_task<bare>();
}

TEST_F(Resolver, PagesComeFromTheRootsInOrderTheFirstOfANameCounts) {
    make_page("a", "zeta");
    make_page("a", ".hidden");
    make_page("b", "zeta");
    make_page("b", "alpha");
    std::filesystem::create_directories(dir / "b/doc/eng/tcl/folder");
    const ScopedEnv roots("OMU_APPROOT", (dir / "a").string() + ":" + (dir / "b").string());
    const auto found = pages("*[a-z]*", HelpInfo::man_page);
    ASSERT_GE(found.size(), 2u);
    EXPECT_EQ(found[0].path, (dir / "a/doc/eng/tcl/zeta").string());
    EXPECT_EQ(found[1].path, (dir / "b/doc/eng/tcl/alpha").string());
    EXPECT_THAT(names(found), Not(Contains(".hidden")));
    EXPECT_THAT(names(found), Not(Contains("folder")));
    const auto all = names(found);
    EXPECT_EQ(std::count(all.begin(), all.end(), "zeta"), 1);
}

TEST_F(Resolver, PagesAreToldApartByTheNameThatUsersKnow) {
    for (const char* name : {"platform_shell", "pkg_create", "one_command", "mathop"}) {
        make_page("a", name);
    }
    const ScopedEnv roots("OMU_APPROOT", (dir / "a").string());
    const auto all = pages("*[_o]*", HelpInfo::man_page);
    const auto find = [&](const std::string& name) {
        return *std::find_if(all.begin(), all.end(), [&](const HelpInfo& t) { return t.name == name; });
    };
    EXPECT_EQ(find("platform_shell").helpName, "platform::shell");
    EXPECT_EQ(find("platform_shell").type, HelpInfo::tcl_package);
    EXPECT_EQ(find("pkg_create").helpName, "pkg::create");
    EXPECT_EQ(find("pkg_create").type, HelpInfo::tcl_builtin);
    EXPECT_THAT(names(pages("*_*", HelpInfo::tcl_package)), ElementsAre("platform_shell"));
    EXPECT_THAT(names(pages("*_*", HelpInfo::tcl_builtin)), Contains("one_command"));
    EXPECT_THAT(names(pages("*_*", HelpInfo::tcl_builtin)), Not(Contains("platform_shell")));
}

TEST_F(Resolver, APageIsDroppedWhenATopicHasItsName) {
    make_page("a", "one");
    const ScopedEnv roots("OMU_APPROOT", (dir / "a").string());
    std::vector<HelpInfo> topics{{"one", "one", {}, HelpInfo::task_topic, nullptr}};
    HelpResolver().findManPages("one", HelpInfo::man_page, topics);
    EXPECT_EQ(topics.size(), 1u);
}

TEST_F(Resolver, ManualPagesBelongToLongHelp) {
    make_page("a", "platform_shell");
    const ScopedEnv roots("OMU_APPROOT", (dir / "a").string());
    std::vector<HelpInfo> topics;
    HelpResolver().getMatchingHelp("platform::shell", "", false, topics);
    EXPECT_THAT(names(topics), ElementsAre("platform_shell"));
    HelpResolver().getMatchingHelp("platform::shell", "tclpackage", false, topics);
    EXPECT_THAT(names(topics), ElementsAre("platform_shell"));
    HelpResolver().getMatchingHelp("platform::shell", "TclBuiltIn", false, topics);
    EXPECT_THAT(names(topics), IsEmpty());
    HelpResolver().getMatchingHelp("platform::shell", "PaTopics", false, topics);
    EXPECT_THAT(names(topics), IsEmpty());
    g_helpType() = "args";
    HelpResolver().getMatchingHelp("platform::shell", "", false, topics);
    EXPECT_THAT(names(topics), IsEmpty());
}

TEST_F(Resolver, CategoriesAreSplitAtColons) {
    std::vector<std::string> categories;
    getTaskCategories(nullptr, categories);
    EXPECT_THAT(categories, IsEmpty());
    getTaskCategories(vek::tcltasks::task_manager::createTask("common::report_param"), categories);
    EXPECT_THAT(categories, ElementsAre("PropertyAndParameter", "Report"));
}

TEST_F(Resolver, ResolvingACategoryTakesNamesBeginningsAndPatterns) {
    EXPECT_EQ(HelpCategoryMgr::resolve("").category, "");
    EXPECT_EQ(HelpCategoryMgr::resolve("paTOPICS").category, "PaTopics");
    EXPECT_EQ(HelpCategoryMgr::resolve("tclbuiltin").category, "tclbuiltin");
    EXPECT_EQ(HelpCategoryMgr::resolve("proj").category, "Project");
    EXPECT_EQ(HelpCategoryMgr::resolve("*JECT").matches, (std::vector<std::string>{"Object", "Project"}));
    EXPECT_EQ(HelpCategoryMgr::resolve("tcl").matches,
              (std::vector<std::string>{"TclBuiltIn", "TclPackage"}));
    EXPECT_THROW(HelpCategoryMgr::resolve("nosuch"), HEXError);
    EXPECT_THROW(HelpCategoryMgr::resolve("[a"), HEXError);
}

TEST_F(Resolver, CommandsOfFeaturesKnowTheirLoadCommand) {
    ASSERT_EQ(Tcl_Eval(g_interp, "set auto_index(::mine) {::common::load_features session_tools}; "
                                 "set auto_index(other) {source nowhere}; set ::result kept"),
              TCL_OK);
    features::init(g_interp);
    EXPECT_STREQ(Tcl_GetStringResult(g_interp), "kept");
    EXPECT_TRUE(features::isCommand("mine"));
    EXPECT_FALSE(features::isCommand("other"));
    EXPECT_EQ(features::getLoadCommandForCommand(g_interp, "mine"), "load_features session_tools");
    EXPECT_EQ(features::getLoadCommandForCommand(g_interp, "nosuch"), "");
    std::vector<std::string> names;
    features::appendCommands(names);
    EXPECT_THAT(names, Contains("mine"));
}

} // namespace
