// omu::info_commands ?PATTERN?
// The commands and the namespaces that completion offers for a glob pattern, all of them without one: what is
// hidden or deprecated is left out, and a namespace ends in "::". Sorted.
#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/HTCTclUtils.h"
#include "platform/tcl/tclcmdobj.h"
#include "tcltasks/builtin/completion/hidden_names.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;
using HTCLibEdit::detail::s_hiddenNs;
using HTCLibEdit::detail::s_hiddenProcs;

namespace info_commands {

namespace {

struct text_hash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};
using decisions = std::unordered_map<std::string, bool, text_hash, std::equal_to<>>;

// The decision on a name, made once. Making a task only to ask whether it is hidden is expensive.
template <class Decide>
bool decided(decisions& cache, std::string_view name, Decide decide) {
    const auto at = cache.find(name);
    return at != cache.end() ? at->second : cache.emplace(name, decide()).first->second;
}

std::string_view without_colons(std::string_view name) {
    return name.substr(std::min(name.find_first_not_of(':'), name.size()));
}

// The first namespace of a name with its colons; empty for a name without one.
std::string_view first_namespace(std::string_view name) {
    const size_t end = name.find_first_of(" \t:");
    const bool found = end != std::string_view::npos && end > 0 && name.substr(end, 2) == "::";
    return found ? name.substr(0, end + 2) : std::string_view();
}

bool hides_command(Tcl_Interp* interp, std::string_view name) {
    const auto& hidden = s_hiddenProcs().names;
    if (hidden.count(name) || hidden.count(first_namespace(name))) {
        return true;
    }
    const std::string origin = HTCTclUtils::tclNamespaceOrigin(interp, std::string(name));
    const auto task = task_manager::createTask(interp, origin);
    std::string advice;
    return task && (task->is_hidden() || task->is_deprecated(advice));
}

// The words of a command's result; they live as long as the value that holds them.
struct words {
    tclobj_ref held;
    int count = 0;
    Tcl_Obj** values = nullptr;
};

// The list that a command gives; empty if it fails or gives no list.
words list_of(Tcl_Interp* interp, tclcmdobj&& command) {
    words list;
    if (command.eval(TCL_EVAL_GLOBAL) == TCL_OK) {
        list.held = Tcl_GetObjResult(interp);
        Tcl_ListObjGetElements(nullptr, list.held.get(), &list.count, &list.values);
    }
    return list;
}

std::string_view text_of(Tcl_Obj* value) {
    int length = 0;
    const char* text = Tcl_GetStringFromObj(value, &length);
    return {text, static_cast<size_t>(length)};
}

words commands(Tcl_Interp* interp, const std::string& match) {
    tclcmdobj command(interp, "info");
    command.append("commands");
    if (!match.empty()) {
        command.append(match);
    }
    return list_of(interp, std::move(command));
}

words namespaces(Tcl_Interp* interp, const std::string& match) {
    std::string parent = "::", tail = match;
    if (const size_t colons = match.rfind("::"); colons != std::string::npos &&
                                                 match.find_first_of(" \t") == std::string::npos &&
                                                 match.find(':', colons + 2) == std::string::npos) {
        parent = match.substr(0, colons + 2);
        tail = match.substr(colons + 2);
    }
    tclcmdobj command(interp, "namespace");
    command.append("children").append(parent);
    if (!tail.empty()) {
        command.append(tail);
    }
    return list_of(interp, std::move(command));
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::info_commands";

    static void load_description() {
        in_categories("Internal");
        description_instance("Return all non hidden commands matching string", "List of matching commands")
            .add_options()
            .add_option("match", options::text(),
                        "String to match against options, empty string (default) matches all options");
        positional_instance().add("match", 1);
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp* interp) override {
        static decisions& hiddenCmds = *new decisions;
        static decisions& hiddenNamespaces = *new decisions;
        const auto match = get_option<std::string>("match");

        const words named = commands(interp, match);
        if (std::exchange(s_hiddenProcs().changed, false)) {
            hiddenCmds.clear();
        }
        std::vector<std::string_view> shown;
        shown.reserve(static_cast<size_t>(named.count));
        for (int i = 0; i < named.count; ++i) {
            const std::string_view name = without_colons(text_of(named.values[i]));
            if (!decided(hiddenCmds, name, [&] { return hides_command(interp, name); })) {
                shown.push_back(name);
            }
        }

        const words children = namespaces(interp, match);
        if (std::exchange(s_hiddenNs().changed, false)) {
            hiddenNamespaces.clear();
        }
        std::vector<std::string> withColons;
        withColons.reserve(static_cast<size_t>(children.count));
        for (int i = 0; i < children.count; ++i) {
            const std::string_view name = without_colons(text_of(children.values[i]));
            std::string full = std::string(name) + "::";
            if (!decided(hiddenNamespaces, name, [&] { return s_hiddenNs().names.count(full) > 0; })) {
                withColons.push_back(std::move(full));
                shown.push_back(withColons.back());
            }
        }

        std::sort(shown.begin(), shown.end());
        std::vector<Tcl_Obj*> values;
        values.reserve(shown.size());
        for (const std::string_view name : shown) {
            values.push_back(Tcl_NewStringObj(name.data(), static_cast<int>(name.size())));
        }
        Tcl_SetObjResult(interp, Tcl_NewListObj(static_cast<int>(values.size()), values.data()));
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace info_commands
