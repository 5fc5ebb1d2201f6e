#include "design/NetlistWriter.h"
#include "design/Property.h"

#include "netlists.h"

#include <map>
#include <sys/stat.h>

using namespace design;

namespace {

template <class T>
void describe(const Design& d, std::map<std::string, std::string>& out) {
    for (uint32_t i = 0; i < d.count<T>(); ++i) {
        const ObjectRef object(d.object<T>(i));
        for (const std::string& name : list_properties(object)) {
            const auto value = get_property(object, name);
            out[std::string(class_name(T::object_class)) + " " + object.name() + " " + name] =
                value ? std::string(value_type_name(value->type)) + " " + value->to_text() : "(none)";
        }
    }
}

/// All objects with all their properties, as text.
std::map<std::string, std::string> description(Design& d) {
    std::map<std::string, std::string> out;
    describe<Cell>(d, out);
    describe<Net>(d, out);
    describe<Pin>(d, out);
    describe<Port>(d, out);
    for (const std::string& name : list_properties(d))
        if (name != "file_name" && name != "memory")
            out["design " + name] = get_property(d, name)->to_text();
    return out;
}

std::unique_ptr<Design> rewritten(Design& d, const std::string& path) {
    write_netlist(d, path, false);
    return std::make_unique<Design>(read_netlist_file(path), "", path);
}

void set(const ObjectRef& object, const char* name, const char* value) {
    set_property({&object, 1}, name, value);
}

} // namespace

TEST(NetlistWriter, WhatIsReadAgainIsTheSameDesign) {
    TemporaryFolder folder;
    const auto d = blinker();
    const auto again = rewritten(*d, folder.file("again.json"));
    EXPECT_EQ(description(*again), description(*d));
    // Once through, the file itself no longer changes.
    write_netlist(*again, folder.file("third.json"), false);
    EXPECT_EQ(read_text(folder.file("third.json")), read_text(folder.file("again.json")));
}

TEST(NetlistWriter, OddNamesAndUnnamedBitsComeBack) {
    TemporaryFolder folder;
    const auto d = make_design(R"({"modules":{"m \"q\"\\":{
        "attributes":{"note\u0001":"tab\there\u20ac"},
        "parameter_default_values":{"P":5,"Q":1.5},
        "ports":{"p[]":{"direction":"inout","offset":-3,"upto":1,"signed":1,"bits":[100000,7,"x"]}},
        "cells":{"c d":{"hide_name":1,"type":"t t","parameters":{"A":"1 "},
            "connections":{"X":[],"Y":[9,"0","1","z"]}}},
        "netnames":{"w":{"hide_name":1,"offset":2,"bits":[7,9],"attributes":{"k":"v"}}}}}})");
    const auto again = rewritten(*d, folder.file("again.json"));
    EXPECT_EQ(again->name(), "m \"q\"\\");
    EXPECT_EQ(description(*again), description(*d));
}

TEST(NetlistWriter, ValuesThatWereSetComeBack) {
    TemporaryFolder folder;
    const auto d = blinker();
    set(find_one<Cell>(*d, "u_first"), "dont_touch", "1");
    set(find_one<Cell>(*d, "u_first"), "note", "0101");
    set(find_one<Cell>(*d, "u_first"), "spaced", "1  ");
    set(find_one<Cell>(*d, "u_first"), "bits", "00000000000000000000000000000001");
    // Inside a module that is used twice, and on bits of buses, pins and ports.
    set(d->object<Cell>(d->count<Cell>() - 1), "loc", "X1\tY\\1\nZ");
    set(find_one<Net>(*d, "start[6]"), "weight", "-4");
    set(find_one<Net>(*d, "clk"), "type", "clock");
    set(find_one<Pin>(*d, "u_first/d[2]"), "dont_touch", "yes");
    set(find_one<Port>(*d, "clk"), "loc", "P7");
    set(find_one<Port>(*d, "led[3]"), "slew", "fast");
    set(*d, "part", "xyz");
    set(*d, "origin", "8");
    const auto again = rewritten(*d, folder.file("again.json"));
    EXPECT_EQ(description(*again), description(*d));
}

