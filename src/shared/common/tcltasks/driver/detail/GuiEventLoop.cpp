#include "tcltasks/driver/detail/GuiEventLoop.h"

#include <tcl.h>

#include "tcltasks/driver/detail/driver.h"

bool GuiEventLoop::sExitEventLoop = false;

void GuiEventLoop::start(const std::function<bool()>& stop) {
    if (driver::isTclEventLoopRunning()) {
        return;
    }
    sExitEventLoop = false;
    driver::isTclEventLoopRunning(true, true);
    while (!sExitEventLoop && !stop()) {
        Tcl_DoOneEvent(0);
    }
    driver::isTclEventLoopRunning(true, false);
}
