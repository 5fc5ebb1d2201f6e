#pragma once

#include "design/ByteSource.h"
#include "design/Design.h"
#include "design/Error.h"
#include "design/NetlistReader.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

/// The name of the running test as a folder of its own, made empty and removed afterwards.
class TemporaryFolder {
public:
    TemporaryFolder() {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        std::string name = std::string("corvane.") + info->test_suite_name() + "." + info->name() + ".XXXXXX";
        std::replace(name.begin(), name.end(), '/', '_');
        path_ = (std::filesystem::temp_directory_path() / name).string();
        if (!::mkdtemp(path_.data()))
            throw std::runtime_error("cannot make " + path_);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { std::filesystem::remove_all(path_); }

    std::string file(const std::string& name) const { return path_ + "/" + name; }
    std::string write(const std::string& name, std::string_view text) const {
        std::ofstream(file(name), std::ios::binary) << text;
        return file(name);
    }

private:
    std::string path_;
};

inline std::string read_text(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

inline std::unique_ptr<design::Netlist> parse(std::string_view json) {
    design::MemorySource source(json);
    return design::read_netlist(source, "test.json");
}

inline std::unique_ptr<design::Design> make_design(std::string_view json, std::string_view top = {}) {
    return std::make_unique<design::Design>(parse(json), top);
}

inline std::string blinker_path() {
    return std::string(CORVANE_TEST_DATA) + "/design/blinker.json";
}

inline std::unique_ptr<design::Design> blinker() {
    return std::make_unique<design::Design>(design::read_netlist_file(blinker_path()), "", blinker_path());
}

/// The names of objects, in their order.
template <class T>
std::vector<std::string> names(const std::vector<T*>& objects) {
    std::vector<std::string> result;
    for (const T* object : objects)
        result.push_back(object->name());
    return result;
}

template <class T>
std::vector<std::string> all_names(const design::Design& d) {
    std::vector<std::string> result;
    for (uint32_t i = 0; i < d.count<T>(); ++i)
        result.push_back(d.object<T>(i)->name());
    return result;
}

template <class T>
T* find_one(const design::Design& d, std::string_view name) {
    T* result = nullptr;
    d.find<T>(name, [&](T* object) { result = object; });
    if (!result)
        throw std::runtime_error("no object " + std::string(name));
    return result;
}

/// The text of the Error that a call throws; the test fails if it throws none.
template <class Call>
std::string error_of(const Call& call) {
    try {
        call();
    } catch (const design::Error& error) {
        return error.text();
    }
    ADD_FAILURE() << "nothing was refused";
    return {};
}
