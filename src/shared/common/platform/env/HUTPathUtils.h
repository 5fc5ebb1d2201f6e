#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

/// Questions about paths. None of them throws: what cannot be looked at does not exist.
class HUTPathUtils {
public:
    static bool exists(const std::string& path);
    static bool isRegularFile(const std::string& path);
    static bool isDirectory(const std::string& path);

    /// True for a directory in which this process can create files.
    static bool isWritableDirectory(const std::string& path);

    /// Joins components with one "/" between them. Empty components are left out; a later component is never
    /// taken as a new root, so join({"/a", "/b"}) is "/a/b".
    static std::string join(std::initializer_list<std::string_view> components);

    /// The last component: "b.log" of "/a/b.log", empty for a path that ends in "/".
    static std::string fileName(const std::string& path);

    /// The file name's extension with its dot: ".log" of "/a/b.log"; empty for "b" and for ".b".
    static std::string extension(const std::string& path);
};
