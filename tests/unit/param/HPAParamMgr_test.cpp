#include "platform/param/HPAParamMgr.h"

#include <climits>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../support/RecordingSink.h"
#include "../support/TempDir.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

const char* const declarations = R"(
parameter a.bool bool true "A switch."
parameter a.count int 5 range 1 10 "A count."
parameter a.free int -3 "A free number."
parameter a.ratio float 0.5 range 0 1 "A ratio."
parameter a.text string "x y" "A text."
parameter a.choice string "red" values "red" "green" end "A choice."
parameter b.hidden bool false hidden "A hidden switch."
parameter b.old int 0 deprecated "An old number."
parameter b.gone int 0 obsolete "A number without effect."
parameter z.driver linked false links a.bool !b.hidden "Drives others."
)";

class HPAParamMgrTest : public ::testing::Test {
protected:
    HPAParamMgrTest() {
        ::setenv("OMU_APPROOT", CORVANE_ROOT, 1);
        declare("test", declarations);
        ComMsgMgr::uninit();
        ComMsgMgr::setSink(ComMsgMgr::Destination::console, console);
    }
    ~HPAParamMgrTest() override { ComMsgMgr::uninit(); }

    void declare(const std::string& file, const std::string& text) {
        std::filesystem::create_directories(root + "/data/param");
        std::ofstream(root + "/data/param/" + file + ".param", std::ios::binary) << text;
    }

    /// The fault that reading this text gives.
    std::string fault_of(const std::string& text) {
        declare("test", text);
        return error_of([this] { HPAParamMgr{{root}}; });
    }

    template <class F>
    static std::string error_of(F&& action) {
        try {
            action();
        } catch (const HEXError& error) {
            return error.what();
        }
        return "no error";
    }

    static std::vector<std::string> names(const std::vector<HPAParam*>& params) {
        std::vector<std::string> result;
        for (const HPAParam* param : params)
            result.push_back(param->name);
        return result;
    }

    const TempDir directory;
    const std::string root = directory.root().string();
    std::shared_ptr<RecordingSink> console = std::make_shared<RecordingSink>();
};

TEST_F(HPAParamMgrTest, parametersHaveWhatTheirFileDeclares) {
    const HPAParamMgr mgr({root});
    const HPAParam* count = mgr.findParam("a.count");
    ASSERT_TRUE(count);
    EXPECT_EQ(count->type(), HPA_INT);
    EXPECT_TRUE(count->has_range());
    EXPECT_EQ(count->int_min(), 1);
    EXPECT_EQ(count->int_max(), 10);
    EXPECT_EQ(count->int_value(), 5);
    EXPECT_EQ(count->int_default(), 5);
    EXPECT_EQ(count->description, "A count.");
    EXPECT_EQ(count->visible, 1);
    EXPECT_EQ(count->state, HPAParam::active);
    EXPECT_FALSE(mgr.findParam("a.free")->has_range());
    EXPECT_EQ(mgr.findParam("a.ratio")->float_max(), 1.0f);
    EXPECT_EQ(mgr.findParam("a.text")->string_value(), "x y");
    EXPECT_THAT(mgr.findParam("a.choice")->values(), ElementsAre("red", "green"));
    EXPECT_EQ(mgr.findParam("b.hidden")->visible, 0);
    EXPECT_EQ(mgr.findParam("b.old")->state, HPAParam::deprecated);
    EXPECT_EQ(mgr.findParam("b.gone")->state, HPAParam::obsolete);
    const HPAParam* driver = mgr.findParam("z.driver");
    EXPECT_EQ(driver->type(), HPA_LINKED);
    EXPECT_EQ(HPAParam::LinkedMap(driver->linked_begin(), driver->linked_end()),
              (HPAParam::LinkedMap{{"a.bool", true}, {"b.hidden", false}}));
}

