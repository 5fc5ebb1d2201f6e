#include "design/Query.h"

#include "netlists.h"

using namespace design;

namespace {

using Names = std::vector<std::string>;

constexpr std::string_view tree = R"({"modules":{
    "top":{
        "ports":{"clk":{"direction":"input","bits":[2]},"d":{"direction":"input","bits":[3,4]},
                 "q":{"direction":"output","bits":[5,6]}},
        "cells":{
            "u0":{"type":"half","port_directions":{"c":"input","i":"input","o":"output"},
                  "connections":{"c":[2],"i":[3],"o":[5]}},
            "u1":{"type":"half","port_directions":{"c":"input","i":"input","o":"output"},
                  "connections":{"c":[2],"i":[4],"o":[6]}},
            "g*1":{"type":"BUF","port_directions":{"A":"input"},"connections":{"A":["0"]}},
            "g/x":{"type":"BUF","port_directions":{"A":"input"},"connections":{"A":["1"]}}},
        "netnames":{"clk":{"hide_name":0,"bits":[2]},"d":{"hide_name":0,"bits":[3,4]},
                    "q":{"hide_name":0,"bits":[5,6]},"again":{"hide_name":0,"bits":[6]}}},
    "half":{
        "ports":{"c":{"direction":"input","bits":[2]},"i":{"direction":"input","bits":[3]},
                 "o":{"direction":"output","bits":[4]}},
        "cells":{
            "r":{"type":"FD","port_directions":{"C":"input","D":"input","Q":"output"},
                 "connections":{"C":[2],"D":[3],"Q":[7]}},
            "Lut":{"type":"LUT2","port_directions":{"I":"input","O":"output"},"connections":{"I":[7,3],"O":[4]}}},
        "netnames":{"c":{"hide_name":0,"bits":[2]},"i":{"hide_name":0,"bits":[3]},
                    "o":{"hide_name":0,"bits":[4]},"m":{"hide_name":0,"bits":[7]}}}}})";

template <class T>
Names find(const Design& d, Names patterns, bool hierarchical = false, std::string filter = {}) {
    return names(find_objects<T>(d, {hierarchical, false, false, std::move(filter), std::move(patterns)}));
}

template <class T>
Names find_regexp(const Design& d, std::string pattern, bool hierarchical = false, bool nocase = false) {
    return names(find_objects<T>(d, {hierarchical, true, nocase, {}, {std::move(pattern)}}));
}

template <class T>
Names related(const ObjectRef& object, Names patterns = {}, std::string filter = {}) {
    return names(
        related_objects<T>({&object, 1}, {false, false, false, std::move(filter), std::move(patterns)}));
}

} // namespace

TEST(Query, WithoutPatternsGivesTheTopLevel) {
    const auto d = make_design(tree);
    EXPECT_EQ(find<Cell>(*d, {}), (Names{"u0", "u1", "g*1", "g/x"}));
    EXPECT_EQ(find<Port>(*d, {}), (Names{"clk", "d[0]", "d[1]", "q[0]", "q[1]"}));
    EXPECT_EQ(find<Net>(*d, {}).size(), 7u);
    EXPECT_EQ(find<Pin>(*d, {}), (Names{"u0/c", "u0/i", "u0/o", "u1/c", "u1/i", "u1/o", "g*1/A", "g/x/A"}));
}

TEST(Query, HierarchicalGivesAllLevels) {
    const auto d = make_design(tree);
    EXPECT_EQ(find<Cell>(*d, {}, true),
              (Names{"u0", "u1", "g*1", "g/x", "u0/r", "u0/Lut", "u1/r", "u1/Lut"}));
    EXPECT_EQ(find<Cell>(*d, {"r"}, true), (Names{"u0/r", "u1/r"}));
    EXPECT_EQ(find<Cell>(*d, {"*u*"}, true), (Names{"u0", "u1", "u0/Lut", "u1/Lut"}));
    EXPECT_EQ(find<Cell>(*d, {"u1/*"}, true), (Names{"u1/r", "u1/Lut"}));
    EXPECT_EQ(find<Net>(*d, {"m"}, true), (Names{"u0/m", "u1/m"}));
    EXPECT_EQ(find<Pin>(*d, {"D"}, true), (Names{"u0/r/D", "u1/r/D"}));
    EXPECT_EQ(find<Pin>(*d, {"u?/Lut/I*"}, true).size(), 4u);
}

