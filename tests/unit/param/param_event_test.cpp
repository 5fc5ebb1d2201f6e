// What set_param and reset_param tell the windows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../support/ConsoleTest.h"
#include "platform/gui/HUTGuiEventBroker.h"
#include "platform/param/HPAParamMgr.h"
#include "platform/param/HTCParamUpdatedEvent.h"

namespace {

using ::testing::ElementsAre;

class ParamEvent : public ConsoleTest {
protected:
    ParamEvent() {
        connection = HUTGuiEventBroker::instance().addListener<HTCParamUpdatedEvent>(
            [this](const HTCParamUpdatedEvent& event) {
                EXPECT_EQ(&event.manager, &HPAParamMgr::getParamMgr());
                heard.push_back(event.name);
            });
    }
    ~ParamEvent() override {
        connection.disconnect();
        run("common::reset_param general.maxThreads");
    }

    HUTGuiEventConnectionHandle connection;
    std::vector<std::string> heard;
};

TEST_F(ParamEvent, ASetParameterIsToldUnderTheNameThatTheUserWrote) {
    EXPECT_EQ(run("common::set_param GENERAL.maxthreads 3"), TCL_OK);
    EXPECT_EQ(run("common::set_param general.maxThreads 3"), TCL_OK);
    EXPECT_THAT(heard, ElementsAre("GENERAL.maxthreads", "general.maxThreads"));
}

TEST_F(ParamEvent, AResetParameterIsToldAlsoIfItsValueDoesNotChange) {
    EXPECT_EQ(run("common::reset_param general.maxThreads; common::reset_param general.maxThreads"), TCL_OK);
    EXPECT_THAT(heard, ElementsAre("general.maxThreads", "general.maxThreads"));
}

TEST_F(ParamEvent, WhatIsRefusedOrOnlyReadIsNotTold) {
    EXPECT_EQ(run("common::set_param general.maxThreads nonsense"), TCL_ERROR);
    EXPECT_EQ(run("common::set_param nosuch 1"), TCL_ERROR);
    EXPECT_EQ(run("common::reset_param nosuch"), TCL_ERROR);
    EXPECT_EQ(run("common::get_param general.maxThreads"), TCL_OK);
    EXPECT_THAT(heard, ElementsAre());
}

} // namespace
