#include <algorithm>
#include <boost/program_options/value_semantic.hpp>
#include <sstream>

#include "platform/env/HSTStringUtils.h"
#include "platform/env/HUTEnv.h"
#include "platform/taskcore/HTCTclTaskOptions.h"
#include "platform/taskcore/help_page.h"
#include "platform/taskcore/task_options_base.h"
#include "platform/taskcore/value_kind.h"

namespace vek::tcltasks {

namespace {

constexpr size_t width = 80;
constexpr size_t widest_name = 28; // of an argument that has its text beside it

struct help_row {
    std::string name;
    std::string text;
};

// Sets words into lines of the page width behind an indent; the first line already stands at `column`.
void wrap(std::ostream& out, const std::string& text, size_t indent, size_t column) {
    std::istringstream words(text);
    std::string word;
    bool first = true;
    while (words >> word) {
        const size_t size = HSTStringUtils::display_width(word);
        if (!first && column + 1 + size > width) {
            out << '\n' << std::string(indent, ' ');
            column = indent;
            first = true;
        }
        out << (first ? "" : " ") << word;
        column += size + (first ? 0 : 1);
        first = false;
    }
    out << '\n';
}

bool is_positional(const task_options_base& task, const std::string& name) {
    for (const auto& position : task.get_positional_options().positions()) {
        if (position.name == name) {
            return true;
        }
    }
    return false;
}

// What an option takes, in one word: "integer" of "an integer of zero or more".
std::string kind_word(const options_description::option& option) {
    std::string_view kind = value_kind(option);
    kind.remove_prefix(kind.starts_with("a ") || kind.starts_with("an ") || kind.starts_with("any ")
                           ? kind.find(' ') + 1
                           : 0);
    return std::string(kind.substr(0, kind.find(' ')));
}

std::string value_word(const options_description::option& option) {
    if (option.choices.empty()) {
        return "<" + kind_word(option) + ">";
    }
    std::string text;
    for (const std::string& choice : option.choices) {
        text += (text.empty() ? "" : "|") + choice;
    }
    return text;
}

// An option as it is written in a call.
std::string switch_form(const options_description::option& option, const std::string& value) {
    const bool valueMayMiss = option.semantic->has_implicit();
    return "-" + option.name + (option.is_flag() ? "" : valueMayMiss ? " [" + value + "]" : " " + value);
}

std::string usage(const task_options_base& task, const std::string& name) {
    const options_description& description = task.get_options_description();
    std::string text = help_page::typed_name(name);
    for (const auto& option : description.options()) {
        if (option.semantic->is_hidden() || is_positional(task, option.name)) {
            continue;
        }
        const std::string form = switch_form(option, value_word(option));
        text += option.required ? " " + form : " [" + form + "]";
    }
    for (const infra_option& infra : infra_option::all) {
        const bool common = &infra == &infra_option::all[infra_option::quiet] ||
                            &infra == &infra_option::all[infra_option::verbose];
        if (common && description.find(infra.name) < 0) {
            text += std::string(" [-") + infra.name + "]";
        }
    }
    for (const auto& position : task.get_positional_options().positions()) {
        const int index = description.find(position.name);
        if (index < 0 || description.options()[static_cast<size_t>(index)].semantic->is_hidden()) {
            continue;
        }
        const std::string form = "<" + position.name + ">" + (position.maxCount == 1 ? "" : "...");
        const bool required = description.options()[static_cast<size_t>(index)].required;
        text += required ? " " + form : " [" + form + "]";
    }
    return text;
}

std::string default_note(const options_description::option& option) {
    if (!option.defaultWords.empty()) {
        return " Default: " + option.defaultWords;
    }
    const std::string& value = option.semantic->default_text();
    return option.is_flag() || value.empty() ? std::string() : " Default: " + value;
}

std::string choice_note(const options_description::option& option) {
    std::string text;
    for (const std::string& choice : option.choices) {
        text += (text.empty() ? " Values: " : ", ") + choice;
    }
    return text.empty() ? text : text + ".";
}

// A help text as a sentence: with a capital at its start and a full stop at its end.
std::string sentence(std::string text) {
    if (!text.empty() && text[0] >= 'a' && text[0] <= 'z') {
        text[0] = static_cast<char>(text[0] - 'a' + 'A');
    }
    if (!text.empty() && std::string_view(".!?").find(text.back()) == std::string_view::npos) {
        text += '.';
    }
    return text;
}

// What a word of a call that stands without a switch has to be, where that is not any text.
std::string type_note(const options_description::option& option) {
    const std::string_view kind = value_kind(option);
    return option.choices.empty() && kind != "any text" ? " Takes " + std::string(kind) + "." : std::string();
}

std::vector<help_row> rows(const task_options_base& task) {
    const options_description& description = task.get_options_description();
    std::vector<help_row> result;
    const auto add = [&](const options_description::option& option, const std::string& form,
                         const std::string& type) {
        if (!option.semantic->is_hidden()) {
            result.push_back(
                {form, sentence(option.help) + type + choice_note(option) + default_note(option)});
        }
    };
    for (const auto& option : description.options()) {
        if (!is_positional(task, option.name)) {
            add(option, switch_form(option, "<" + kind_word(option) + ">"), "");
        }
    }
    for (const auto& position : task.get_positional_options().positions()) {
        const int index = description.find(position.name);
        if (index >= 0) {
            const auto& option = description.options()[static_cast<size_t>(index)];
            add(option, "<" + position.name + ">", type_note(option));
        }
    }
    for (const infra_option& infra : infra_option::all) {
        if (description.find(infra.name) < 0) {
            result.push_back({std::string("-") + infra.name, sentence(infra.text)});
        }
    }
    return result;
}

void write_arguments(std::ostream& out, const task_options_base& task) {
    size_t column = 0;
    const auto table = rows(task);
    for (const help_row& row : table) {
        if (row.name.size() <= widest_name) {
            column = std::max(column, row.name.size());
        }
    }
    for (const help_row& row : table) {
        out << "  " << row.name;
        size_t at = 2 + row.name.size();
        if (row.name.size() > column) {
            out << '\n';
            at = 0;
        }
        const size_t indent = column + 4;
        out << std::string(indent - at, ' ');
        wrap(out, row.text, indent, indent);
    }
}

// The name with what the command does. A description of several lines keeps them, below the name.
void write_name(std::ostream& out, const std::string& name, const std::string& description) {
    const auto lines = HSTStringUtils::split(HSTStringUtils::trim(description), '\n');
    out << "NAME\n";
    if (lines.size() == 1) {
        wrap(out << "  ", name + " - " + sentence(lines[0]), 4, 2);
        return;
    }
    out << "  " << name << '\n';
    for (const std::string& line : lines) {
        wrap(out << (line.empty() ? "" : "    "), line, 4, 4);
    }
}

// A switch with its value stays on one line.
void write_syntax(std::ostream& out, const task_options_base& task, const std::string& name) {
    constexpr char joint = '\1';
    std::string text = usage(task, name);
    int depth = 0;
    for (char& c : text) {
        depth += c == '[' ? 1 : c == ']' ? -1 : 0;
        c = c == ' ' && depth > 0 ? joint : c;
    }
    std::ostringstream lines;
    wrap(lines << "  ", text, 6, 2);
    text = lines.str();
    std::replace(text.begin(), text.end(), joint, ' ');
    out << "SYNTAX\n" << text;
}

void write_section(std::ostream& out, const char* heading, const std::string& lines) {
    if (!lines.empty()) {
        out << '\n' << heading << '\n' << lines;
    }
}

std::string visible_categories(const task_options_base& task) {
    std::string list;
    for (const std::string& name : HSTStringUtils::split(task.categories(), ':')) {
        if (!name.empty() && !HTCTclTaskOptions::isCategoryHidden(name)) {
            list += (list.empty() ? "" : ", ") + name;
        }
    }
    return list;
}

} // namespace

std::string task_options_base::long_help_path(Tcl_Interp*, const std::string& name) const {
    const std::string relative = help_page::place(long_help_name(name));
    const std::string root = HUTEnv::getOMUAppRoot(relative);
    return root.empty() ? root : root + "/" + relative;
}

std::string task_options_base::help(Tcl_Interp* interp, const std::string& name,
                                    const std::string& form) const {
    const std::string shown = help_page::typed_name(task_help_name(name));
    if (form == "usage") {
        return usage(*this, shown);
    }
    const options_description& description = get_options_description();
    std::ostringstream out;
    if (form == "syntax") {
        write_syntax(out, *this, shown);
        return out.str();
    }
    write_name(out, shown, description.description());
    if (form == "args") {
        write_arguments(out << "\nARGUMENTS\n", *this);
        return out.str();
    }
    const std::string path = long_help_path(interp, name);
    const help_page page = path.empty() ? help_page() : help_page::read(path);
    write_syntax(out << '\n', *this, shown);
    write_arguments(out << "\nARGUMENTS\n", *this);
    write_section(out, "DESCRIPTION", page.description());
    if (!description.returns().empty()) {
        wrap(out << "\nRETURNS\n  ", sentence(description.returns()), 2, 2);
    }
    write_section(out, "EXAMPLES", page.examples());
    if (const std::string names = visible_categories(*this); !names.empty()) {
        wrap(out << "\nCATEGORIES\n  ", names, 2, 2);
    }
    write_section(out, "SEE ALSO", page.see_also());
    return out.str();
}

} // namespace vek::tcltasks