TEST_F(HPAParamMgrTest, namesAreFoundExactlyWithoutCaseAndByPattern) {
    const HPAParamMgr mgr({root});
    EXPECT_FALSE(mgr.findParam("A.COUNT"));
    EXPECT_EQ(mgr.findParamNoCase("A.COUNT"), mgr.find("a.count"));
    EXPECT_FALSE(mgr.findParamNoCase("nosuch"));
    std::vector<HPAParam*> found;
    mgr.findMatchingParams("b.*", found, false, false);
    EXPECT_THAT(names(found), ElementsAre("b.gone", "b.old"));
    found.clear();
    mgr.findMatchingParams("b.*", found, true, false);
    EXPECT_THAT(names(found), ElementsAre("b.gone", "b.hidden", "b.old"));
    EXPECT_TRUE(std::is_sorted(mgr.params().begin(), mgr.params().end(),
                               [](const HPAParam* a, const HPAParam* b) { return a->name < b->name; }));
}

TEST_F(HPAParamMgrTest, onlyChangedParametersCanBeAskedFor) {
    HPAParamMgr mgr({root});
    mgr.setIntValue("a.count", 7);
    mgr.setIntValue("a.free", -3);
    std::vector<HPAParam*> found;
    mgr.findMatchingParams("*", found, true, true);
    EXPECT_THAT(names(found), ElementsAre("a.count"));
}

TEST_F(HPAParamMgrTest, valuesAreSetReadAndReset) {
    HPAParamMgr mgr({root});
    EXPECT_FALSE(mgr.isSet("a.count"));
    mgr.setIntValue("a.count", 7);
    EXPECT_EQ(mgr.getValueAsInt("a.count"), 7);
    EXPECT_TRUE(mgr.isSet("a.count"));
    mgr.reset("a.count");
    EXPECT_EQ(mgr.getValueAsInt("a.count"), 5);
    EXPECT_FALSE(mgr.isSet("a.count"));
    mgr.setBoolValue("a.bool", false);
    EXPECT_FALSE(mgr.getValueAsBool("a.bool"));
    EXPECT_FALSE(mgr.getValueIfExistAsBool("a.bool"));
    mgr.setFloatValue("a.ratio", 0.25);
    EXPECT_EQ(mgr.getValueAsDouble("a.ratio"), 0.25);
    mgr.setStringValue("a.text", "neu \xff");
    EXPECT_EQ(mgr.getValueAsString("a.text"), "neu \xff");
    EXPECT_FALSE(mgr.getValueIfExistAsBool("nosuch"));
}

TEST_F(HPAParamMgrTest, textsBecomeValues) {
    HPAParamMgr mgr({root});
    mgr.setValue("a.bool", "NO");
    EXPECT_EQ(HPAParamMgr::valueText(*mgr.find("a.bool")), "0");
    mgr.setValue("a.bool", "YES");
    EXPECT_EQ(HPAParamMgr::valueText(*mgr.find("a.bool")), "1");
    mgr.setValue("a.count", "10");
    EXPECT_EQ(HPAParamMgr::valueText(*mgr.find("a.count")), "10");
    mgr.setValue("a.ratio", "1e-1");
    EXPECT_EQ(HPAParamMgr::valueText(*mgr.find("a.ratio")), "0.1");
    EXPECT_EQ(HPAParamMgr::defaultText(*mgr.find("a.ratio")), "0.5");
    EXPECT_EQ(HPAParamMgr::defaultText(*mgr.find("a.bool")), "1");
    EXPECT_EQ(mgr.getValueAsString("a.count"), "10");
}

TEST_F(HPAParamMgrTest, bothEndsOfARangeAreInside) {
    HPAParamMgr mgr({root});
    mgr.setIntValue("a.count", 1);
    mgr.setValue("a.count", "10");
    mgr.setFloatValue("a.ratio", 0);
    mgr.setValue("a.ratio", "1");
    for (const int outside : {0, 11, INT_MIN, INT_MAX})
        EXPECT_EQ(
            error_of([&] { mgr.setIntValue("a.count", outside); }),
            "ERROR: [Common 17-154] The value is outside the parameter's range: it may be from 1 to 10.");
    EXPECT_EQ(error_of([&] { mgr.setValue("a.ratio", "1.001"); }),
              "ERROR: [Common 17-154] The value is outside the parameter's range: it may be from 0 to 1.");
    EXPECT_EQ(mgr.getValueAsInt("a.count"), 10);
    EXPECT_EQ(mgr.getValueAsDouble("a.ratio"), 1);
}

