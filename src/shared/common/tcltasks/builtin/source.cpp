// omu::source ?-encoding NAME? ?-notrace? file
// Tcl's source, whose commands are shown and logged as the file runs; an error of the file is shown with its
// stack, and its result is empty then. A bad file name fails with Tcl's own words. Throws for the open
// journal.
#include "platform/env/HSTStringUtils.h"
#include "platform/env/HUTLogFileMgr.h"
#include "platform/env/HUTPathUtils.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/param/HPAParamMgr.h"
#include "platform/tcl/HTCTclInterp.h"
#include "platform/tcl/HTCTclUtils.h"
#include "tcltasks/builtin/detail/encrypted_source.h"
#include "tcltasks/builtin/detail/tracer.h"
#include "tcltasks/builtin/source_command_done.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;
using HTCBuiltin::detail::tracer;

namespace source {

namespace {

bool lies_under(const std::string& file, Tcl_Obj* directory) {
    const std::string_view path = Tcl_GetString(directory);
    return !path.empty() && file.starts_with(path) && file.size() > path.size() &&
           (path.back() == '/' || file[path.size()] == '/');
}

// Tcl fetches its own library and packages by sourcing them whenever a script first needs one: nobody's
// commands.
bool is_library_file(Tcl_Interp* interp, const std::string& file) {
    Tcl_Obj* library = Tcl_GetVar2Ex(interp, "tcl_library", nullptr, TCL_GLOBAL_ONLY);
    if (library && lies_under(file, library)) {
        return true;
    }
    int count = 0;
    Tcl_Obj** directories = nullptr;
    Tcl_Obj* packages = Tcl_GetVar2Ex(interp, "tcl_pkgPath", nullptr, TCL_GLOBAL_ONLY);
    if (!packages || Tcl_ListObjGetElements(nullptr, packages, &count, &directories) != TCL_OK) {
        return false;
    }
    for (int i = 0; i < count; ++i) {
        if (lies_under(file, directories[i])) {
            return true;
        }
    }
    return false;
}

// Marks, for its lifetime, that a file is being sourced, traced or not.
class sourcing {
public:
    sourcing(Tcl_Interp* interp, bool noTrace)
        : m_interp(interp), m_wasSourcing(tracer().isSourcing), m_wasNoTrace(tracer().noTrace) {
        tracer().isSourcing = true;
        if (tracer().noTrace || noTrace) {
            tracer().noTrace = true;
        } else {
            HTCBuiltin::detail::push_tracer(interp);
        }
    }
    ~sourcing() {
        if (!tracer().noTrace) {
            HTCBuiltin::detail::pop_tracer(m_interp);
        }
        tracer().noTrace = m_wasNoTrace;
        tracer().isSourcing = m_wasSourcing;
    }
    sourcing(const sourcing&) = delete;
    sourcing& operator=(const sourcing&) = delete;

private:
    Tcl_Interp* m_interp;
    bool m_wasSourcing;
    bool m_wasNoTrace;
};

// Shows what went wrong in a file: the message that ended it, if there was one, then Tcl's stack. A file that
// ended with another code than an error keeps its result.
void show_script_error(Tcl_Interp* interp, int code) {
    std::string shown;
    task_manager::retrieve_and_send_except_msg_instance(shown, 0);
    std::string info = HTCTclUtils::tclGetErrorInfo(interp, code);
    if (info.empty()) {
        return;
    }
    info += '\n';
    const size_t at = shown.empty() ? std::string::npos : info.find(shown);
    if (at != std::string::npos) {
        info.erase(0, at + shown.size());
    }
    ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_ERRORINFO, info);
    Tcl_ResetResult(interp);
}

struct source_tags {};

} // namespace

class task : public HTCITaskHelper<task, source_tags> {
public:
    static constexpr const char* command = "omu::source";

    static void load_description() {
        in_categories("Tools");
        description_instance("Add tracing of commands", "dummy")
            .add_options()
            .add_option("encoding", options::text(), "specify the encoding of the data stored in filename")
            .add_option("notrace", options::flag(), "disable tracing of sourced commands")
            .add_option("file", options::value<std::string>(), "script to source")
            .hint("file")
            .required();
        positional_instance().add("file", 1);
    }
    std::string owner() const override { return "common"; }
    std::string task_help_name(const std::string&) const override { return "source"; }
    bool halt_flow_if_error_msg_detected() const override { return false; }

    int execute(Tcl_Interp* interp) override {
        const HPAParamMgr& params = HPAParamMgr::getParamMgr();
        tracer().traceAll = params.getValueAsBool("tcl.traceAllWhenTracing");
        const std::string encoding = get_option<std::string>("encoding");
        const std::string file = get_option<std::string>("file");
        const bool noTrace = get_option<bool>("notrace") || HTCTclInterp::isSlave(interp) ||
                             get_option<bool>("quiet") || params.getValueAsBool("tcl.notrace") ||
                             is_library_file(interp, file);
        const std::string journal = HUTLogFileMgr::getJournalFileName();
        if (!journal.empty() && HSTStringUtils::iequals(file, journal)) {
            throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-76@%s\n", file});
        }
        const tclobj_ref path(HTCTclEncoding::tclNewStringObj(file));
        HTCBuiltin::detail::encrypted_source encrypted(interp, path.get());
        int code = encrypted.code();
        if (code != TCL_OK) {
            return code;
        }
        {
            const sourcing scope(interp, noTrace || encrypted);
            code = Tcl_FSEvalFileEx(interp, path.get(), encoding.empty() ? nullptr : encoding.c_str());
            encrypted.hide_commands(code);
        }
        if (code != TCL_OK && Tcl_FSAccess(path.get(), F_OK) == 0 && HUTPathUtils::isRegularFile(file) &&
            !task_manager::isTaskCanceled() && !HTCTclUtils::isInCatch(interp)) {
            show_script_error(interp, code);
        }
        if (encrypted.end() != TCL_OK) {
            return TCL_ERROR;
        }
        HUTGuiEvent::fire<source_command_done>(interp, &code, static_cast<itask*>(this));
        return code;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace source
