#include "platform/env/sysinfo.h"

#include "platform/env/HSTStringUtils.h"
#include "platform/env/HUTFile.h"

#include <map>
#include <sys/utsname.h>
#include <system_error>
#include <vector>

namespace isl::sysinfo {
namespace {

std::vector<std::string> lines_of(const char* path) {
    try {
        return HSTStringUtils::split(HUTFile::read(path), '\n');
    } catch (const std::system_error&) {
        return {};
    }
}

// The part of "name : value" before or behind the separator.
std::string field(const std::string& line, char separator, bool value) {
    const size_t at = line.find(separator);
    const std::string_view text(line);
    if (at == std::string::npos)
        return value ? std::string() : std::string(HSTStringUtils::trim(text));
    return std::string(HSTStringUtils::trim(value ? text.substr(at + 1) : text.substr(0, at)));
}

const std::map<std::string, std::string>& os_release() {
    static const auto& fields = *[] {
        auto* read = new std::map<std::string, std::string>;
        for (const std::string& line : lines_of("/etc/os-release")) {
            std::string value = field(line, '=', true);
            if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
                value.back() == value.front())
                value = value.substr(1, value.size() - 2);
            read->emplace(field(line, '=', false), value);
        }
        return read;
    }();
    return fields;
}

std::string os_field(const std::string& name) {
    const auto it = os_release().find(name);
    return it == os_release().end() ? std::string() : it->second;
}

struct processor {
    std::string model, speed;
};

const std::vector<processor>& processors() {
    static const auto& list = *[] {
        auto* read = new std::vector<processor>;
        for (const std::string& line : lines_of("/proc/cpuinfo")) {
            const std::string name = field(line, ':', false);
            if (name == "processor")
                read->emplace_back();
            else if (name == "model name" && !read->empty())
                read->back().model = field(line, ':', true);
            else if (name == "cpu MHz" && !read->empty())
                read->back().speed = field(line, ':', true) + " MHz";
        }
        return read;
    }();
    return list;
}

utsname kernel() {
    utsname names{};
    ::uname(&names);
    return names;
}

} // namespace

std::string info_t::osname() {
    const std::string name = os_field("NAME");
    return name.empty() ? kernel().sysname : name;
}

std::string info_t::osrelease() {
    const std::string name = os_field("PRETTY_NAME");
    return name.empty() ? kernel().release : name;
}

std::string info_t::processor_architecture(unsigned i) {
    if (i >= processors().size())
        return {};
    const std::string& model = processors()[i].model;
    return model.empty() ? kernel().machine : model;
}

std::string info_t::processor_speed(unsigned i) {
    return i < processors().size() ? processors()[i].speed : std::string();
}

} // namespace isl::sysinfo
