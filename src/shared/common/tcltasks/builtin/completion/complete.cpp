#include "tcltasks/builtin/completion/complete.h"

#include <algorithm>
#include <array>
#include <re2/re2.h>
#include <sys/stat.h>
#include <vector>

#include "platform/env/HSTStringUtils.h"
#include "platform/taskcore/task_manager.h"
#include "platform/taskcore/task_options_base.h"
#include "platform/taskcore/value_hints.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/HTCTclUtils.h"
#include "platform/tcl/tclcmdobj.h"
#include "tcltasks/builtin/completion/typed_command.h"
#include "tcltasks/core/tcl_value_semantic.h"

namespace HTCLibEdit::detail {

namespace {

using namespace vek::tcltasks;
using outcome = completion::outcome;
using names = std::vector<std::string>;

constexpr std::string_view blanks = " \t";

const char* const too_long = "\nUnable to tab complete due to command line length.\n";

RE2* pattern_of(const char* pattern) {
    RE2::Options options(RE2::Latin1); // positions count bytes, whatever they stand for
    options.set_dot_nl(true);
    return new RE2(pattern, options);
}

const RE2& re_open_cmd() {
    static const RE2& pattern = *pattern_of("^([ \t]*([^ \t[]+))$|^(.*\\[[ \t]*([^ \t]+))$");
    return pattern;
}
const RE2& re_open_opt() {
    static const RE2& pattern = *pattern_of("^([ \t]*([^ \t]+)[ \t]+(?:.*\\[.*\\])*[^\\[]*(-[^ \t]*))$"
                                            "|^(.*\\[[ \t]*([^ \t]+)[^\\]]+(-[^ \t]*))$");
    return pattern;
}
const RE2& re_open_path() {
    static const RE2& pattern = *pattern_of("^.* (.*)$");
    return pattern;
}

// The groups of a match, the whole first; a group without a match has no data.
using groups = std::array<re2::StringPiece, 7>;

bool search(const RE2& pattern, std::string_view text, groups& found) {
    const re2::StringPiece piece(text.data(), text.size());
    const int count = pattern.NumberOfCapturingGroups() + 1;
    return pattern.Match(piece, 0, piece.size(), RE2::UNANCHORED, found.data(), count);
}

// A part of the text with its position.
struct piece {
    std::string text;
    size_t at = 0;
};
piece piece_of(std::string_view text, const re2::StringPiece& group) {
    return {std::string(group.data(), group.size()), static_cast<size_t>(group.data() - text.data())};
}

bool holds_command(const std::string& text) {
    return read_typed_command(text).runs_command();
}

// Leaves the interpreter's result and error state as they were.
class untouched {
public:
    explicit untouched(Tcl_Interp* interp) : m_interp(interp), m_state(Tcl_SaveInterpState(interp, TCL_OK)) {}
    ~untouched() { Tcl_RestoreInterpState(m_interp, m_state); }
    untouched(const untouched&) = delete;
    untouched& operator=(const untouched&) = delete;

private:
    Tcl_Interp* m_interp;
    Tcl_InterpState m_state;
};

bool is_directory(const std::string& path) {
    const tclobj_ref name(Tcl_NewStringObj(path.data(), static_cast<int>(path.size())));
    Tcl_StatBuf* status = Tcl_AllocStatBuf();
    const bool found = Tcl_FSStat(name.get(), status) == 0;
    const bool directory = found && S_ISDIR(Tcl_GetModeFromStat(status));
    ckfree(status);
    return directory;
}

std::string_view common_prefix(const names& sorted, size_t longest) {
    const std::string& first = sorted.front();
    const std::string& last = sorted.back();
    size_t length = 0;
    while (length < longest && first[length] == last[length]) {
        ++length;
    }
    while (length > 0 && length < first.size() && (first[length] & 0xC0) == 0x80) {
        --length; // not inside a character
    }
    return std::string_view(first).substr(0, length);
}

bool is_placeholder(const std::string& word) {
    return word.starts_with('<');
}

class completer {
public:
    completer(Tcl_Interp* interp, std::string_view line) : m_interp(interp) {
        // Only the last command counts. A line that was pasted has line ends.
        const size_t semicolon = line.rfind(';');
        m_offset = semicolon == std::string_view::npos ? 0 : semicolon + 1;
        for (size_t at = line.size(); at > m_offset; --at) {
            if (line[at - 1] == '\n' && (at < 2 || line[at - 2] != '\\')) {
                m_offset = at;
                break;
            }
        }
        m_text = line.substr(m_offset);
        m_typed = read_typed_command(m_text);
    }