TEST_F(HPAParamMgrTest, aRefusedValueChangesNothing) {
    HPAParamMgr mgr({root});
    EXPECT_EQ(error_of([&] { mgr.setValue("nosuch", "1"); }),
              "ERROR: [Common 17-153] No parameter is named 'nosuch'.");
    EXPECT_THAT(error_of([&] { mgr.setValue("a.bool", "-1"); }), HasSubstr("[Common 17-152]"));
    EXPECT_THAT(error_of([&] { mgr.setValue("a.bool", "2"); }), HasSubstr("the type is 'bool'"));
    EXPECT_THAT(error_of([&] { mgr.setValue("a.count", "x"); }), HasSubstr("the type is 'int'"));
    EXPECT_THAT(error_of([&] { mgr.setValue("a.ratio", "nan"); }), HasSubstr("the type is 'float'"));
    EXPECT_THAT(error_of([&] { mgr.setIntValue("a.bool", 1); }), HasSubstr("the type is 'bool'"));
    EXPECT_THAT(error_of([&] { mgr.setBoolValue("a.count", true); }), HasSubstr("the type is 'int'"));
    EXPECT_THAT(error_of([&] { mgr.setFloatValue("a.count", 1); }), HasSubstr("the type is 'int'"));
    EXPECT_EQ(
        error_of([&] { mgr.setStringValue("a.choice", "blue"); }),
        "ERROR: [Common 17-5204] 'blue' is not a value of the parameter 'a.choice'; its values are 'red', "
        "'green'.");
    EXPECT_THAT(error_of([&] { mgr.getValueAsInt(""); }), HasSubstr("named ''"));
    std::vector<HPAParam*> changed;
    mgr.findMatchingParams("*", changed, true, true);
    EXPECT_TRUE(changed.empty());
}

TEST_F(HPAParamMgrTest, aLinkedParameterDrivesOthers) {
    HPAParamMgr mgr({root});
    mgr.setValue("z.driver", "true");
    EXPECT_TRUE(mgr.getValueAsBool("a.bool"));
    EXPECT_FALSE(mgr.getValueAsBool("b.hidden"));
    mgr.setBoolValue("z.driver", false);
    EXPECT_FALSE(mgr.getValueAsBool("a.bool"));
    EXPECT_TRUE(mgr.getValueAsBool("b.hidden"));
    EXPECT_THAT(console->all(),
                HasSubstr("INFO: [Common 17-1664] The parameter 'a.bool' follows and is now false."));
    EXPECT_THAT(console->all(), ::testing::Not(HasSubstr("b.hidden")));
    mgr.setBoolValue("z.driver", true);
    console->clear();
    mgr.reset("z.driver");
    EXPECT_FALSE(mgr.getValueAsBool("a.bool"));
    EXPECT_THAT(console->all(),
                HasSubstr("[Common 17-1665] The parameter 'b.hidden' follows the reset and is now true."));
}

TEST_F(HPAParamMgrTest, anUnknownLinkedNameIsToldAndWhatWasSetBeforeStaysSet) {
    declare("test", "parameter a.b linked false links a.a C.D e.f z.z \"Drives some.\"\n"
                    "parameter a.a bool false \"First.\" parameter c.d bool false \"Second.\"\n"
                    "parameter z.z bool false \"Behind the one that is missing.\"");
    HPAParamMgr mgr({root});
    EXPECT_THAT(error_of([&] { mgr.setBoolValue("a.b", true); }), HasSubstr("No parameter is named 'e.f'."));
    EXPECT_TRUE(mgr.getValueAsBool("a.b"));
    EXPECT_TRUE(mgr.getValueAsBool("a.a"));
    EXPECT_TRUE(mgr.getValueAsBool("c.d")) << "found without regard to case";
    EXPECT_FALSE(mgr.getValueAsBool("z.z"));
    mgr.reset("a.b");
    EXPECT_FALSE(mgr.getValueAsBool("a.a"));
}

