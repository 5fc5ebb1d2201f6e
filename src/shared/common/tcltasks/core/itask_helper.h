#pragma once

#include <string>

#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/core/itask.h"
#include "tcltasks/core/itask_undo_helper.h"
#include "tcltasks/core/native_wrapper.h"
#include "tcltasks/core/task_options.h"

namespace vek::tcltasks {

/// Everything of a task that needs no knowledge of the command. `T` is the task class; it names itself by
/// `static constexpr const char* command`, declares its options in `static void load_description()` and does
/// its work in `execute(Tcl_Interp*)`. `Tags` is a marker type, by which the task also chooses its undo
/// shape.
template <class T, class Tags>
class itask_helper : public virtual itask,
                     public detail::undo_helper_of<T, Tags>,
                     public detail::redo_helper_of<T, Tags>,
                     public task_options<T> {
public:
    using detail::undo_helper_of<T, Tags>::affects_undo;
    using detail::undo_helper_of<T, Tags>::undo;
    using detail::redo_helper_of<T, Tags>::redo;

    int execute(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) override {
        if (const int code = this->parse_options(interp, objc, objv)) {
            return code;
        }
        return this->answered() ? TCL_OK : execute(interp);
    }

    /// The command's work, for one that needs no interpreter.
    virtual int execute() { return 1; }
    /// The command's work; options are read with get_option. Returns a Tcl code; may throw.
    virtual int execute(Tcl_Interp*) { return execute(); }

    const char* task_name() const override { return T::command; }
    std::string task_help_name(const std::string& name) const override { return name; }
    std::string task_description() const override { return this->get_options_description().description(); }
    std::string task_help(Tcl_Interp* interp, const std::string& form) const override {
        return this->help(interp, task_name(), form);
    }
    std::string task_categories() const override { return this->categories(); }
    std::string owner() const override { return task_options_base::owner(); }

protected:
    /// Makes `value` the result of the command. Returns 0, or 1 with the result untouched if the value has no
    /// form in Tcl.
    template <class V>
    int set_result(Tcl_Interp* interp, const V& value) {
        Tcl_Obj* obj = native_wrapper<V>::convert_to_tcl(value);
        if (!obj) {
            return 1;
        }
        Tcl_SetObjResult(interp, obj);
        return 0;
    }
    int set_result(Tcl_Interp* interp, const char* text) { return set_result(interp, std::string(text)); }
};

} // namespace vek::tcltasks