TEST(Query, AGlobGoesDownLevelByLevel) {
    const auto d = make_design(tree);
    EXPECT_EQ(find<Cell>(*d, {"u*"}), (Names{"u0", "u1"}));
    EXPECT_EQ(find<Cell>(*d, {"u*/r"}), (Names{"u0/r", "u1/r"}));
    EXPECT_EQ(find<Cell>(*d, {"u1/*"}), (Names{"u1/r", "u1/Lut"}));
    EXPECT_EQ(find<Cell>(*d, {"*/*/*"}), (Names{}));
    EXPECT_EQ(find<Cell>(*d, {"g/?"}), (Names{"g/x"}));
    EXPECT_EQ(find<Net>(*d, {"u0/?"}), (Names{"u0/c", "u0/i", "u0/o", "u0/m"}));
    EXPECT_EQ(find<Pin>(*d, {"u0/*/O"}), (Names{"u0/Lut/O"}));
    EXPECT_EQ(find<Pin>(*d, {"g*/A"}), (Names{"g*1/A", "g/x/A"}));
}

TEST(Query, APlainNameIsTriedBeforeAPattern) {
    const auto d = make_design(tree);
    EXPECT_EQ(find<Cell>(*d, {"g*1"}), (Names{"g*1"}));
    EXPECT_EQ(find<Cell>(*d, {"g\\*1"}), (Names{"g*1"}));
    EXPECT_EQ(find<Net>(*d, {"d[1]"}), (Names{"d[1]"}));
    EXPECT_EQ(find<Net>(*d, {"d[*]"}), (Names{"d[0]", "d[1]"}));
    EXPECT_EQ(find<Net>(*d, {"d"}), (Names{"d[0]", "d[1]"}));
    EXPECT_EQ(find<Pin>(*d, {"u0/Lut/I"}), (Names{"u0/Lut/I[0]", "u0/Lut/I[1]"}));
    EXPECT_EQ(find<Net>(*d, {"<const0>"}), (Names{"<const0>"}));
}

TEST(Query, FindsANetByItsOtherNames) {
    const auto d = make_design(tree);
    EXPECT_EQ(find<Net>(*d, {"again"}), (Names{"q[1]"}));
    EXPECT_EQ(find<Net>(*d, {"ag*"}), (Names{"q[1]"}));
    EXPECT_EQ(find<Net>(*d, {"again", "q*"}), (Names{"q[1]", "q[0]"}));
}

TEST(Query, ResultsKeepTheOrderOfPatternsAndStandOnce) {
    const auto d = make_design(tree);
    EXPECT_EQ(find<Cell>(*d, {"u1", "u*", "g/x", "u0"}), (Names{"u1", "u0", "g/x"}));
    EXPECT_EQ(find<Cell>(*d, {"u1/r", "*"}, true).size(), 8u);
    EXPECT_EQ(find<Cell>(*d, {"u1/r", "*"}, true)[0], "u1/r");
    EXPECT_EQ(find<Cell>(*d, {"*", "u1/r"}, true).size(), 8u);
}

TEST(Query, ManyResultsStandOnceToo) {
    std::string json = R"({"modules":{"m":{"cells":{)";
    for (int i = 0; i < 100; ++i)
        json += (i ? ",\"c" : "\"c") + std::to_string(i) + R"(":{"type":"T"})";
    const auto d = make_design(json + "}}}}");
    EXPECT_EQ(find<Cell>(*d, {"c1*", "c*", "*", "c5"}).size(), 100u);
    EXPECT_EQ(find<Cell>(*d, {"*", "c*"}, true).size(), 100u);
}

TEST(Query, RegexpsSeeTheTopOrPaths) {
    const auto d = make_design(tree);
    EXPECT_EQ(find_regexp<Cell>(*d, "u[0-9]"), (Names{"u0", "u1"}));
    EXPECT_EQ(find_regexp<Cell>(*d, "u1/.*"), (Names{"u1/r", "u1/Lut"}));
    EXPECT_EQ(find_regexp<Cell>(*d, "r|Lut", true), (Names{"u0/r", "u0/Lut", "u1/r", "u1/Lut"}));
    EXPECT_EQ(find_regexp<Cell>(*d, "LUT", true, true), (Names{"u0/Lut", "u1/Lut"}));
    EXPECT_EQ(find_regexp<Net>(*d, "d\\[[01]\\]"), (Names{"d[0]", "d[1]"}));
}

