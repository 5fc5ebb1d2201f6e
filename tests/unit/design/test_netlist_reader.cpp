#include "netlists.h"

#include <zlib.h>

using namespace design;

namespace {

constexpr std::string_view two_cells = R"({
  "creator": "hand",
  "modules": {
    "m": {
      "attributes": { "top": "00000000000000000000000000000001" },
      "ports": {
        "a": { "direction": "input", "bits": [ 2 ] },
        "y": { "direction": "output", "bits": [ 4 ] },
        "io": { "direction": "inout", "bits": [ 5 ] }
      },
      "cells": {
        "g1": { "hide_name": 0, "type": "NOT", "parameters": {}, "attributes": {},
                "port_directions": { "A": "input", "Y": "output" },
                "connections": { "A": [ 2 ], "Y": [ 3 ] } },
        "g2": { "hide_name": 0, "type": "AND", "parameters": { "N": 3 }, "attributes": { "src": "x.v:1" },
                "port_directions": { "A": "input", "B": "input", "Y": "output" },
                "connections": { "A": [ 3 ], "B": [ "1" ], "Y": [ 4 ] } }
      },
      "memories": { "ram": { "width": 8, "start_offset": 0, "size": 16, "attributes": {} } },
      "netnames": {
        "a": { "hide_name": 0, "bits": [ 2 ], "attributes": {} },
        "y": { "hide_name": 0, "bits": [ 4 ], "attributes": {} },
        "io": { "hide_name": 0, "bits": [ 5 ], "attributes": {} }
      }
    }
  }
})";

std::string with_cells(const std::string& cells) {
    return R"({"modules":{"m":{"ports":{},"cells":{)" + cells + R"(},"netnames":{}}}})";
}

} // namespace

TEST(NetlistReader, BuildsCellsNetsPinsAndPorts) {
    const auto d = make_design(two_cells);
    EXPECT_EQ(d->name(), "m");
    EXPECT_EQ(all_names<Cell>(*d), (std::vector<std::string>{"g1", "g2"}));
    EXPECT_EQ(all_names<Pin>(*d), (std::vector<std::string>{"g1/A", "g1/Y", "g2/A", "g2/B", "g2/Y"}));
    EXPECT_EQ(all_names<Port>(*d), (std::vector<std::string>{"a", "y", "io"}));
    EXPECT_EQ(find_one<Pin>(*d, "g1/A")->net()->name(), "a");
    EXPECT_EQ(find_one<Pin>(*d, "g2/B")->net()->name(), "<const1>");
    EXPECT_TRUE(find_one<Pin>(*d, "g2/B")->net()->is_constant());
    EXPECT_EQ(find_one<Port>(*d, "io")->direction(), Direction::inout);
    EXPECT_EQ(find_one<Port>(*d, "io")->net()->driver_count(), 1u);
    EXPECT_EQ(find_one<Port>(*d, "io")->net()->fanout(), 1u);
}

TEST(NetlistReader, NamesABitThatTheFileLeavesUnnamed) {
    const auto d = make_design(two_cells);
    const Net* net = find_one<Pin>(*d, "g1/Y")->net();
    EXPECT_EQ(net->name(), "$net3");
    EXPECT_EQ(net, find_one<Pin>(*d, "g2/A")->net());
    EXPECT_EQ(find_one<Net>(*d, "$net3"), net);
}

TEST(NetlistReader, TakesMembersInAnyOrder) {
    const auto d = make_design(R"({"modules":{"m":{
        "netnames":{"n":{"attributes":{},"bits":[7],"hide_name":1}},
        "cells":{"c":{"connections":{"B":[7],"A":["x"]},"port_directions":{"A":"input","B":"output"},"type":"T"}},
        "ports":{"p":{"bits":[7],"direction":"output"}}}},"creator":"z"})");
    EXPECT_EQ(find_one<Pin>(*d, "c/B")->net(), find_one<Port>(*d, "p")->net());
    EXPECT_EQ(find_one<Pin>(*d, "c/B")->direction(), Direction::output);
    EXPECT_EQ(find_one<Pin>(*d, "c/A")->direction(), Direction::input);
    EXPECT_EQ(find_one<Pin>(*d, "c/A")->net()->name(), "<constx>");
}

