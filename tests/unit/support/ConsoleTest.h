#pragma once

#include "InterpTest.h"
#include "tcltasks/core/Omu_commontasks.h"

/// An interpreter with the console's commands.
class ConsoleTest : public InterpTest {
protected:
    ConsoleTest() {
        EXPECT_EQ(Tcl_Init(interp), TCL_OK) << result();
        EXPECT_EQ(Omu_commontasks_Init(interp), TCL_OK) << result();
    }
};
