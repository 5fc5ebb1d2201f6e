// What set_param and reset_param tell the windows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/gui/HUTGuiEventBroker.h"
#include "platform/param/HPAParamMgr.h"
#include "platform/param/HTCParamUpdatedEvent.h"
#include "tcltasks/core/Omu_commontasks.h"

namespace {

using ::testing::ElementsAre;

class ParamEvent : public ::testing::Test {
protected:
    ParamEvent() {
        Tcl_FindExecutable(nullptr);
        interp = Tcl_CreateInterp();
        EXPECT_EQ(Tcl_Init(interp), TCL_OK);
        EXPECT_EQ(Omu_commontasks_Init(interp), TCL_OK) << Tcl_GetStringResult(interp);
        connection = HUTGuiEventBroker::instance().addListener<HTCParamUpdatedEvent>(
            [this](const HTCParamUpdatedEvent& event) {
                EXPECT_EQ(&event.manager, &HPAParamMgr::getParamMgr());
                heard.push_back(event.name);
            });
    }
    ~ParamEvent() override {
        connection.disconnect();
        Tcl_Eval(interp, "common::reset_param general.maxThreads");
        Tcl_DeleteInterp(interp);
    }

    int eval(const char* script) { return Tcl_Eval(interp, script); }

    Tcl_Interp* interp;
    HUTGuiEventConnectionHandle connection;
    std::vector<std::string> heard;
};

TEST_F(ParamEvent, ASetParameterIsToldUnderTheNameThatTheUserWrote) {
    EXPECT_EQ(eval("common::set_param GENERAL.maxthreads 3"), TCL_OK);
    EXPECT_EQ(eval("common::set_param general.maxThreads 3"), TCL_OK);
    EXPECT_THAT(heard, ElementsAre("GENERAL.maxthreads", "general.maxThreads"));
}

TEST_F(ParamEvent, AResetParameterIsToldAlsoIfItsValueDoesNotChange) {
    EXPECT_EQ(eval("common::reset_param general.maxThreads; common::reset_param general.maxThreads"), TCL_OK);
    EXPECT_THAT(heard, ElementsAre("general.maxThreads", "general.maxThreads"));
}

TEST_F(ParamEvent, WhatIsRefusedOrOnlyReadIsNotTold) {
    EXPECT_EQ(eval("common::set_param general.maxThreads nonsense"), TCL_ERROR);
    EXPECT_EQ(eval("common::set_param nosuch 1"), TCL_ERROR);
    EXPECT_EQ(eval("common::reset_param nosuch"), TCL_ERROR);
    EXPECT_EQ(eval("common::get_param general.maxThreads"), TCL_OK);
    EXPECT_THAT(heard, ElementsAre());
}

} // namespace
