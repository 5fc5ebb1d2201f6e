// What source tells the windows when a file has come to its end.
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../support/ConsoleTest.h"
#include "platform/gui/HUTGuiEventBroker.h"
#include "tcltasks/builtin/source_command_done.h"
#include "tcltasks/core/itask.h"

namespace {

using ::testing::ElementsAre;
using vek::tcltasks::itask;

class SourceEvent : public ConsoleTest {
protected:
    SourceEvent() {
        connection = HUTGuiEventBroker::instance().addListener<source_command_done>(
            [this](const source_command_done& event) {
                EXPECT_EQ(event.getType(), 66);
                EXPECT_EQ(event.dataAs<Tcl_Interp*>(0), interp);
                EXPECT_NE(event.dataAs<itask*>(2), nullptr);
                int* code = event.dataAs<int*>(1);
                codes.push_back(*code);
                if (forgive) {
                    *code = TCL_OK;
                }
            });
    }
    ~SourceEvent() override { connection.disconnect(); }

    int source(const char* name, const char* text) {
        if (text) {
            std::ofstream(name) << text;
        }
        return run(std::string("omu::source ") + name);
    }

    HUTGuiEventConnectionHandle connection;
    std::vector<int> codes;
    bool forgive = false;
};

TEST_F(SourceEvent, IsRaisedWithTheCodeThatTheFileEndedWith) {
    EXPECT_EQ(source("well.tcl", "set x 1"), TCL_OK);
    EXPECT_EQ(source("fails.tcl", "error away"), TCL_ERROR);
    EXPECT_EQ(source("break.tcl", "break"), TCL_ERROR); // there is no loop here
    EXPECT_THAT(codes, ElementsAre(TCL_OK, TCL_ERROR, TCL_BREAK));
}

TEST_F(SourceEvent, IsRaisedForAMissingFileWhoseErrorStands) {
    EXPECT_EQ(source("nosuch.tcl", nullptr), TCL_ERROR);
    EXPECT_STREQ(Tcl_GetStringResult(interp), "couldn't read file \"nosuch.tcl\": no such file or directory");
    EXPECT_THAT(codes, ElementsAre(TCL_ERROR));
}

TEST_F(SourceEvent, IsRaisedForTheInnerFileFirst) {
    std::ofstream("inner.tcl") << "return inner";
    EXPECT_EQ(source("outer.tcl", "omu::source inner.tcl; error away"), TCL_ERROR);
    EXPECT_THAT(codes, ElementsAre(TCL_OK, TCL_ERROR));
}

TEST_F(SourceEvent, LetsAListenerForgiveAFailure) {
    forgive = true;
    EXPECT_EQ(source("fails.tcl", "error away"), TCL_OK);
    EXPECT_THAT(codes, ElementsAre(TCL_ERROR));
}

} // namespace