    completion run() {
        completion result = run_stages();
        const bool nothing = !result.replacement && result.output.empty();
        if (auto inside = nothing ? script_stage() : std::nullopt) {
            return *inside;
        }
        return result;
    }

private:
    completion run_stages() {
        if (auto done = variable_stage()) {
            return *done;
        }
        groups found;
        if (m_text.find_first_not_of(blanks) == std::string_view::npos) {
            return command_stage({});
        }
        if (search(re_open_cmd(), m_text, found)) {
            return command_stage(piece_of(m_text, found[2].data() ? found[2] : found[4]));
        }
        if (m_text.size() > longest_typed_command) {
            completion result;
            result.output = too_long;
            result.beep = true;
            return result;
        }
        if (search(re_open_opt(), m_text, found)) {
            const bool first = found[1].data() != nullptr;
            const piece option = piece_of(m_text, found[first ? 3 : 6]);
            completion result = option_stage(piece_of(m_text, found[first ? 2 : 5]), option);
            // A dash inside a word may be an option's, but also that of a file as "my-file".
            if (result.then != outcome::error || option.at == m_typed.current.begin) {
                return result;
            }
        }
        if (m_typed.runs_command()) {
            return refused();
        }
        if (auto done = value_stage()) {
            return *done;
        }
        return path_stage();
    }

    // How a finished word looks in the line.
    struct form {
        bool path = false;
        bool quote = false;      // what is special to Tcl is quoted
        bool listQuoted = false; // in the listing as well
        char open = 0;           // the quote or brace that the word stands in
        char close = 0;          // what the part that is completed ends with
        char ending = ' ';       // behind a finished word
    };

    static completion refused() {
        completion result;
        result.then = outcome::redisplay;
        result.beep = true;
        return result;
    }

    // The list that a listing command gives; nothing if it fails. Tcl's `unknown` is not asked for one that
    // was renamed away.
    std::optional<names> list_of(tclcmdobj&& command) {
        Tcl_Obj* name = nullptr;
        Tcl_ListObjIndex(nullptr, command.obj(), 0, &name);
        if (!Tcl_FindCommand(m_interp, Tcl_GetString(name), nullptr, TCL_GLOBAL_ONLY) ||
            command.eval(TCL_EVAL_GLOBAL) != TCL_OK) {
            return std::nullopt;
        }
        const tclobj_ref result(Tcl_GetObjResult(m_interp));
        int count = 0;
        Tcl_Obj** values = nullptr;
        names list;
        if (Tcl_ListObjGetElements(nullptr, result.get(), &count, &values) == TCL_OK) {
            list.reserve(static_cast<size_t>(count));
            for (int i = 0; i < count; ++i) {
                int length = 0;
                const char* text = Tcl_GetStringFromObj(values[i], &length);
                list.emplace_back(text, static_cast<size_t>(length));
            }
        }
        return list;
    }

    // A word of a listing command. Behind "--" one with a dash is no switch.
    static void append(tclcmdobj& command, const std::string& word) {
        command.append(Tcl_NewStringObj(word.data(), static_cast<int>(word.size())));
    }
    static void end_switches(tclcmdobj& command, const std::string& word) {
        if (word.starts_with('-')) {
            command.append("--");
        }
    }

    std::optional<names> commands(const std::string& word) {
        tclcmdobj command(m_interp, "omu::info_commands");
        end_switches(command, word);
        append(command, word + "*");
        return list_of(std::move(command));
    }

    std::optional<names> files(const std::string& pattern) {
        tclcmdobj command(m_interp, "glob");
        end_switches(command, pattern);
        append(command, pattern + "*");
        return list_of(std::move(command));
    }

    completion command_stage(const piece& word) {
        if (m_typed.runs_command()) {
            return refused();
        }
        form look;
        look.quote = true;
        return settle(commands(word.text), word.at, look);
    }

