// What of the features cannot be seen from a script: the kind of installation, and interpreters that go.
#include "support.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "platform/env/HUTEnv.h"
#include "platform/gui/HUTGuiEventBroker.h"
#include "tcltasks/core/Omu_commontasks.h"
#include "tcltasks/utils/detail/Features.h"
#include "tcltasks/utils/detail/HTCLoadFeatureEvent.h"

namespace {

namespace fs = std::filesystem;

// The application roots are fixed at their first use, so each of these runs in a process of its own.
class FeaturesDeathTest : public ::testing::Test {
protected:
    FeaturesDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    ~FeaturesDeathTest() override { fs::remove_all(root); }

    void feature(const std::string& name) {
        const fs::path directory = root / "lib/scripts/omu/features" / name;
        fs::create_directories(directory);
        std::ofstream(directory / (name + ".tcl")) << "set ::sourced_" << name << " 1\n";
    }
    Tcl_Interp* session() {
        setenv("OMU_APPROOT", (root.string() + ":" CORVANE_ROOT).c_str(), 1);
        Tcl_FindExecutable(nullptr);
        Tcl_Interp* interp = Tcl_CreateInterp();
        Tcl_Init(interp);
        Omu_commontasks_Init(interp);
        return interp;
    }
    static int exit_code(bool passed) { return passed ? 0 : 1; }

    fs::path root = fs::temp_directory_path() / ("corvane_features_" + std::to_string(HUTEnv::getPid()));
};

TEST_F(FeaturesDeathTest, InAStandaloneInstallationSomeNamesAreNotFound) {
    const auto listed = [&](bool standalone) {
        for (const char* name : {"benchtools", "corvane", "simulator", "other"}) {
            feature(name);
        }
        HUTProductInfo product;
        product.standalone = standalone;
        HUTEnv::setProductInfo(product);
        Tcl_Interp* interp = session();
        Features::init(interp);
        const std::string names = Features::getAll(interp, false);
        fs::remove_all(root);
        return names;
    };
    EXPECT_EXIT(std::_Exit(exit_code(listed(true) == "netlist_report other session_tools")),
                ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(std::_Exit(exit_code(listed(false) ==
                                     "benchtools corvane netlist_report other session_tools simulator")),
                ::testing::ExitedWithCode(0), "");
}

TEST_F(FeaturesDeathTest, ListenersHearOnceOfEachFeatureThatIsLoaded) {
    const auto heard = [&] {
        feature("other");
        Tcl_Interp* interp = session();
        std::string names;
        const auto tie = HUTGuiEventBroker::instance().addListener<HTCLoadFeatureEvent>(
            [&](const HTCLoadFeatureEvent& event) {
                names += event.interp == interp ? event.name + " " : "?";
            });
        Tcl_Eval(interp, "catch {load_features other other session_tools nosuch}");
        fs::remove_all(root);
        return tie.isConnected() && names == "other session_tools ";
    };
    EXPECT_EXIT(std::_Exit(exit_code(heard())), ::testing::ExitedWithCode(0), "");
}

TEST_F(FeaturesDeathTest, AnInterpreterThatIsDeletedTakesItsFeaturesAlong) {
    const auto forgotten = [&] {
        feature("other");
        Tcl_Interp* interp = session();
        Features::init(interp);
        Features::load(interp, "other");
        const bool before = Features::loaded(interp).contains("other");
        Tcl_DeleteInterp(interp);
        fs::remove_all(root);
        return before && Features::loaded(interp).empty();
    };
    EXPECT_EXIT(std::_Exit(exit_code(forgotten())), ::testing::ExitedWithCode(0), "");
}

} // namespace
