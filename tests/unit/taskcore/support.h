#pragma once

#include <functional>
#include <memory>
#include <string>
#include <tcl.h>
#include <vector>

#include <gtest/gtest.h>

#include "../support/InterpTest.h"
#include "../support/RecordingSink.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/core/task.h"

/// An interpreter that the task core knows, and what is shown while it lives.
class TaskTest : public InterpTest {
protected:
    TaskTest();
    ~TaskTest() override;

    /// Calls a command with values as they are. Returns the Tcl code.
    int call(const std::vector<Tcl_Obj*>& words);

    std::shared_ptr<RecordingSink> console = std::make_shared<RecordingSink>();
};

/// A native object of the tests: a named thing that is found by its name while it lives.
struct gate {
    explicit gate(std::string called);
    ~gate();
    gate(const gate&) = delete;
    gate& operator=(const gate&) = delete;

    std::string name;
    static gate* find(const std::string& name);
};

/// Another one, which has no conversion from text.
struct wire {
    std::string name;
};

template <>
struct vek::tcltasks::native_object<gate*> {
    static std::string name(gate* g) { return g->name; }
    static gate* find(const std::string& name) { return gate::find(name); }
};

template <>
struct vek::tcltasks::native_object<wire*> {
    static std::string name(wire* w) { return w->name; }
};

using gates = vek::tcltasks::tcl_collection<HSTVector<gate*>>;
using strings = vek::tcltasks::tcl_collection<HSTVector<std::string>>;
using anys = vek::tcltasks::tcl_collection<HSTVector<vek::tcltasks::tclany>>;
using untyped = vek::tcltasks::tcl_collection<vek::tcltasks::detail::untyped_collection>;

/// A text value, kept alive by the caller.
inline vek::tcltasks::tclobj_ref text_value(const std::string& text) {
    return Tcl_NewStringObj(text.data(), static_cast<int>(text.size()));
}

/// A parameter set to a value while the object lives.
class ParamScope {
public:
    ParamScope(const std::string& name, const std::string& value);
    ~ParamScope();
    ParamScope(const ParamScope&) = delete;
    ParamScope& operator=(const ParamScope&) = delete;

private:
    std::string m_name;
};