TEST(NetlistWriter, AChangedParameterStaysAParameter) {
    TemporaryFolder folder;
    const auto d = make_design(R"({"modules":{"m":{"cells":{"c":{"type":"T",
        "parameters":{"W":"00000000000000000000000000000100","INIT":"0110"}}}}}})");
    set(d->object<Cell>(0), "W", "5");
    set(d->object<Cell>(0), "INIT", "1111");
    const auto again = rewritten(*d, folder.file("again.json"));
    const Netlist& n = again->netlist();
    EXPECT_EQ(n.sets[n.cells[0].attributes], 0u);
    EXPECT_EQ(n.names.text(n.value_in_set(n.cells[0].parameters, n.names.find("W"))),
              "00000000000000000000000000000101");
    EXPECT_EQ(get_property(again->object<Cell>(0), "INIT")->text, "1111");
}

TEST(NetlistWriter, TheChosenTopIsFoundAgain) {
    TemporaryFolder folder;
    const auto d =
        make_design(R"({"modules":{"a":{"attributes":{"top":1},"cells":{"u":{"type":"b"}}},"b":{}}})", "b");
    EXPECT_EQ(rewritten(*d, folder.file("again.json"))->name(), "b");
}

TEST(NetlistWriter, CompressesByTheName) {
    TemporaryFolder folder;
    const auto d = blinker();
    const auto again = rewritten(*d, folder.file("again.json.gz"));
    EXPECT_EQ(read_text(folder.file("again.json.gz")).substr(0, 2), "\x1f\x8b");
    EXPECT_EQ(description(*again), description(*d));
}

TEST(NetlistWriter, TheSynthesisToolReadsIt) {
    if (std::system("yosys -V >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "yosys is not installed";
    TemporaryFolder folder;
    const auto d = blinker();
    set(find_one<Cell>(*d, "u_first"), "dont_touch", "1");
    set(find_one<Cell>(*d, "u_first"), "note", "two words");
    set(find_one<Port>(*d, "led[3]"), "slew", "fast");
    write_netlist(*d, folder.file("n.json"), false);
    // The tool checks the module, finds its cells and the attributes that were set.
    const std::string command = "cd '" + folder.file("") +
                                "' && yosys -q -p 'read_json n.json; hierarchy -check -top blinker; "
                                "select -assert-count 5 blinker/c:*; select -assert-count 1 a:dont_touch=1; "
                                "select -assert-count 1 blinker/c:u_first a:note=two* %i' >log 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0) << read_text(folder.file("log"));
}

TEST(NetlistWriter, KeepsAFileUnlessToldToReplaceIt) {
    TemporaryFolder folder;
    const auto d = blinker();
    const std::string path = folder.write("old.json", "old");
    EXPECT_EQ(error_of([&] { write_netlist(*d, path, false); }),
              "Cannot write the netlist file '" + path +
                  "': it exists already; the option -force replaces it.");
    EXPECT_EQ(read_text(path), "old");
    ::chmod(path.c_str(), 0640);
    write_netlist(*d, path, true);
    EXPECT_EQ(read_netlist_file(path)->modules.size(), 4u);
    struct stat status {};
    ::stat(path.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    size_t files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.file("")))
        ++files;
    EXPECT_EQ(files, 1u);
}

TEST(NetlistWriter, FollowsALinkToTheFile) {
    TemporaryFolder folder;
    const std::string real = folder.write("real.json", "old");
    std::filesystem::create_symlink("real.json", folder.file("link.json"));
    write_netlist(*blinker(), folder.file("link.json"), true);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link.json")));
    EXPECT_EQ(read_netlist_file(real)->modules.size(), 4u);
}

TEST(NetlistWriter, NamesAPlaceThatCannotBeWritten) {
    TemporaryFolder folder;
    const auto d = blinker();
    EXPECT_EQ(error_of([&] { write_netlist(*d, folder.file("no/such.json"), true); }),
              "Cannot write the netlist file '" + folder.file("no/such.json") +
                  "': No such file or directory.");
    EXPECT_NE(error_of([&] { write_netlist(*d, folder.file(""), true); }).find("it is a directory"),
              std::string::npos);
    d->close();
    EXPECT_THROW(write_netlist(*d, folder.file("x.json"), true), Error);
    EXPECT_FALSE(std::filesystem::exists(folder.file("x.json")));
}
