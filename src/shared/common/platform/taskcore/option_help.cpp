#include <algorithm>
#include <boost/program_options/value_semantic.hpp>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/env/HSTStringUtils.h"
#include "platform/env/HUTEnv.h"
#include "platform/taskcore/task_options_base.h"

namespace vek::tcltasks {

namespace {

constexpr size_t width = 80;

// The command's name as users type it: the public namespace is imported everywhere.
std::string short_name(const std::string& name) {
    const size_t colons = name.rfind("::");
    return colons == std::string::npos ? name : name.substr(colons + 2);
}

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

std::string value_word(const options_description::option& option) {
    if (option.choices.empty()) {
        return "<arg>";
    }
    std::string text;
    for (const std::string& choice : option.choices) {
        text += (text.empty() ? "" : "|") + choice;
    }
    return text;
}

std::string usage(const task_options_base& task, const std::string& name) {
    const options_description& description = task.get_options_description();
    std::string text = short_name(name);
    for (const auto& option : description.options()) {
        if (option.semantic->is_hidden() || is_positional(task, option.name)) {
            continue;
        }
        const std::string form = "-" + option.name + (option.is_flag() ? "" : " " + value_word(option));
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

std::string sentence(std::string text) {
    if (!text.empty() && std::string_view(".!?").find(text.back()) == std::string_view::npos) {
        text += '.';
    }
    return text;
}

std::vector<help_row> rows(const task_options_base& task) {
    const options_description& description = task.get_options_description();
    std::vector<help_row> result;
    const auto add = [&](const options_description::option& option, const std::string& form) {
        if (!option.semantic->is_hidden()) {
            result.push_back({form, sentence(option.help) + choice_note(option) + default_note(option)});
        }
    };
    for (const auto& option : description.options()) {
        if (!is_positional(task, option.name)) {
            add(option, "-" + option.name);
        }
    }
    for (const infra_option& infra : infra_option::all) {
        if (description.find(infra.name) < 0) {
            result.push_back({std::string("-") + infra.name, sentence(infra.text)});
        }
    }
    for (const auto& position : task.get_positional_options().positions()) {
        const int index = description.find(position.name);
        if (index >= 0) {
            add(description.options()[static_cast<size_t>(index)], "<" + position.name + ">");
        }
    }
    return result;
}

void write_arguments(std::ostream& out, const task_options_base& task) {
    size_t column = 0;
    const auto table = rows(task);
    for (const help_row& row : table) {
        column = std::max(column, std::min<size_t>(row.name.size(), 24));
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

// A description of several lines keeps them; a single one is a sentence.
void write_description(std::ostream& out, const std::string& description) {
    const auto lines = HSTStringUtils::split(HSTStringUtils::trim(description), '\n');
    for (const std::string& line : lines) {
        wrap(out << "  ", lines.size() > 1 ? line : sentence(line), 2, 2);
    }
}

std::string page(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace

std::string task_options_base::long_help_path(Tcl_Interp*, const std::string& name) const {
    const std::string relative = "doc/eng/man/" + short_name(long_help_name(name));
    const std::string root = HUTEnv::getOMUAppRoot(relative);
    return root.empty() ? root : root + "/" + relative;
}

std::string task_options_base::help(Tcl_Interp* interp, const std::string& name,
                                    const std::string& form) const {
    const std::string shown = task_help_name(name);
    std::ostringstream out;
    if (form == "syntax") {
        return usage(*this, shown);
    }
    if (form == "long") {
        const std::string path = long_help_path(interp, name);
        if (!path.empty()) {
            return page(path);
        }
    }
    const options_description& description = get_options_description();
    out << short_name(shown) << "\n\nDescription:\n";
    write_description(out, description.description());
    out << "\nSyntax:\n";
    wrap(out << "  ", usage(*this, shown), 6, 2);
    if (!description.returns().empty()) {
        out << "\nReturns:\n";
        wrap(out << "  ", sentence(description.returns()), 2, 2);
    }
    out << "\nArguments:\n";
    write_arguments(out, *this);
    if (const std::string names = categories(); !names.empty()) {
        std::string list = names;
        for (size_t at = 0; (at = list.find(':', at)) != std::string::npos; at += 2) {
            list.replace(at, 1, ", ");
        }
        out << "\nCategories:\n";
        wrap(out << "  ", list, 2, 2);
    }
    return out.str();
}

} // namespace vek::tcltasks
