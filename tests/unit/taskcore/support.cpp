#include "support.h"

#include <map>

#include "platform/param/HPAParamMgr.h"
#include "platform/taskcore/HTCUndoRedo.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/HTCTclInterp.h"

namespace {

std::map<std::string, gate*>& living() {
    static auto& instance = *new std::map<std::string, gate*>;
    return instance;
}

} // namespace

TaskTest::TaskTest() {
    static const bool ready = [] {
        Tcl_FindExecutable(nullptr);
        return true;
    }();
    static_cast<void>(ready);
    ComMsgMgr::init(ComMsgMgr::MSGCACHE_LATEST, "");
    ComMsgMgr::setSink(ComMsgMgr::Destination::console, console);
    interp = Tcl_CreateInterp();
    HTCTclInterp::registerInterp(interp);
}

TaskTest::~TaskTest() {
    HTCUndoRedo::Mgr::instance().clearUndoRedo();
    Tcl_DeleteInterp(interp);
    ComMsgMgr::uninit();
    ComMsgMgr::setSink(ComMsgMgr::Destination::console, nullptr);
}

std::string TaskTest::result() const {
    return HTCTclEncoding::tclGetString(Tcl_GetObjResult(interp));
}

std::string TaskTest::eval(const std::string& script) {
    const int code = Tcl_EvalEx(interp, script.data(), static_cast<int>(script.size()), TCL_EVAL_GLOBAL);
    EXPECT_EQ(code, TCL_OK) << script << ": " << result();
    return result();
}

std::string TaskTest::error(const std::string& script) {
    const int code = Tcl_EvalEx(interp, script.data(), static_cast<int>(script.size()), TCL_EVAL_GLOBAL);
    EXPECT_EQ(code, TCL_ERROR) << script << ": " << result();
    return result();
}

int TaskTest::call(const std::vector<Tcl_Obj*>& words) {
    const std::vector<vek::tcltasks::tclobj_ref> held(words.begin(), words.end());
    return Tcl_EvalObjv(interp, static_cast<int>(words.size()), words.data(), TCL_EVAL_GLOBAL);
}

gate::gate(std::string called) : name(std::move(called)) {
    living()[name] = this;
}

gate::~gate() {
    vek::tcltasks::native_cache<gate*>::forget(this);
    living().erase(name);
}

gate* gate::find(const std::string& name) {
    const auto at = living().find(name);
    return at == living().end() ? nullptr : at->second;
}

ParamScope::ParamScope(const std::string& name, const std::string& value) : m_name(name) {
    HPAParamMgr::getParamMgr().setValue(name, value);
}

ParamScope::~ParamScope() {
    HPAParamMgr::getParamMgr().reset(m_name);
}

#ifdef __SANITIZE_THREAD__
// Tcl makes the mutex of a thread's event queue at its first use, in a way that the sanitizer cannot follow.
extern "C" const char* __tsan_default_suppressions() {
    return "race:Tcl_ServiceEvent\n";
}
#endif
