#include "platform/tcl/HTCTclInit.h"

#include "platform/taskcore/task_manager.h"

void HTCTclInit::init() {
    vek::tcltasks::task_manager::acceptForeignEvaluations(true);
}

void HTCTclInit::uninit() {
    vek::tcltasks::task_manager::acceptForeignEvaluations(false);
}
