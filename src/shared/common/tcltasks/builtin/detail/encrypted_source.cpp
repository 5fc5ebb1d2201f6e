#include "tcltasks/builtin/detail/encrypted_source.h"

#include <string>

#include "platform/msg/ComMsgMgr.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/xp/xp.h"
#include "tcltasks/builtin/detail/script_file_system.h"

namespace HTCBuiltin::detail {

using vek::tcltasks::tclobj_ref;

namespace {

unsigned s_encrypted_src_level = 0; // encrypted files that are being sourced
bool s_echo_was_on = false;         // when the outermost of them began

bool is_encrypted(Tcl_Obj* path) {
    Tcl_Obj* const translated = Tcl_FSGetTranslatedPath(nullptr, path);
    if (!translated) {
        return false;
    }
    const std::string native = HTCTclEncoding::tclGetString(translated);
    Tcl_DecrRefCount(translated);
    return isl::iostreams::xp::is_encrypted(native.c_str());
}

void put(Tcl_Obj* dict, const char* key, Tcl_Obj* value) {
    Tcl_DictObjPut(nullptr, dict, Tcl_NewStringObj(key, -1), value);
}

// Makes `trace` all that the interpreter knows of its last error.
void replace_trace(Tcl_Interp* interp, Tcl_Obj* options, Tcl_Obj* trace) {
    put(options, "-errorinfo", trace);
    put(options, "-errorstack", Tcl_NewObj());
    Tcl_SetReturnOptions(interp, options);
}

// Tcl also keeps the last error after it was caught.
void forget_last_error(Tcl_Interp* interp, Tcl_Obj* errorInfo) {
    Tcl_Obj* const current = Tcl_GetVar2Ex(interp, "errorInfo", nullptr, TCL_GLOBAL_ONLY);
    if (current == errorInfo) {
        return;
    }
    const tclobj_ref result(Tcl_GetObjResult(interp));
    const tclobj_ref options(Tcl_NewDictObj());
    put(options.get(), "-code", Tcl_NewIntObj(TCL_ERROR));
    put(options.get(), "-level", Tcl_NewIntObj(0));
    replace_trace(interp, options.get(), Tcl_NewStringObj("none", -1));
    Tcl_ResetResult(interp);
    Tcl_SetObjResult(interp, result.get());
    if (errorInfo) {
        Tcl_SetVar2Ex(interp, "errorInfo", nullptr, errorInfo, TCL_GLOBAL_ONLY);
    } else {
        Tcl_UnsetVar2(interp, "errorInfo", nullptr, TCL_GLOBAL_ONLY);
    }
}

} // namespace

encrypted_source::encrypted_source(Tcl_Interp* interp, Tcl_Obj* path)
    : m_interp(interp), m_path(path), m_encrypted(is_encrypted(path)) {
    if (!m_encrypted) {
        return;
    }
    if (s_encrypted_src_level == 0) {
        m_code = register_file_system(interp);
        if (m_code != TCL_OK) {
            m_encrypted = false;
            return;
        }
        s_echo_was_on = ComMsgMgr::isTclEchoOn();
        if (s_echo_was_on) {
            ComMsgMgr::turnOffTclEcho();
        }
    }
    ++s_encrypted_src_level;
    m_errorInfo = Tcl_GetVar2Ex(interp, "errorInfo", nullptr, TCL_GLOBAL_ONLY);
}

encrypted_source::~encrypted_source() {
    end();
}

void encrypted_source::hide_commands(int code) {
    if (!m_encrypted || Tcl_InterpDeleted(m_interp)) {
        return;
    }
    const std::string reason = take_open_failure();
    if (code != TCL_ERROR) {
        forget_last_error(m_interp, m_errorInfo.get());
        return;
    }
    if (!reason.empty()) {
        Tcl_SetObjResult(m_interp, HTCTclEncoding::tclNewStringObj(reason));
    }
    const tclobj_ref result(Tcl_GetObjResult(m_interp));
    const tclobj_ref options(Tcl_GetReturnOptions(m_interp, code));
    const tclobj_ref trace(Tcl_ObjPrintf("%s\n    (file \"%s\" line %d)", Tcl_GetString(result.get()),
                                         Tcl_GetString(m_path.get()), Tcl_GetErrorLine(m_interp)));
    replace_trace(m_interp, options.get(), trace.get());
    Tcl_SetObjResult(m_interp, result.get());
    Tcl_SetVar2Ex(m_interp, "errorInfo", nullptr, trace.get(), TCL_GLOBAL_ONLY);
}

int encrypted_source::end() {
    if (!m_encrypted) {
        return TCL_OK;
    }
    m_encrypted = false;
    if (--s_encrypted_src_level > 0) {
        return TCL_OK;
    }
    if (s_echo_was_on && !ComMsgMgr::isTclEchoOn()) {
        ComMsgMgr::turnOnTclEcho();
    }
    return unregister_file_system();
}

} // namespace HTCBuiltin::detail
