#pragma once

#include <string>
#include <tcl.h>

#include <gtest/gtest.h>

#include "platform/tcl/HTCTclEncoding.h"

/// An interpreter, and what scripts in it give.
class InterpTest : public ::testing::Test {
protected:
    InterpTest() {
        static const bool ready = [] {
            Tcl_FindExecutable(nullptr);
            return true;
        }();
        static_cast<void>(ready);
        interp = Tcl_CreateInterp();
    }
    ~InterpTest() override { Tcl_DeleteInterp(interp); }

    /// The Tcl code that a script ends with.
    int run(const std::string& script) {
        return Tcl_EvalEx(interp, script.data(), static_cast<int>(script.size()), TCL_EVAL_GLOBAL);
    }
    /// The result of a script that has to succeed.
    std::string eval(const std::string& script) {
        EXPECT_EQ(run(script), TCL_OK) << script << ": " << result();
        return result();
    }
    /// The result of a script that has to fail.
    std::string error(const std::string& script) {
        EXPECT_EQ(run(script), TCL_ERROR) << script << ": " << result();
        return result();
    }
    std::string result() const { return HTCTclEncoding::tclGetString(Tcl_GetObjResult(interp)); }

    Tcl_Interp* interp;
};
