#include "platform/tcl/HTCTclInterp.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "platform/taskcore/task_manager.h"
#include "platform/tcl/HTCTclEncoding.h"

namespace {

struct registered_interp {
    Tcl_Interp* interp;
    Tcl_ThreadId thread;
};

struct registry {
    std::mutex mutex;
    std::vector<registered_interp> interps;        // guarded by mutex
    std::vector<void (*)(Tcl_Interp*)> onDeletion; // guarded by mutex
};

// Lives until the process ends: interpreters may be deleted from exit handlers of any library.
registry& interps() {
    static registry& instance = *new registry;
    return instance;
}

auto find(registry& r, Tcl_Interp* interp) {
    return std::find_if(r.interps.begin(), r.interps.end(),
                        [&](const registered_interp& entry) { return entry.interp == interp; });
}

void forget(ClientData, Tcl_Interp* interp) {
    registry& r = interps();
    std::vector<void (*)(Tcl_Interp*)> listeners;
    {
        std::lock_guard lock(r.mutex);
        const auto at = find(r, interp);
        if (at != r.interps.end()) {
            r.interps.erase(at);
        }
        listeners = r.onDeletion;
    }
    for (auto* listener : listeners) {
        listener(interp);
    }
}

} // namespace

void HTCTclInterp::registerInterp(Tcl_Interp* interp) {
    registry& r = interps();
    std::lock_guard lock(r.mutex);
    if (find(r, interp) == r.interps.end()) {
        r.interps.push_back({interp, Tcl_GetCurrentThread()});
        Tcl_CallWhenDeleted(interp, forget, nullptr);
    }
}

Tcl_Interp* HTCTclInterp::getDefaultInterp() {
    registry& r = interps();
    std::lock_guard lock(r.mutex);
    return r.interps.empty() ? nullptr : r.interps.front().interp;
}

Tcl_ThreadId HTCTclInterp::threadOf(Tcl_Interp* interp) {
    registry& r = interps();
    std::lock_guard lock(r.mutex);
    const auto at = find(r, interp);
    return at == r.interps.end() ? nullptr : at->thread;
}

bool HTCTclInterp::isSlave(Tcl_Interp* interp) {
    return Tcl_GetMaster(interp) != nullptr;
}

void HTCTclInterp::deleteSlaveHelper(Tcl_Interp* slave) {
    Tcl_DeleteInterp(slave);
}

int HTCTclInterp::registerSlaveTask(Tcl_Interp* master, Tcl_Interp* slave, const std::string& name) {
    using vek::tcltasks::task_manager;
    const std::string command = HTCTclEncoding::toTcl(name);
    if (task_manager::createTask(master, name)) {
        task_manager::registerFactory(slave, name);
        if (Tcl_FindCommand(slave, command.c_str(), nullptr, TCL_GLOBAL_ONLY)) {
            return TCL_OK;
        }
        // The plain name of a public command.
        return Tcl_Import(slave, Tcl_GetGlobalNamespace(slave), ("::common::" + command).c_str(), 0);
    }
    if (!Tcl_FindCommand(master, command.c_str(), nullptr, TCL_GLOBAL_ONLY)) {
        const HEXError missing({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5411@%s\n", name});
        Tcl_SetObjResult(slave, HTCTclEncoding::tclNewStringObj(missing.what()));
        return TCL_ERROR;
    }
    return Tcl_CreateAlias(slave, command.c_str(), master, command.c_str(), 0, nullptr);
}

void HTCTclInterp::onDelete(void (*listener)(Tcl_Interp*)) {
    registry& r = interps();
    std::lock_guard lock(r.mutex);
    r.onDeletion.push_back(listener);
}
