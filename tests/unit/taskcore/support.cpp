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
    ComMsgMgr::init(ComMsgMgr::MSGCACHE_LATEST, "");
    ComMsgMgr::setSink(ComMsgMgr::Destination::console, console);
    HTCTclInterp::registerInterp(interp);
}

TaskTest::~TaskTest() {
    HTCUndoRedo::Mgr::instance().clearUndoRedo();
    ComMsgMgr::uninit();
    ComMsgMgr::setSink(ComMsgMgr::Destination::console, nullptr);
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
