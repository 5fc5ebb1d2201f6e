// omu::load ?-global? ?-lazy? ?--? fileName ?packageName? ?interp?
// Tcl's load. A library under its old name is found under the new one, and one that has only an init
// function with the old prefix is loaded by that.
#include <string>
#include <vector>

#include "platform/msg/ComMsgMgr.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/tcl_guard.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/builtin/HTCBuiltinCmds.h"
#include "tcltasks/builtin/HTCBuiltinUtils.h"

using namespace vek::tcltasks;

namespace {

constexpr std::string_view oldLibrary = "libomu_";
constexpr std::string_view newLibrary = "libzq_";
constexpr const char* oldInit = "Omu_";

// The texts in the system encoding.
struct HTCLoadArgs {
    tclobj_ref name; // the command's word
    std::vector<tclobj_ref> options;
    std::string file;
    std::string package;
    std::string interp;
};

// False if the words are not those of a load.
bool read_arguments(int objc, Tcl_Obj* const* objv, HTCLoadArgs& args) {
    args.name = objv[0];
    int at = 1;
    while (objc - at > 1 && Tcl_GetString(objv[at])[0] == '-') {
        args.options.emplace_back(objv[at]);
        if (std::string_view(Tcl_GetString(objv[at++])) == "--") {
            break;
        }
    }
    std::string* const words[] = {&args.file, &args.package, &args.interp};
    if (objc - at < 1 || objc - at > 3) {
        return false;
    }
    for (int i = at; i < objc; ++i) {
        *words[i - at] = HTCTclEncoding::tclGetString(objv[i]);
    }
    return true;
}

int createLoadCommandAndEvaluate(Tcl_Interp* interp, const HTCLoadArgs& args) {
    std::vector<tclobj_ref> words = {args.name};
    words.insert(words.end(), args.options.begin(), args.options.end());
    words.emplace_back(HTCTclEncoding::tclNewStringObj(args.file));
    if (!args.package.empty() || !args.interp.empty()) {
        words.emplace_back(HTCTclEncoding::tclNewStringObj(args.package));
    }
    if (!args.interp.empty()) {
        words.emplace_back(HTCTclEncoding::tclNewStringObj(args.interp));
    }
    std::vector<Tcl_Obj*> objv;
    objv.reserve(words.size());
    for (const tclobj_ref& word : words) {
        objv.push_back(word.get());
    }
    return HTCBuiltinUtils::call_plain(HTCBuiltinUtils::plain_command::load, interp,
                                       static_cast<int>(objv.size()), objv.data());
}

void replace_all(std::string& text, std::string_view what, std::string_view by) {
    for (size_t at = text.find(what); at != text.npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
}

std::string file_tail(const std::string& file) {
    return file.substr(file.rfind('/') + 1);
}

// "timing" of "/lib/libzq_timing.so.1".
std::string library_stem(const std::string& file) {
    std::string stem = file_tail(file);
    stem.erase(std::min(stem.find('.'), stem.size()));
    if (stem.starts_with(newLibrary)) {
        stem.erase(0, newLibrary.size());
    }
    return stem;
}

bool misses_init_function(Tcl_Interp* interp) {
    const tclobj_ref key(Tcl_NewStringObj("-errorcode", -1));
    const tclobj_ref options(Tcl_GetReturnOptions(interp, TCL_ERROR));
    Tcl_Obj* errorCode = nullptr;
    Tcl_DictObjGet(nullptr, options.get(), key.get(), &errorCode);
    return errorCode && std::string_view(Tcl_GetString(errorCode)).starts_with("TCL LOOKUP LOAD_SYMBOL");
}

// The second attempt, with the old prefix of the init function.
int load_by_old_init(Tcl_Interp* interp, HTCLoadArgs& args, int firstCode) {
    args.package = oldInit + library_stem(args.file);
    // What is wrong with a library that has the new init function, or with a foreign one, was said before.
    const bool isOld = file_tail(args.file).starts_with(newLibrary) && misses_init_function(interp);
    const Tcl_InterpState first = Tcl_SaveInterpState(interp, firstCode);
    const int code = createLoadCommandAndEvaluate(interp, args);
    if (code != TCL_OK && !isOld) {
        Tcl_RestoreInterpState(interp, first);
        return code;
    }
    Tcl_DiscardInterpState(first);
    if (code == TCL_OK) {
        ComMsgMgr::sendScopedMsg("omu-load", 0x1000001,
                                 "INFO: Loaded library '" + args.file + "' using omu init " + args.package +
                                     "_Init. Consider adding zq equivalent.\n");
    }
    return code;
}

} // namespace

int Omu_LoadObjCmd(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        HTCLoadArgs args;
        if (!read_arguments(objc, objv, args)) {
            return HTCBuiltinUtils::call_plain(HTCBuiltinUtils::plain_command::load, interp, objc, objv);
        }
        replace_all(args.file, oldLibrary, newLibrary);
        const int code = createLoadCommandAndEvaluate(interp, args);
        return code == TCL_OK || args.file.empty() ? code : load_by_old_init(interp, args, code);
    });
}