    completion option_stage(const piece& command, const piece& option) {
        // What stands between the two is left of the word that is being typed, and is not needed.
        if (holds_command(command.text) || holds_command(option.text) || m_typed.current.runs_command) {
            return refused();
        }
        tclcmdobj matching(m_interp, "omu::match_options");
        const std::string prefix = option.text.substr(1);
        end_switches(matching, command.text.starts_with('-') ? command.text : prefix);
        append(matching, command.text);
        append(matching, prefix);
        return settle(list_of(std::move(matching)), option.at, {});
    }

    completion path_stage() {
        form look;
        look.path = true;
        look.quote = true;
        // A word that Tcl reads as another text than it shows is that text, and no pattern.
        const auto& current = m_typed.current;
        const std::string_view shown = m_text.substr(current.begin, current.end - current.begin);
        if (m_typed.readable && !m_typed.words.empty() && current.value && *current.value != shown) {
            look.open = m_typed.open;
            auto list = files(glob_quoted(*current.value));
            if (list && !list->empty()) {
                return settle(list, current.begin + (look.open ? 1 : 0), look);
            }
            look.open = 0;
        }
        groups found;
        if (!search(re_open_path(), m_text, found) || !found[1].data()) {
            return refused();
        }
        const piece word = piece_of(m_text, found[1]);
        return settle(files(word.text), word.at, look);
    }

    // Where nothing else fits, a script may begin: behind a bracket, or in the brace of an argument, as that
    // of `foreach`. A command that declares its options takes no scripts.
    std::optional<completion> script_stage() {
        if (!m_typed.readable) {
            return std::nullopt;
        }
        const auto& current = m_typed.current;
        if (m_typed.words.empty()) {
            const bool opened = current.begin == m_text.size() && m_text.ends_with('[');
            return opened ? std::optional(command_stage({{}, m_text.size()})) : std::nullopt;
        }
        const bool braced = m_typed.open == '{' && m_text.substr(current.begin).starts_with('{');
        if (!braced || m_typed.runs_command() || typed_task()) {
            return std::nullopt;
        }
        const size_t begin = current.begin + 1;
        completion result = completer(m_interp, m_text.substr(begin)).run();
        if (!result.replacement && result.output.empty()) {
            return std::nullopt;
        }
        result.replace += m_offset + begin;
        return result;
    }

    // A variable behind "$", or an element behind "$array(".
    std::optional<completion> variable_stage() {
        if (!m_typed.readable || m_typed.runs_command()) {
            return std::nullopt;
        }
        const auto variable = read_typed_variable(m_text.substr(m_typed.current.begin));
        if (!variable) {
            return std::nullopt;
        }
        form look;
        // Inside quotes, braces or an index the word goes on.
        const std::string_view before = m_text.substr(m_typed.current.begin, variable->begin - 1);
        const bool indexes = variable->array.empty() && before.rfind('(') + 1 > before.rfind(')') + 1;
        look.ending = m_typed.open || indexes ? 0 : ' ';
        names list = variable->array.empty() ? variables(*variable) : elements(*variable);
        if (list.empty()) {
            return std::nullopt;
        }
        if (!variable->array.empty()) {
            look.close = ')';
        } else if (variable->braced) {
            look.close = '}';
        } else if (list.size() == 1 && is_array(list.front())) {
            look.ending = '(';
        }
        return settle(std::move(list), m_typed.current.begin + variable->begin, look);
    }

    names variables(const typed_variable& variable) {
        tclcmdobj command(m_interp, "info");
        command.append("vars");
        append(command, glob_quoted(variable.name) + "*");
        names list = list_of(std::move(command)).value_or(names());
        if (!variable.name.starts_with("::")) {
            for (std::string& name : list) {
                name.erase(0, name.starts_with("::") ? 2 : 0);
            }
        }
        const auto needs_braces = [](const std::string& name) {
            return !std::all_of(name.begin(), name.end(), [](unsigned char c) {
                return c == '_' || c == ':' || (c < 0x80 && std::isalnum(c));
            });
        };
        if (!variable.braced) {
            std::erase_if(list, needs_braces);
        }
        if (!variable.name.empty()) {
            add_namespaces(variable.name, list);
        }
        return list;
    }