TEST(NetlistReader, PrefersThePortsNameThenAVisibleOne) {
    const auto d = make_design(R"({"modules":{"m":{
        "ports":{"p":{"direction":"input","bits":[2]}},
        "netnames":{
            "hidden":{"hide_name":1,"bits":[2,3,4],"attributes":{}},
            "plain":{"hide_name":0,"bits":[2,3],"attributes":{}},
            "p":{"hide_name":0,"bits":[2],"attributes":{}}}}}})");
    EXPECT_EQ(find_one<Net>(*d, "hidden[0]")->name(), "p");
    EXPECT_EQ(find_one<Net>(*d, "hidden[1]")->name(), "plain[1]");
    EXPECT_EQ(find_one<Net>(*d, "hidden[2]")->name(), "hidden[2]");
}

TEST(NetlistReader, NamesBitsAsDeclared) {
    const auto d = make_design(R"({"modules":{"m":{"ports":{
        "down":{"direction":"input","offset":4,"bits":[2,3]},
        "up":{"direction":"input","upto":1,"bits":[4,5]},
        "low":{"direction":"input","offset":-1,"bits":[6,7]},
        "one":{"direction":"input","offset":9,"bits":[8]}}}}})");
    EXPECT_EQ(all_names<Port>(*d),
              (std::vector<std::string>{"down[4]", "down[5]", "up[1]", "up[0]", "low[-1]", "low[0]", "one"}));
}

TEST(NetlistReader, ConnectsAPortThatACellLeavesOut) {
    const auto d = make_design(R"({"modules":{
        "leaf":{"attributes":{"blackbox":"00000000000000000000000000000001"},
            "ports":{"a":{"direction":"input","bits":[2,3]},"z":{"direction":"output","bits":[4]}}},
        "m":{"cells":{"u":{"type":"leaf","connections":{"a":[9]}}},"netnames":{}}}})");
    EXPECT_EQ(all_names<Pin>(*d), (std::vector<std::string>{"u/a[0]", "u/a[1]", "u/z"}));
    EXPECT_NE(find_one<Pin>(*d, "u/a[0]")->net(), nullptr);
    EXPECT_EQ(find_one<Pin>(*d, "u/a[1]")->net(), nullptr);
    EXPECT_EQ(find_one<Pin>(*d, "u/z")->net(), nullptr);
    EXPECT_EQ(find_one<Pin>(*d, "u/z")->direction(), Direction::output);
    EXPECT_TRUE(find_one<Cell>(*d, "u")->is_leaf());
}

TEST(NetlistReader, LeavesADirectionUnknownThatNothingTells) {
    const auto d = make_design(with_cells(R"("c":{"type":"T","connections":{"A":[2]}})"));
    EXPECT_EQ(find_one<Pin>(*d, "c/A")->direction(), Direction::unknown);
}

TEST(NetlistReader, AcceptsAnEmptyModule) {
    for (const char* body : {"{}", R"({"attributes":{},"ports":{},"cells":{},"netnames":{}})"}) {
        const auto d = make_design(std::string(R"({"modules":{"empty":)") + body + "}}");
        EXPECT_EQ(d->count<Cell>(), 0u);
        EXPECT_EQ(d->count<Port>(), 0u);
    }
}