TEST(Query, NocaseMatchesEitherCase) {
    const auto d = make_design(tree);
    EXPECT_EQ(names(find_objects<Cell>(*d, {false, false, true, {}, {"U0/lut"}})), (Names{"u0/Lut"}));
    EXPECT_EQ(find<Cell>(*d, {"u0/lut"}), (Names{}));
}

TEST(Query, TellsWhatMatchedNothing) {
    const auto d = make_design(tree);
    std::vector<std::string> unmatched;
    find_objects<Cell>(*d, {false, false, false, {}, {"u0", "nosuch", "x*"}}, &unmatched);
    EXPECT_EQ(unmatched, (Names{"nosuch", "x*"}));
}

TEST(Query, AFilterNarrows) {
    const auto d = make_design(tree);
    EXPECT_EQ(find<Cell>(*d, {}, true, "ref_name == FD"), (Names{"u0/r", "u1/r"}));
    EXPECT_EQ(find<Net>(*d, {}, true, "fanout >= 2 && !is_constant"), (Names{"clk", "u0/i", "u1/i"}));
    EXPECT_EQ(find<Port>(*d, {}, false, "direction == out"), (Names{"q[0]", "q[1]"}));
    EXPECT_THROW(find<Cell>(*d, {"nosuch"}, false, "no_property == 1"), Error);
}

TEST(Query, RelatesObjects) {
    const auto d = make_design(tree);
    const ObjectRef u0(find_one<Cell>(*d, "u0")), clk(find_one<Net>(*d, "clk")),
        r(find_one<Cell>(*d, "u0/r"));
    EXPECT_EQ(related<Pin>(u0), (Names{"u0/c", "u0/i", "u0/o"}));
    EXPECT_EQ(related<Net>(u0), (Names{"clk", "d[0]", "q[0]"}));
    EXPECT_EQ(related<Cell>(u0), (Names{"u0/r", "u0/Lut"}));
    EXPECT_EQ(related<Cell>(r), (Names{}));
    EXPECT_EQ(related<Cell>(clk), (Names{"u0", "u1"}));
    EXPECT_EQ(related<Pin>(clk), (Names{"u0/c", "u1/c"}));
    EXPECT_EQ(related<Port>(clk), (Names{"clk"}));
    EXPECT_EQ(related<Port>(find_one<Net>(*d, "u0/c")), (Names{}));
    EXPECT_EQ(related<Net>(find_one<Port>(*d, "q[1]")), (Names{"q[1]"}));
    EXPECT_EQ(related<Net>(find_one<Pin>(*d, "u0/r/Q")), (Names{"u0/m"}));
    EXPECT_EQ(related<Cell>(find_one<Pin>(*d, "u0/r/Q")), (Names{"u0/r"}));
    EXPECT_EQ(related<Cell>(*d), (Names{"u0", "u1", "g*1", "g/x"}));
    EXPECT_EQ(related<Pin>(u0, {"?", "nosuch"}, "direction == out"), (Names{"u0/o"}));
    EXPECT_EQ(related<Cell>(u0, {"u0/r"}), (Names{"u0/r"}));
}

TEST(Query, RelatedObjectsOfSeveralStandOnce) {
    const auto d = make_design(tree);
    const ObjectRef both[] = {find_one<Cell>(*d, "u0"), find_one<Cell>(*d, "u1")};
    EXPECT_EQ(names(related_objects<Net>(both, {})), (Names{"clk", "d[0]", "q[0]", "d[1]", "q[1]"}));
}

TEST(Query, RefusesARelationThatThereIsNot) {
    const auto d = make_design(tree);
    EXPECT_EQ(error_of([&] { related<Port>(find_one<Cell>(*d, "u0")); }),
              "There are no ports of a cell ('u0').");
    EXPECT_THROW(related<Pin>(find_one<Port>(*d, "clk")), Error);
}

TEST(Query, DeepGlobsTakeNoExponentialTime) {
    std::string json = R"({"modules":{)";
    for (int i = 0; i < 40; ++i)
        json += (i ? ",\"m" : "\"m") + std::to_string(i) + R"(":{"cells":{"a/a":{"type":"m)" +
                std::to_string(i + 1) + "\"}}}";
    const auto d = make_design(json + "}}");
    std::string pattern = "*";
    for (int i = 1; i < 80; ++i)
        pattern += "/*";
    EXPECT_EQ(find<Cell>(*d, {pattern}).size(), 1u);
}
