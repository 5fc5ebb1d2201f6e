#include "tcltasks/property/detail/listing.h"

#include <algorithm>

#include "platform/env/HUTTextTable.h"
#include "platform/tcl/HTCTclPatternMatch.h"

namespace HTCProperty::detail::listing {

using namespace HCPProperty;

namespace {

const char* word(bool value) {
    return value ? "true" : "false";
}

std::string type_word(const Types::PNameAndProp& entry) {
    if (const HATAttrSpec* spec = entry.attrSpec()) {
        return HATAttrUtils::getStringType(spec->getAttrType());
    }
    const auto type = HATAttrUtils::getValueType(entry.value);
    return type ? HATAttrUtils::getStringType(*type) : "unknown";
}

std::string value_text(const Types::PNameAndProp& entry) {
    return entry.hasValue ? HATAttrUtils::getStringValue(entry.value, entry.attrSpec()) : std::string();
}

// Characters of UTF-8, which is what a column counts.
size_t length(const std::string& text) {
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xc0) != 0x80; }));
}

std::string paragraph(const Types::PNameAndProp& entry, const ReportOptions& options, size_t width) {
    const HATAttrSpec* spec = entry.attrSpec();
    const std::string description =
        spec && !spec->getDescription().empty() ? spec->getDescription() : "no description available";
    std::string text = brokenLines("Description: " + description, width) + "\n";
    text += "Type: " + (spec ? type_word(entry) : "unknown") + "\n";
    text += std::string("Read-only: ") + word(!HATAttrUtils::writable(spec)) + "\n";
    if (options.tclDebug) {
        text += std::string("Visible: ") + word(entry.visible) + "\n";
        if (options.owners && entry.spec) {
            text += "Owner: " + entry.spec->getOwner() + "\n";
        }
    }
    const std::string value = value_text(entry);
    return value.empty() ? text : text + "Value: " + value + "\n";
}

} // namespace

void keepMatching(Entries& entries, const std::string& pattern, bool regexp) {
    if (pattern != "*") {
        const HTCTclPatternMatch matcher(pattern, regexp, false);
        std::erase_if(entries, [&](const auto& entry) { return !matcher.match(entry.name); });
    }
}

std::string normalReport(const tclany& object, const Entries& entries, const ReportOptions& options) {
    HUTTextTable table;
    std::vector<std::string> headers{"Property", "Type", "Read-only"};
    const bool owners = options.tclDebug && options.owners;
    if (options.tclDebug) {
        headers.push_back("Visible");
    }
    if (owners) {
        headers.push_back("Owner");
    }
    headers.push_back("Value");
    table.setHeaders(headers);
    const auto info = getObjectInfoOrError(object);
    for (const auto& entry : entries) {
        if ((!entry.hasValue && !options.all) || (!entry.visible && !options.tclDebug)) {
            continue;
        }
        const HATAttrSpec* spec = info->getAttrSpec(object, entry.name);
        std::vector<std::string> row{entry.name, type_word(entry), word(!HATAttrUtils::writable(spec))};
        if (options.tclDebug) {
            row.push_back(word(entry.visible));
        }
        if (owners) {
            row.push_back(entry.spec ? entry.spec->getOwner() : "");
        }
        row.push_back(value_text(entry));
        table.addRow(std::move(row));
    }
    return table.getAsString(true);
}

std::string detailedReport(const tclany& object, const Entries& entries, const ReportOptions& options) {
    size_t widest = length("Property");
    for (const auto& entry : entries) {
        widest = std::max(widest, length(entry.name));
    }
    const size_t width = widest < 77 ? 77 - widest : 0;
    HUTTextTable table;
    table.setHeaders({"Property", "Description"});
    table.addRow({std::string(widest, '-'), std::string(width, '-')});
    for (const auto& entry : entries) {
        if ((object.empty() || entry.hasValue || options.all) && (options.tclDebug || entry.visible)) {
            table.addRow({entry.name, paragraph(entry, options, width)});
        }
    }
    return table.getAsString(false);
}

std::string brokenLines(const std::string& text, size_t width) {
    if (width < 10) {
        return text;
    }
    std::string result;
    std::string line;
    size_t columns = 0, blank = std::string::npos;
    for (const char c : text) {
        if (c == '\n') {
            result += line + '\n';
            line.clear();
            columns = 0;
            blank = std::string::npos;
            continue;
        }
        const bool starts = (c & 0xc0) != 0x80;
        if (starts && columns == width) {
            if (c == ' ') {
                blank = line.size();
            }
            const size_t end = blank == std::string::npos ? line.size() : blank;
            result += line.substr(0, end) + '\n';
            line.erase(0, std::min(line.size(), blank == std::string::npos ? end : end + 1));
            columns = length(line);
            blank = std::string::npos;
            if (c == ' ' && line.empty()) {
                continue;
            }
        }
        if (c == ' ') {
            blank = line.size();
        }
        line += c;
        columns += starts;
    }
    return result + line;
}

} // namespace HTCProperty::detail::listing
