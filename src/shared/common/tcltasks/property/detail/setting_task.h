#pragma once

#include <memory>
#include <string>

#include "platform/property/HCPProperty.h"
#include "tcltasks/core/task.h"
#include "tcltasks/property/detail/setting.h"

namespace HTCProperty::detail {

/// The base of tasks that change one property by a setter, which then also takes the change back and brings
/// it back again.
template <class T, class Tags>
class setting_task : public vek::tcltasks::HTCITaskHelper<T, Tags> {
public:
    int undo() override { return 0; }
    int undo(Tcl_Interp* interp, int, Tcl_Obj* const*) override {
        return setting::undo(m_setter.get(), interp, m_name);
    }
    int redo() override { return 0; }
    int redo(Tcl_Interp* interp, int, Tcl_Obj* const*) override {
        return setting::redo(m_setter.get(), interp, m_name);
    }

protected:
    std::string m_name; // as finally accepted
    std::shared_ptr<HCPProperty::Setter> m_setter;
};

} // namespace HTCProperty::detail