TEST_F(HPAParamMgrTest, aTextParameterTakesAnyTextFromTheUser) {
    HPAParamMgr mgr({root});
    mgr.setValue("a.choice", "blue");
    EXPECT_EQ(mgr.getValueAsString("a.choice"), "blue");
}

TEST_F(HPAParamMgrTest, aNumberIsComparedWithTheRangeAsItWasWritten) {
    HPAParamMgr mgr({root});
    EXPECT_THAT(error_of([&] { mgr.setValue("a.ratio", "1.00000001"); }), HasSubstr("[Common 17-154]"));
    EXPECT_EQ(mgr.getValueAsDouble("a.ratio"), 0.5);
}

TEST_F(HPAParamMgrTest, readersOfAnotherTypeGetTheNearestSense) {
    HPAParamMgr mgr({root});
    HPAParam* count = mgr.find("a.count");
    EXPECT_TRUE(count->bool_value());
    EXPECT_EQ(count->float_value(), 5.0f);
    EXPECT_EQ(mgr.find("a.ratio")->int_value(), 0);
    EXPECT_TRUE(mgr.find("a.ratio")->bool_value());
    EXPECT_EQ(mgr.find("a.bool")->int_value(), 1);
    EXPECT_EQ(mgr.find("a.text")->int_value(), 0);
    HPAParam* ratio = mgr.find("a.ratio");
    ratio->set_float(3e38f);
    EXPECT_EQ(ratio->int_value(), INT_MAX);
}

TEST_F(HPAParamMgrTest, lifeCycleCheckWarnsOfOldParameters) {
    const HPAParamMgr mgr({root});
    mgr.find("a.bool")->lifeCycleCheck();
    EXPECT_EQ(console->all(), "");
    mgr.find("b.old")->lifeCycleCheck();
    mgr.find("b.gone")->lifeCycleCheck();
    EXPECT_THAT(console->all(), HasSubstr("WARNING: [Common 17-5200] The parameter 'b.old' is deprecated."));
    EXPECT_THAT(console->all(), HasSubstr("WARNING: [Common 17-5201] The parameter 'b.gone' is obsolete"));
}

TEST_F(HPAParamMgrTest, listenersHearEachChangeUntilTheyLeave) {
    HPAParamMgr mgr({root});
    std::vector<std::string> heard;
    const auto id = mgr.addListener([&](HPAParam& param) { heard.push_back(param.name); });
    mgr.setIntValue("a.count", 7);
    mgr.setIntValue("a.count", 7);
    mgr.setBoolValue("z.driver", true);
    mgr.reset("a.count");
    error_of([&] { mgr.setIntValue("a.count", 99); });
    mgr.removeListener(id);
    mgr.setIntValue("a.count", 8);
    EXPECT_THAT(heard, ElementsAre("a.count", "a.count", "z.driver", "a.bool", "b.hidden", "a.count"));
}

TEST_F(HPAParamMgrTest, aListenerMayChangeParametersAndListeners) {
    HPAParamMgr mgr({root});
    std::uint64_t id = 0;
    id = mgr.addListener([&](HPAParam&) {
        mgr.removeListener(id);
        mgr.setIntValue("a.count", 9);
    });
    mgr.setIntValue("a.free", 1);
    EXPECT_EQ(mgr.getValueAsInt("a.count"), 9);
}

TEST_F(HPAParamMgrTest, theFirstRootWinsAndAllFilesCount) {
    declare("more", "parameter c.more int 1 \"More.\"\nparameter a.count int 2 \"Not this one.\"");
    const std::string other = root + "/other";
    std::filesystem::create_directories(other + "/data/param");
    std::ofstream(other + "/data/param/x.param") << "parameter a.bool int 9 \"Not this one.\"\n"
                                                    "parameter d.other int 4 \"Another.\"";
    const HPAParamMgr mgr({root, other, "/nonexistent"});
    EXPECT_EQ(mgr.getValueAsInt("c.more"), 1);
    EXPECT_EQ(mgr.getValueAsInt("d.other"), 4);
    EXPECT_EQ(mgr.find("a.bool")->type(), HPA_BOOL);
}

