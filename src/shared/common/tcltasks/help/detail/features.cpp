#include "tcltasks/help/detail/features.h"

#include <algorithm>
#include <map>
#include <optional>

#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/HTCTclUtils.h"
#include "platform/tcl/tclobj_ref.h"

namespace HTCHelp::detail::features {

namespace {

// Command name to the command that loads it.
std::map<std::string, std::string>& s_cmds() {
    static auto& instance = *new std::map<std::string, std::string>;
    return instance;
}

std::vector<std::string> elements(Tcl_Obj* list) {
    int count = 0;
    Tcl_Obj** words = nullptr;
    std::vector<std::string> texts;
    if (Tcl_ListObjGetElements(nullptr, list, &count, &words) == TCL_OK) {
        for (int i = 0; i < count; ++i) {
            texts.push_back(HTCTclEncoding::tclGetString(words[i]));
        }
    }
    return texts;
}

// The elements of the list that a script gives; nothing if it fails.
std::optional<std::vector<std::string>> evaluate(Tcl_Interp* interp, const char* script) {
    const Tcl_InterpState state = Tcl_SaveInterpState(interp, TCL_OK);
    std::optional<std::vector<std::string>> result;
    if (Tcl_EvalEx(interp, script, -1, TCL_EVAL_GLOBAL) == TCL_OK) {
        const vek::tcltasks::tclobj_ref list(Tcl_GetObjResult(interp));
        result = elements(list.get());
    }
    Tcl_RestoreInterpState(interp, state);
    return result;
}

std::string without_colons(const std::string& text) {
    return text.starts_with("::") ? text.substr(2) : text;
}

// The way in which users call the load command.
std::string as_typed(Tcl_Interp* interp, const std::string& script) {
    constexpr std::string_view common = "common::";
    const bool isPublic =
        script.starts_with(common) && HTCTclUtils::tclIsCmdInGlobalNamespace(interp, "common::load_features");
    return isPublic ? script.substr(common.size()) : script;
}

// Whether the script loads one of the features.
bool loads(const std::string& script, const std::vector<std::string>& features) {
    return std::any_of(features.begin(), features.end(), [&](const std::string& feature) {
        return script.find("load_features " + feature) != std::string::npos;
    });
}

} // namespace

void init(Tcl_Interp* interp) {
    if (!s_cmds().empty()) {
        return;
    }
    const auto names = evaluate(interp, "common::list_features");
    const auto index = names ? evaluate(interp, "array get auto_index") : std::nullopt;
    for (size_t i = 0; index && i + 1 < index->size(); i += 2) {
        const std::string script = without_colons((*index)[i + 1]);
        if (loads(script, *names)) {
            s_cmds()[without_colons((*index)[i])] = as_typed(interp, script);
        }
    }
}

bool isCommand(const std::string& name) {
    return s_cmds().contains(name);
}

void appendCommands(std::vector<std::string>& names) {
    for (const auto& [name, script] : s_cmds()) {
        names.push_back(name);
    }
}

std::string getLoadCommandForCommand(Tcl_Interp* interp, const std::string& name) {
    const auto found = s_cmds().find(name);
    return found == s_cmds().end() ? std::string() : as_typed(interp, found->second);
}

} // namespace HTCHelp::detail::features