TEST(NetlistReader, KeepsUnicodeAndEscapedNames) {
    const auto d =
        make_design(with_cells(R"("b\u00fcro \"x\"\\[1]":{"type":"T\\ü","connections":{"A b":["0"]}})"));
    EXPECT_EQ(d->object<Cell>(0)->name(), "b\u00fcro \"x\"\\[1]");
    EXPECT_EQ(d->netlist().names.text(d->object<Cell>(0)->ref_name().id), "T\\\u00fc");
    EXPECT_EQ(d->object<Pin>(0)->name(), "b\u00fcro \"x\"\\[1]/A b");
}

TEST(NetlistReader, ReadsAMillionCharacterName) {
    const std::string name(1000000, 'n');
    const auto d = make_design(with_cells("\"" + name + R"(":{"type":"T","connections":{}})"));
    EXPECT_EQ(d->object<Cell>(0)->name(), name);
    EXPECT_EQ(find_one<Cell>(*d, name), d->object<Cell>(0));
}

TEST(NetlistReader, TheLastOfEqualAttributesCounts) {
    const auto n = parse(R"({"modules":{"m":{"attributes":{"a":"1","b":"2","a":"3"}}}})");
    EXPECT_EQ(n->names.text(n->value_in_set(n->modules[0].attributes, n->names.find("a"))), "3");
    EXPECT_EQ(n->sets[n->modules[0].attributes], 2u);
}

TEST(NetlistReader, SharesEqualAttributeSets) {
    const auto n = parse(with_cells(R"("a":{"type":"T","attributes":{"k":"v","l":"w"}},
                                       "b":{"type":"T","attributes":{"k":"v","l":"w"}},
                                       "c":{"type":"T","attributes":{"k":"v"}})"));
    EXPECT_EQ(n->cells[0].attributes, n->cells[1].attributes);
    EXPECT_NE(n->cells[0].attributes, n->cells[2].attributes);
    EXPECT_EQ(n->shapes.size(), 1u);
}

TEST(NetlistReader, RefusesWhatStandsTwice) {
    const auto expect = [](const std::string& json, const char* text) {
        EXPECT_NE(error_of([&] { parse(json); }).find(text), std::string::npos) << json;
    };
    expect(R"({"modules":{"m":{},"m":{}}})", "the module 'm' stands twice");
    expect(with_cells(R"("c":{"type":"T"},"c":{"type":"T"})"), "the cell 'c' stands twice in the module 'm'");
    expect(with_cells(R"("c":{"type":"T","connections":{"A":[1],"A":[2]}})"),
           "the port 'A' is connected twice");
    expect(R"({"modules":{"m":{"netnames":{"n":{"bits":[1]},"n":{"bits":[2]}}}}})",
           "the net name 'n' stands twice");
    expect(R"({"modules":{"m":{"ports":{"p":{"direction":"input","bits":[1]},"p":{}}}}})",
           "the port 'p' stands twice");
}

TEST(NetlistReader, TheSameNamesMayStandInTwoModules) {
    EXPECT_NO_THROW(parse(R"({"modules":{
        "m":{"cells":{"c":{"type":"T"}},"netnames":{"n":{"bits":[1]}},"ports":{"p":{"direction":"input","bits":[1]}}},
        "o":{"cells":{"c":{"type":"T"}},"netnames":{"n":{"bits":[1]}},"ports":{"p":{"direction":"input","bits":[1]}}}
        }})"));
}

TEST(NetlistReader, RefusesMembersOfTheWrongType) {
    const auto expect = [](const std::string& json, const char* text) {
        EXPECT_NE(error_of([&] { parse(json); }).find(text), std::string::npos) << json;
    };
    expect("[]", "the netlist must be an object, not an array");
    expect("{}", "it has no member 'modules'");
    expect("", "the file is empty");
    expect("not JSON", "the netlist must be an object, not null");
    expect("<html>", "this is not JSON");
    expect(R"({"modules":[]})", "'modules' must be an object, not an array");
    expect(R"({"modules":{"m":3}})", "the module 'm' must be an object, not a number");
    expect(R"({"modules":{"m":{"ports":{"p":{"direction":"sideways","bits":[1]}}}}})",
           "must be 'input', 'output' or 'inout', not 'sideways'");
    expect(R"({"modules":{"m":{"ports":{"p":{"bits":[1]}}}}})", "the port 'p' has no 'direction'");
    expect(R"({"modules":{"m":{"ports":{"p":{"direction":"input","bits":1}}}}})",
           "list of bits must be an array");
    expect(with_cells(R"("c":{})"), "the cell 'c' has no 'type'");
    expect(with_cells(R"("c":{"type":7})"), "the type of a cell must be a string, not a number");
    expect(with_cells(R"("c":{"type":"T","connections":{"A":[-1]}})"), "from 0 to 2147483647, not -1");
    expect(with_cells(R"("c":{"type":"T","connections":{"A":["2"]}})"), "not \"2\"");
    expect(with_cells(R"("c":{"type":"T","parameters":{"A":[]}})"), "a value must be a number, not an array");
    expect(R"({"modules":{}} x)", "the text goes on after the end");
}

TEST(NetlistReader, FarBitNumbersCostNoMemory) {
    std::string bits;
    for (int i = 0; i < 1000; ++i)
        bits += (i ? "," : "") + std::to_string(2147483647 - i * 2000000);
    const auto n = parse(R"({"modules":{"m":{"netnames":{"n":{"bits":[)" + bits + "]}}}}}");
    EXPECT_EQ(n->modules[0].nets.count, 1000u);
    EXPECT_LT(n->memory(), 4u << 20);
}

TEST(NetlistReader, FarAndNearBitNumbersKeepTheirNets) {
    // The far number comes first and is near once enough bits are known.
    std::string bits = "5000";
    for (int i = 0; i < 6000; ++i)
        bits += "," + std::to_string(i);
    const auto n = parse(R"({"modules":{"m":{"netnames":{"n":{"bits":[)" + bits + "]}}}}}");
    EXPECT_EQ(n->modules[0].nets.count, 6000u);
    EXPECT_EQ(n->bits[0], n->bits[5001]);
}

TEST(NetlistReader, RefusesTheFileCutAtEveryByte) {
    const std::string whole(two_cells);
    for (size_t size = 0; size < whole.size(); ++size) {
        try {
            parse(std::string_view(whole).substr(0, size));
            ADD_FAILURE() << "accepted " << size << " bytes";
        } catch (const NetlistError& error) {
            EXPECT_LE(error.offset(), size);
            EXPECT_GE(error.line(), 1u);
        }
    }
    EXPECT_NO_THROW(parse(whole));
}

TEST(NetlistReader, SaysThatATruncatedFileEndsEarly) {
    EXPECT_EQ(
        error_of([] { parse(two_cells.substr(0, 40)); }),
        "The netlist 'test.json' is refused at line 4, byte offset 40: the text ends early; the name of a "
        "member was expected, in double quotes.");
}

TEST(NetlistReader, SurvivesOneWrongByteAnywhere) {
    std::string text(two_cells);
    for (size_t i = 0; i < text.size(); ++i)
        for (const char wrong : {'"', '}', ']', ',', '\\', '9', '\0', '\xff'}) {
            const char right = std::exchange(text[i], wrong);
            try {
                parse(text);
            } catch (const Error&) {
            }
            text[i] = right;
        }
}

TEST(NetlistReader, ReadsACompressedFile) {
    TemporaryFolder folder;
    const std::string path = folder.file("n.json.gz");
    const gzFile zip = gzopen(path.c_str(), "wb");
    gzwrite(zip, two_cells.data(), static_cast<unsigned>(two_cells.size()));
    gzclose(zip);
    EXPECT_EQ(read_netlist_file(path)->cells.size(), 2u);

    const std::string bytes = read_text(path);
    folder.write("cut.json.gz", bytes.substr(0, bytes.size() / 2));
    EXPECT_EQ(error_of([&] { read_netlist_file(folder.file("cut.json.gz")); }),
              "Cannot read the netlist file '" + folder.file("cut.json.gz") +
                  "': the compressed data end early.");
    std::string damaged = bytes;
    damaged[20] = static_cast<char>(damaged[20] ^ 0x55);
    folder.write("bad.json.gz", damaged);
    EXPECT_THROW(read_netlist_file(folder.file("bad.json.gz")), Error);
}

TEST(NetlistReader, NamesAFileThatCannotBeRead) {
    TemporaryFolder folder;
    EXPECT_EQ(error_of([&] { read_netlist_file(folder.file("nosuch.json")); }),
              "Cannot read the netlist file '" + folder.file("nosuch.json") +
                  "': No such file or directory.");
    EXPECT_EQ(error_of([&] { read_netlist_file(folder.file("")); }),
              "Cannot read the netlist file '" + folder.file("") + "': it is a directory.");
}

TEST(NetlistReader, ReadsWhatTheSynthesisToolWrites) {
    const auto d = blinker();
    EXPECT_EQ(d->name(), "blinker");
    EXPECT_EQ(d->netlist().modules.size(), 4u);
    const Cell* first = find_one<Cell>(*d, "u_first");
    EXPECT_FALSE(first->is_leaf());
    EXPECT_TRUE(find_one<Cell>(*d, "io/buf[0]")->is_leaf());
    EXPECT_TRUE(find_one<Cell>(*d, "u_empty")->is_leaf());
    EXPECT_EQ(find_one<Port>(*d, "start[7]")->net(), find_one<Pin>(*d, "u_first/d[3]")->net());
    EXPECT_EQ(find_one<Net>(*d, "u_second/clk")->name(), "u_second/clk");
}
