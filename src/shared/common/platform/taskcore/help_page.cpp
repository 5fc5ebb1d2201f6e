#include "platform/taskcore/help_page.h"

#include <fstream>

#include "platform/env/HUTPathUtils.h"

namespace vek::tcltasks {

namespace {

// A line without blanks and line ends behind it, and without what a terminal would take for a command.
std::string shown(std::string_view line) {
    std::string text(line.substr(0, line.find_last_not_of(" \t\r") + 1));
    for (char& c : text) {
        if (c == '\t') {
            c = ' ';
        } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
            c = '?';
        }
    }
    return text;
}

} // namespace

std::string help_page::typed_name(std::string_view command) {
    for (const std::string_view dropped : {"::", "common::"}) {
        if (command.starts_with(dropped)) {
            command.remove_prefix(dropped.size());
        }
    }
    return std::string(command);
}

std::string help_page::place(std::string_view command) {
    std::string file = typed_name(command);
    for (size_t at = 0; (at = file.find("::", at)) != std::string::npos;) {
        file.replace(at, 2, "__");
    }
    return "doc/eng/cmd/" + file;
}

help_page help_page::read(const std::string& path) {
    if (!HUTPathUtils::isRegularFile(path)) {
        return {};
    }
    std::ifstream file(path, std::ios::binary);
    std::string text(most_bytes, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<size_t>(file.gcount()));
    return parse(text);
}

help_page help_page::parse(std::string_view text) {
    help_page page;
    std::string* section = nullptr;
    size_t blanks = 0; // lines that wait for text behind them
    while (!text.empty()) {
        const size_t end = text.find('\n');
        const std::string line = shown(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line == "DESCRIPTION" || line == "EXAMPLES" || line == "SEE ALSO") {
            section = line == "EXAMPLES"   ? &page.m_examples
                      : line == "SEE ALSO" ? &page.m_seeAlso
                                           : &page.m_description;
            blanks = 0;
        } else if (section && line.empty()) {
            blanks += !section->empty();
        } else if (section) {
            section->append(blanks, '\n').append(line).append("\n");
            blanks = 0;
        }
    }
    return page;
}

} // namespace vek::tcltasks
