#include "tcltasks/utils/detail/Features.h"

#include <filesystem>
#include <map>
#include <mutex>

#include "platform/env/HUTEnv.h"
#include "platform/env/HUTPathUtils.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "platform/taskcore/task_manager.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/HTCTclInterp.h"
#include "platform/tcl/tclcmdobj.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/utils/detail/HTCLoadFeatureEvent.h"

namespace fs = std::filesystem;
using vek::tcltasks::tclobj_ref;

namespace Features {

namespace {

struct state {
    std::map<std::string, std::string> s_features; // name to script
    std::map<Tcl_Interp*, std::set<std::string>> s_loadedFeatures;
    std::set<std::string> s_hiddenFeatures;
    std::set<Tcl_Interp*> s_initialized;
};

state& shared() {
    // Never destroyed: interpreters may be deleted while the process ends.
    static state& instance = *new state;
    return instance;
}

void deleteInterp(Tcl_Interp* interp) {
    shared().s_initialized.erase(interp);
    shared().s_loadedFeatures.erase(interp);
}

int source(Tcl_Interp* interp, const std::string& script) {
    return vek::tcltasks::tclcmdobj(interp, "source").append("-notrace").append(script).eval(TCL_EVAL_GLOBAL);
}

// An index made by auto_mkindex speaks of its directory as $dir.
int source_index(Tcl_Interp* interp, const fs::path& index) {
    const tclobj_ref before(Tcl_GetVar2Ex(interp, "dir", nullptr, TCL_GLOBAL_ONLY));
    Tcl_SetVar2Ex(interp, "dir", nullptr, HTCTclEncoding::tclNewStringObj(index.parent_path().string()),
                  TCL_GLOBAL_ONLY);
    const int code = source(interp, index.string());
    if (before) {
        Tcl_SetVar2Ex(interp, "dir", nullptr, before.get(), TCL_GLOBAL_ONLY);
    } else {
        Tcl_UnsetVar(interp, "dir", TCL_GLOBAL_ONLY);
    }
    return code;
}

// The reason would be lost behind the error of the command, so it goes out on its own.
void send_reason(Tcl_Interp* interp) {
    vek::tcltasks::task_manager::write_error_result(HTCTclEncoding::tclGetString(Tcl_GetObjResult(interp)),
                                                    0);
}

void prepare(Tcl_Interp* interp) {
    const std::string relative = "lib/scripts/omu/misc/features.tcl";
    const std::string root = HUTEnv::getOMUAppRoot(relative);
    const std::string path = HUTPathUtils::join({root, "lib", "scripts", "omu", "misc", "features.tcl"});
    if (!HUTPathUtils::exists(path)) {
        throw HEXAll({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-213@%s\n", path});
    }
    if (source(interp, path) == TCL_ERROR) {
        send_reason(interp);
        throw HEXAll({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-218@%s\n", path});
    }
}

bool is_offered(const std::string& name) {
    static const std::set<std::string>& notStandalone =
        *new std::set<std::string>{"benchtools", "corvane", "simulator"};
    return !HUTEnv::isStandalone() || !notStandalone.contains(name);
}

void add_directory(Tcl_Interp* interp, const fs::path& directory) {
    const std::string name = directory.filename().string();
    if (!is_offered(name)) {
        return;
    }
    const fs::path script = directory / (name + ".tcl");
    if (HUTPathUtils::exists(script.string())) {
        shared().s_features.emplace(name, script.string());
    }
    const fs::path index = directory / "tclIndex";
    if (HUTPathUtils::exists(index.string()) && source_index(interp, index) == TCL_ERROR) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-283@%s\n", index.string());
    }
}

void scan(Tcl_Interp* interp, const std::string& root) {
    // A directory that cannot be read has no features.
    std::error_code unreadable;
    const std::string place = HUTPathUtils::join({root, "lib/scripts/omu/features"});
    fs::directory_iterator at(place, unreadable);
    for (; !unreadable && at != fs::directory_iterator(); at.increment(unreadable)) {
        if (HUTPathUtils::isDirectory(at->path().string())) {
            add_directory(interp, at->path());
        }
    }
}

} // namespace

void init(Tcl_Interp* interp) {
    static std::once_flag listening;
    std::call_once(listening, [] { HTCTclInterp::onDelete(deleteInterp); });
    if (shared().s_initialized.contains(interp)) {
        return;
    }
    prepare(interp);
    for (const std::string& root : HUTEnv::getOMUAppRootList()) {
        scan(interp, root);
    }
    shared().s_initialized.insert(interp);
}

std::string getAll(Tcl_Interp* interp, bool visibleOnly) {
    std::string names;
    for (const auto& [name, script] : shared().s_features) {
        if (visibleOnly && (loaded(interp).contains(name) || shared().s_hiddenFeatures.contains(name))) {
            continue;
        }
        names += (names.empty() ? "" : " ") + name;
    }
    return names;
}

void load(Tcl_Interp* interp, const std::string& name) {
    if (loaded(interp).contains(name)) {
        return;
    }
    const auto feature = shared().s_features.find(name);
    if (feature == shared().s_features.end() || shared().s_hiddenFeatures.contains(name)) {
        throw HEXAll({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-220@%s%s\n", name, getAll(interp, true)});
    }
    if (source(interp, feature->second) == TCL_ERROR) {
        send_reason(interp);
        throw HEXAll({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-217@%s\n", name});
    }
    shared().s_loadedFeatures[interp].insert(name);
    HUTGuiEvent::fire<HTCLoadFeatureEvent>(interp, name);
}

const std::set<std::string>& loaded(Tcl_Interp* interp) {
    return shared().s_loadedFeatures[interp];
}

void hide(const std::string& name) {
    shared().s_hiddenFeatures.insert(name);
}

} // namespace Features
