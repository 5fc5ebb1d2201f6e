#include "platform/gui/HDGUIStatus.h"

#include "platform/taskcore/task_manager.h"

int HDGUIStatus::getState() const {
    return vek::tcltasks::task_manager::isTaskCanceled() ? cancelled
                                                         : m_state.load(std::memory_order_relaxed);
}

HDGUIStatus* vek::tcltasks::HTCGuiStatusAccess::getGuiStatus() {
    // Never destroyed: a window thread may still look at it at exit.
    static HDGUIStatus& status = *new HDGUIStatus;
    return &status;
}
