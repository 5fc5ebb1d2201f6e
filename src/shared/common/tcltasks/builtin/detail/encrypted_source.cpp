#include "tcltasks/builtin/detail/encrypted_source.h"

#include <string>
#include <string_view>

#include "platform/msg/ComMsgMgr.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/xp/xp.h"
#include "tcltasks/builtin/detail/script_file_system.h"
#include "tcltasks/builtin/detail/sealed_procs.h"

namespace HTCBuiltin::detail {

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

// Whether an error says that this very file could not be opened.
bool is_tcls_refusal(Tcl_Obj* result, Tcl_Obj* path) {
    const std::string start = std::string("couldn't read file \"") + Tcl_GetString(path) + "\": ";
    return std::string_view(Tcl_GetString(result)).starts_with(start);
}

} // namespace

encrypted_source::encrypted_source(Tcl_Interp* interp, Tcl_Obj* path)
    : m_interp(interp), m_path(path), m_encrypted(is_encrypted(path)), m_wasInside(in_encrypted_script()) {
    in_encrypted_script() = m_encrypted;
    if (!m_encrypted) {
        return;
    }
    seal_procs(interp);
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
    m_errorInfo = last_error(interp);
}

encrypted_source::~encrypted_source() {
    in_encrypted_script() = m_wasInside;
    end();
}

void encrypted_source::hide_commands(int code) {
    if (!m_encrypted) {
        return;
    }
    const std::string reason = take_open_failure();
    if (code != TCL_ERROR) {
        forget_last_error(m_interp, code, m_errorInfo.get());
        return;
    }
    if (!reason.empty() && is_tcls_refusal(Tcl_GetObjResult(m_interp), m_path.get())) {
        Tcl_SetObjResult(m_interp, HTCTclEncoding::tclNewStringObj(reason));
        return;
    }
    hide_trace(m_interp, Tcl_ObjPrintf("(file \"%s\" line %d)", Tcl_GetString(m_path.get()),
                                       Tcl_GetErrorLine(m_interp)));
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