    void add_namespaces(const std::string& name, names& list) {
        const size_t colons = name.rfind("::");
        const std::string parent = colons == std::string::npos ? "" : name.substr(0, colons + 2);
        tclcmdobj command(m_interp, "namespace");
        command.append("children");
        append(command, parent.starts_with("::") ? parent : std::string("::").append(parent));
        append(command, glob_quoted(name.substr(parent.size())) + "*");
        for (const std::string& full : list_of(std::move(command)).value_or(names())) {
            list.push_back(parent + full.substr(full.rfind("::") + 2) + "::");
        }
    }

    // A variable that is watched is left alone: to ask for its elements would run what watches it.
    bool is_watched(const std::string& name) {
        tclcmdobj command(m_interp, "trace");
        command.append("info").append("variable");
        append(command, name);
        const auto traces = list_of(std::move(command));
        return !traces || !traces->empty();
    }

    bool is_array(const std::string& name) {
        if (name.ends_with("::") || is_watched(name)) {
            return false;
        }
        tclcmdobj command(m_interp, "array");
        command.append("exists");
        append(command, name);
        return list_of(std::move(command)) == names{"1"};
    }

    names elements(const typed_variable& variable) {
        if (is_watched(variable.array)) {
            return {};
        }
        tclcmdobj command(m_interp, "array");
        command.append("names");
        append(command, variable.array);
        append(command, glob_quoted(variable.name) + "*");
        names list = list_of(std::move(command)).value_or(names());
        std::erase_if(list, [](const std::string& name) {
            return name.find_first_of(")[$\\\n") != std::string::npos || is_placeholder(name);
        });
        return list;
    }

    // The command whose words are being typed, if it declares its options.
    std::shared_ptr<const task_options_base> typed_task() {
        if (m_typed.words.empty() || !m_typed.words.front().value) {
            return nullptr;
        }
        const std::string origin = HTCTclUtils::tclNamespaceOrigin(m_interp, *m_typed.words.front().value);
        return std::dynamic_pointer_cast<const task_options_base>(task_manager::createTask(m_interp, origin));
    }

    // The option whose value is being typed.
    std::optional<completion> value_stage() {
        const auto declared = m_typed.readable && m_typed.current.value ? typed_task() : nullptr;
        if (!declared) {
            return std::nullopt;
        }
        value_hints::given_options given;
        const options_description::option* option = typed_option(*declared, given);
        if (!option || option->hint == "file") {
            return std::nullopt;
        }
        const std::string& prefix = *m_typed.current.value;
        form look;
        look.quote = look.listQuoted = true;
        look.open = m_typed.open;
        const size_t at = m_typed.current.begin + (look.open ? 1 : 0);
        if (auto list = values_of(*option, prefix, given); !list.empty()) {
            return settle(std::move(list), at, look);
        }
        if (!prefix.empty() || look.open || option->semantic->is_hidden()) {
            return std::nullopt;
        }
        return settle(names{std::string("<").append(option->name).append(">")}, at, look);
    }

    names values_of(const options_description::option& option, const std::string& prefix,
                    const value_hints::given_options& given) {
        if (option.hint == "command") {
            return commands(glob_quoted(prefix)).value_or(names());
        }
        names list = option.choices;
        if (option.hint.find('|') != std::string::npos) {
            list = HSTStringUtils::split(option.hint, '|');
        }
        if (const auto* source = value_hints::find(option.hint); list.empty() && source) {
            list = values_from(*source, given);
        } else if (list.empty() && dynamic_cast<tcl_value_semantic<bool>*>(option.semantic.get())) {
            list = {"false", "true"};
        }
        for (std::string& value : list) {
            value = HTCTclEncoding::toTcl(value);
        }
        std::erase_if(list, [&](const std::string& value) { return !value.starts_with(prefix); });
        return list;
    }

    names values_from(const value_hints::source& source, const value_hints::given_options& given) {
        try {
            return source(m_interp, given);
        } catch (const std::exception&) {
            return {};
        }
    }

