#include "platform/env/HUTPathUtils.h"

#include <cstring>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::optional<mode_t> mode_of(const std::string& path) {
    struct stat status;
    // A path with a NUL in it would be looked up cut short.
    if (std::strlen(path.c_str()) != path.size() || ::stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return status.st_mode;
}

} // namespace

bool HUTPathUtils::exists(const std::string& path) {
    return mode_of(path).has_value();
}

bool HUTPathUtils::isRegularFile(const std::string& path) {
    const auto mode = mode_of(path);
    return mode && S_ISREG(*mode);
}

bool HUTPathUtils::isDirectory(const std::string& path) {
    const auto mode = mode_of(path);
    return mode && S_ISDIR(*mode);
}

bool HUTPathUtils::isWritableDirectory(const std::string& path) {
    return isDirectory(path) && ::access(path.c_str(), W_OK | X_OK) == 0;
}

std::string HUTPathUtils::join(std::initializer_list<std::string_view> components) {
    std::string path;
    for (std::string_view component : components) {
        if (component.empty())
            continue;
        if (!path.empty()) {
            if (path.back() != '/')
                path += '/';
            while (!component.empty() && component.front() == '/')
                component.remove_prefix(1);
        }
        path += component;
    }
    return path;
}

std::string HUTPathUtils::fileName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

std::string HUTPathUtils::extension(const std::string& path) {
    const std::string name = fileName(path);
    const size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 || name == ".." ? std::string() : name.substr(dot);
}
