#include "tcltasks/help/detail/format.h"

#include <algorithm>

#include "platform/env/HSTStringUtils.h"

namespace HTCHelp::detail::format {

namespace {

// The bytes of the characters at the start of a text that fill up to `width` columns; at least one character.
size_t fitting(std::string_view text, size_t width) {
    size_t at = 0, columns = 0;
    while (at < text.size()) {
        size_t next = at + 1;
        while (next < text.size() && (static_cast<unsigned char>(text[next]) & 0xc0) == 0x80) {
            ++next;
        }
        columns += HSTStringUtils::display_width(text.substr(at, next - at));
        if (at > 0 && columns > width) {
            break;
        }
        at = next;
    }
    return at;
}

// Sets the words of one line into lines.
void fill_lines(std::string& out, std::string_view line, size_t width) {
    size_t column = 0;
    while (!line.empty()) {
        const size_t start = line.find_first_not_of(" \t");
        if (start == std::string_view::npos) {
            return;
        }
        line.remove_prefix(start);
        const std::string_view word = line.substr(0, line.find_first_of(" \t"));
        line.remove_prefix(word.size());
        const size_t columns = HSTStringUtils::display_width(word);
        if (column > 0 && column + 1 + columns > width) {
            out += '\n';
            column = 0;
        } else if (column > 0) {
            out += ' ';
            ++column;
        }
        out += word;
        column += columns;
    }
}

// Where the first line of a text ends that does not fit into `width` columns.
size_t line_end(std::string_view text, size_t width) {
    const size_t stretch = fitting(text, width);
    if (stretch == text.size() || text[stretch] == ' ') {
        return stretch;
    }
    const size_t blank = text.substr(0, stretch).rfind(' ');
    const bool near = blank != std::string_view::npos &&
                      HSTStringUtils::display_width(text.substr(blank, stretch - blank)) * 2 < width;
    return near ? blank : stretch;
}

} // namespace

std::string formatText(const std::string& text, int width) {
    if (width <= 9) {
        return text;
    }
    std::string out;
    const auto lines = HSTStringUtils::split(text, '\n');
    for (size_t i = 0; i < lines.size(); ++i) {
        out += i > 0 ? "\n" : "";
        fill_lines(out, lines[i], static_cast<size_t>(width));
    }
    return out;
}

std::string wrapDescription(std::string text, int width) {
    if (width < 1 || std::count(text.begin(), text.end(), '\t') > 1) {
        return text;
    }
    const auto columns = static_cast<size_t>(width);
    size_t indent = 0;
    if (const size_t tab = text.find('\t'); tab != std::string::npos) {
        text.erase(tab, 1);
        const size_t place = HSTStringUtils::display_width(std::string_view(text).substr(0, tab));
        indent = place < columns ? place : 0;
    }
    std::string out;
    std::string_view rest = text;
    for (size_t room = columns; HSTStringUtils::display_width(rest) > room; room = columns - indent) {
        const size_t end = line_end(rest, room);
        out.append(rest.substr(0, end)).append("\n").append(indent, ' ');
        rest.remove_prefix(end + (end < rest.size() && rest[end] == ' '));
    }
    return out.append(rest);
}

} // namespace HTCHelp::detail::format