    // Gives the words of the line to the options of the command as a call would, and tells which option the
    // word at the cursor goes to; null if to none.
    const options_description::option* typed_option(const task_options_base& task,
                                                    value_hints::given_options& given) const {
        const options_description& description = task.get_options_description();
        const auto& options = description.options();
        const auto& positions = task.get_positional_options().positions();
        size_t position = 0;
        int taken = 0;
        bool ended = false;
        const auto next_positional = [&]() -> const options_description::option* {
            for (; position < positions.size(); ++position, taken = 0) {
                const auto& [name, most] = positions[position];
                const int index = description.find(name);
                const bool filled = taken == 0 && most == 1 && given.count(name);
                if (index >= 0 && !filled && (most < 0 || taken < most)) {
                    ++taken;
                    return &options[static_cast<size_t>(index)];
                }
            }
            return nullptr;
        };
        const options_description::option* due = nullptr;
        for (size_t i = 1; i < m_typed.words.size(); ++i) {
            const std::string value = m_typed.words[i].value.value_or("");
            const options_description::option* option = std::exchange(due, nullptr);
            if (!option && !ended && value.size() > 1 && value[0] == '-') {
                const auto match = description.resolve(value.substr(1));
                ended = value == "--";
                if (match.kind == match.option && !ended) {
                    const auto& named = options[static_cast<size_t>(match.index)];
                    due = named.is_flag() ? nullptr : &named;
                }
                const bool number = match.kind == match.none && value[1] >= '0' && value[1] <= '9';
                if (!number) {
                    continue;
                }
            }
            option = option ? option : next_positional();
            if (option) {
                given.emplace(option->name, HTCTclEncoding::fromTcl(value));
            }
        }
        return due ? due : next_positional();
    }

    // Finishes the word with the only candidate, or lists the candidates.
    completion settle(const std::optional<names>& list, size_t at, const form& look) {
        if (!list) {
            return refused();
        }
        completion result;
        result.replace = m_offset + at;
        if (list->empty()) {
            return result;
        }
        if (list->size() == 1 && (look.path || !is_placeholder(list->front()))) {
            result.then = outcome::refresh;
            result.replacement = finished(list->front(), look);
            return result;
        }
        names candidates, placeholders;
        size_t shortest = std::string::npos;
        for (const std::string& name : *list) {
            if (is_placeholder(name)) {
                placeholders.push_back(name);
            } else {
                candidates.push_back(name);
                shortest = std::min(shortest, name.size());
            }
        }
        if (candidates.size() >= 2) {
            if (!std::is_sorted(candidates.begin(), candidates.end())) {
                std::sort(candidates.begin(), candidates.end());
            }
            result.replacement = shown(common_prefix(candidates, shortest), look);
        }
        result.output = "\n";
        for (const std::string& name : candidates) {
            result.output += look.path ? last_part(name) : look.listQuoted ? quoted(name, 0) : name;
            result.output += ' ';
        }
        for (const std::string& name : placeholders) {
            result.output += name + " ";
        }
        result.output += "\n";
        result.then = outcome::redisplay;
        return result;
    }

    static std::string shown(std::string_view word, const form& look) {
        return look.quote ? quoted(word, look.open) : std::string(word);
    }

    static std::string finished(const std::string& word, const form& look) {
        std::string text = shown(word, look);
        if (look.path && is_directory(word)) {
            return text + "/";
        }
        const bool is_namespace = word.ends_with("::") && !word.ends_with(":::");
        if (look.open) {
            text += look.open == '{' ? '}' : look.open;
        } else if (look.close && !is_namespace) {
            text += look.close;
        }
        if (look.ending && !is_namespace) {
            text += look.ending;
        }
        return text;
    }

    static std::string last_part(const std::string& path) {
        const std::string name = path.substr(path.rfind('/') + 1);
        return is_directory(path) ? name + "/" : name;
    }

    Tcl_Interp* m_interp;
    size_t m_offset = 0; // of the text in the line
    std::string_view m_text;
    typed_command m_typed;
};

} // namespace

completion complete(Tcl_Interp* interp, std::string_view line) {
    const untouched state(interp);
    return completer(interp, line).run();
}

} // namespace HTCLibEdit::detail
