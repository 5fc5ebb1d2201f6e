#include "tcltasks/driver/detail/product_scripts.h"

#include <vector>

#include "platform/env/HUTEnv.h"
#include "platform/env/HUTPathUtils.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/taskcore/task_manager.h"
#include "platform/tcl/tclcmdobj.h"

using vek::tcltasks::task_manager;
using vek::tcltasks::tclcmdobj;

namespace driver::detail {

const std::string& getLowerProductName() {
    static const std::string& name = *[] {
        auto* lower = new std::string(HUTEnv::getProductName());
        if (!lower->empty() && lower->front() >= 'A' && lower->front() <= 'Z') {
            lower->front() = static_cast<char>(lower->front() - 'A' + 'a');
        }
        return lower;
    }();
    return name;
}

} // namespace driver::detail

namespace omumain {

int sourceProgramInitScript(Tcl_Interp* interp) {
    const std::string file = HUTEnv::getProgramName() + ".tcl";
    const std::string root = HUTEnv::getOMUAppRoot("lib/scripts/omu/products/" + file);
    return tclcmdobj(interp, "source")
        .append("-notrace")
        .append(HUTPathUtils::join({root, "lib", "scripts", "omu", "products", file}))
        .eval();
}

int sourceProdInitTclScripts(Tcl_Interp* interp, bool noTrace, bool quiet) {
    const std::string file = driver::detail::getLowerProductName() + "_init.tcl";
    std::vector<std::string> scripts;
    for (const std::string& root : HUTEnv::getOMUAppRootList()) {
        scripts.insert(scripts.begin(), HUTPathUtils::join({root, "scripts", file}));
    }
    if (const std::string user = HUTEnv::getVEKAppDataDir(); !user.empty()) {
        scripts.push_back(HUTPathUtils::join({user, file}));
    }
    for (const std::string& script : scripts) {
        if (!HUTPathUtils::isRegularFile(script)) {
            continue;
        }
        tclcmdobj command(interp, "source");
        command.append(script);
        if (noTrace) {
            command.append("-notrace");
        }
        const task_manager::top_level scope(command.text());
        if (!quiet) {
            ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_SESSION_COMMAND, command.text() + "\n");
        }
        if (const int code = command.eval(TCL_EVAL_GLOBAL); code != TCL_OK) {
            return code;
        }
    }
    return TCL_OK;
}

} // namespace omumain
