// For the tests of interpreters: samples::queried QUERY NAME ... gives the names as a collection that came
// from a query, samples::unqueried NAME ... as one of unknown origin; samples::scope NAME LEVEL makes trace
// texts of a scope visible, and hides them at level 0; samples::echo ?BOOLEAN? tells whether commands are
// echoed, after turning that on or off.
#include <memory>
#include <string>

#include "platform/msg/ComMsgMgr.h"
#include "platform/tcl/tcl_guard.h"
#include "tcltasks/core/tcl_collection.h"

using namespace vek::tcltasks;

namespace {

using Names = tcl_collection<HSTVector<std::string>>;

class query_context : public HTCICollectionContext {
public:
    explicit query_context(std::string query) : m_query(std::move(query)) {}
    std::string string_rep() const override { return m_query; }
    void add(Tcl_Obj*) override {}
    void add(const HTCICollectionContext&) override {}

private:
    std::string m_query;
};

int give(Tcl_Interp* interp, int count, Tcl_Obj* const* names,
         std::shared_ptr<HTCICollectionContext> context) {
    Names collection;
    for (int i = 0; i < count; ++i) {
        collection->push_back(HTCTclEncoding::tclGetString(names[i]));
    }
    collection.body().set_collection_context(std::move(context));
    Tcl_SetObjResult(interp, native_wrapper<Names>::convert_to_tcl(collection));
    return TCL_OK;
}

int queried(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        return give(interp, objc - 2, objv + 2,
                    std::make_shared<query_context>(HTCTclEncoding::tclGetString(objv[1])));
    });
}

int unqueried(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] { return give(interp, objc - 1, objv + 1, nullptr); });
}

int scope(ClientData, Tcl_Interp* interp, int, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        int level = 0;
        Tcl_GetIntFromObj(interp, objv[2], &level);
        ComMsgMgr::removeScope(Tcl_GetString(objv[1]));
        if (level > 0) {
            ComMsgMgr::addScope(Tcl_GetString(objv[1]), level);
        }
        return TCL_OK;
    });
}

int echo(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        int on = 0;
        if (objc > 1 && Tcl_GetBooleanFromObj(interp, objv[1], &on) != TCL_OK) {
            return TCL_ERROR;
        }
        if (objc > 1) {
            on ? ComMsgMgr::turnOnTclEcho() : ComMsgMgr::turnOffTclEcho();
        }
        Tcl_SetObjResult(interp, Tcl_NewBooleanObj(ComMsgMgr::isTclEchoOn()));
        return TCL_OK;
    });
}

} // namespace

extern "C" DLLEXPORT int Interp_samples_Init(Tcl_Interp* interp) {
    Tcl_CreateObjCommand(interp, "samples::queried", queried, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, "samples::unqueried", unqueried, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, "samples::scope", scope, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, "samples::echo", echo, nullptr, nullptr);
    return TCL_OK;
}
