#include "tcltasks/driver/detail/RunMode.h"

#include <gtest/gtest.h>
#include <memory>

namespace {

struct delete_interp {
    void operator()(Tcl_Interp* interp) const { Tcl_DeleteInterp(interp); }
};
using interp_ptr = std::unique_ptr<Tcl_Interp, delete_interp>;

std::string variable(const interp_ptr& interp, const char* name) {
    const char* value = Tcl_GetVar2(interp.get(), name, nullptr, TCL_GLOBAL_ONLY);
    return value ? value : "(unset)";
}

TEST(RunMode, theBeginningOfAWordFindsTheFirstModeInOrder) {
    EXPECT_EQ(RunMode::find("b"), RunMode::batch);
    EXPECT_EQ(RunMode::find("BATCH"), RunMode::batch);
    EXPECT_EQ(RunMode::find("t"), RunMode::tcl);
    EXPECT_EQ(RunMode::find("gu"), RunMode::gui);
    EXPECT_EQ(RunMode::find("p"), RunMode::py);
    EXPECT_EQ(RunMode::find(""), RunMode::tcl);
}

TEST(RunMode, whatIsNoBeginningOfAModeIsNone) {
    for (const char* word : {"bx", "batchx", " tcl", "no_mode", "n"}) {
        EXPECT_EQ(RunMode::find(word), RunMode::no_mode) << word;
    }
}

TEST(RunMode, theTclVariablesFollowTheMode) {
    const interp_ptr interp(Tcl_CreateInterp());
    const RunMode::MODE before = RunMode::set(interp.get(), RunMode::batch, true);
    EXPECT_EQ(RunMode::sMode, RunMode::batch);
    EXPECT_EQ(RunMode::sModeStr, "batch");
    EXPECT_EQ(variable(interp, "omu::mode"), "batch");
    EXPECT_EQ(variable(interp, "omu::requested_mode"), "batch");

    EXPECT_EQ(RunMode::set(interp.get(), RunMode::tcl, false), RunMode::batch);
    EXPECT_EQ(variable(interp, "omu::mode"), "tcl");
    EXPECT_EQ(variable(interp, "omu::requested_mode"), "batch");
    RunMode::set(interp.get(), before, true);
}

TEST(RunMode, aWordSetsTheVariablesAlone) {
    const interp_ptr interp(Tcl_CreateInterp());
    const RunMode::MODE before = RunMode::sMode;
    RunMode::set(interp.get(), "java", false);
    EXPECT_EQ(variable(interp, "omu::mode"), "java");
    EXPECT_EQ(variable(interp, "omu::requested_mode"), "(unset)");
    EXPECT_EQ(RunMode::sMode, before);
}

} // namespace