TEST_F(HPAParamMgrTest, missingFilesAreToldWithThePlacesSearched) {
    EXPECT_EQ(error_of([] {
                  HPAParamMgr{{"/nonexistent/a", "/nonexistent/b"}};
              }),
              "ERROR: [Common 17-5202] No parameter file is installed. Searched for files ending in .param: "
              "'/nonexistent/a/data/param', '/nonexistent/b/data/param'.");
}

TEST_F(HPAParamMgrTest, aFaultInAFileIsToldWithItsPlace) {
    EXPECT_EQ(fault_of("parameter a.b int x \"d\""),
              "ERROR: [Common 17-5203] The parameter file '" + root +
                  "/data/param/test.param' has a fault in line 1, column 19: 'x' "
                  "is not a whole number.");
    EXPECT_THAT(fault_of("\n param a.b"),
                HasSubstr("line 2, column 2: 'parameter' is expected here, not 'param'"));
    EXPECT_THAT(fault_of("parameter a.b number 1"),
                HasSubstr("a type is bool, int, float, string or linked"));
    EXPECT_THAT(fault_of("parameter a.b int 5 range 6 7 \"d\""),
                HasSubstr("the default of 'a.b' is not among the values that it may have"));
    EXPECT_THAT(fault_of("parameter a.b string \"x\" values \"y\" end \"d\""),
                HasSubstr("the default of 'a.b'"));
    EXPECT_THAT(fault_of("parameter a.b bool true range 1 2 \"d\""), HasSubstr("'range' does not fit here"));
    EXPECT_THAT(fault_of("parameter a.b bool true"), HasSubstr("the file ends where the description"));
    EXPECT_THAT(fault_of("parameter a.b linked true links \"d\""),
                HasSubstr("the name of a linked parameter"));
    EXPECT_THAT(fault_of("parameter a.b string \"x"), HasSubstr("the string that begins here is not closed"));
    EXPECT_THAT(fault_of("parameter a.b string \"x\" values \"x\" \"d\""), HasSubstr("'end' is expected"));
}

TEST_F(HPAParamMgrTest, readersAndWritersOfManyThreadsAgree) {
    HPAParamMgr mgr({root});
    HPAParam* text = mgr.find("a.text");
    HPAParam* count = mgr.find("a.count");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 2000; ++i) {
                mgr.setIntValue("a.count", 1 + t);
                text->set_string(std::string(50, static_cast<char>('a' + t)));
                const std::string seen = text->string_value();
                ASSERT_EQ(seen.find_first_not_of(seen[0]), std::string::npos);
                ASSERT_GE(count->int_value(), 1);
                ASSERT_LE(count->int_value(), 5);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(HPAParamMgrTest, theInstalledParametersAreThere) {
    HPAParamMgr& mgr = HPAParamMgr::getParamMgr();
    for (const char* name :
         {"tcl.launchTclThread", "tcl.disableCollections", "tcl.notrace", "messaging.showTclStack",
          "general.maxThreads", "gui.noUpdateCheck", "project.runInitFile", "place.hardVerbose",
          "route.timingDbg", "tclapp.gitTimeOut", "boardStore.enableStore", "misc.enableGUICustomCmdFlow"})
        EXPECT_TRUE(mgr.findParam(name)) << name;
    HPAParam* limit = mgr.find("tcl.collectionResultDisplayLimit");
    ASSERT_TRUE(limit);
    EXPECT_EQ(limit->int_default(), 500);
    mgr.setIntValue(limit->name, -1);
    EXPECT_THAT(error_of([&] { mgr.setIntValue(limit->name, -2); }), HasSubstr("from -1 to 2147483647"));
    mgr.setIntValue("place.hardVerbose", 0xd00bf);
    for (const HPAParam* param : mgr.params()) {
        EXPECT_FALSE(param->description.empty()) << param->name;
        EXPECT_NE(param->name.find('.'), std::string::npos) << param->name;
    }
    mgr.reset(limit->name);
    mgr.reset("place.hardVerbose");
}

} // namespace
