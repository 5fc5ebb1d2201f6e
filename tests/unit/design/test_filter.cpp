#include "design/Filter.h"

#include "netlists.h"

using namespace design;

namespace {

constexpr std::string_view three_cells = R"({"modules":{"m":{"cells":{
    "a":{"type":"LUT4","parameters":{"INIT":"0110","WIDTH":"00000000000000000000000000000100"},
         "attributes":{"src":"x.v:10","dont_touch":"00000000000000000000000000000001","odd name":"v"},
         "port_directions":{"I":"input","O":"output"},"connections":{"I":[2,3],"O":[4]}},
    "b":{"type":"LUT2","parameters":{"WIDTH":"00000000000000000000000000000010"},
         "port_directions":{"I":"input","O":"output"},"connections":{"I":[4],"O":[5]}},
    "c":{"type":"FDRE","parameters":{"INIT":"1 "},
         "port_directions":{"D":"input","Q":"output"},"connections":{"D":[4],"Q":[2]}}
    }}}})";

std::string accepted(const Design& d, std::string_view expression, Filter::Options options = {}) {
    Filter filter(std::string(expression), options);
    std::string result;
    for (uint32_t i = 0; i < d.count<Cell>(); ++i)
        if (filter.matches(d.object<Cell>(i)))
            result += d.object<Cell>(i)->name();
    return result;
}

std::string refusal(const Design& d, std::string_view expression) {
    return error_of([&] { accepted(d, expression); });
}

// The words for a malformed expression, without its severity and id.
std::string fault(std::string_view expression) {
    try {
        Filter filter{std::string(expression)};
    } catch (const HEXError& refused) {
        const std::string text = refused.what();
        return text.substr(text.find("] ") + 2);
    }
    return "accepted";
}

} // namespace

TEST(Filter, ComparesTextsAndNumbers) {
    const auto d = make_design(three_cells);
    EXPECT_EQ(accepted(*d, "ref_name == LUT4"), "a");
    EXPECT_EQ(accepted(*d, "ref_name != LUT4"), "bc");
    EXPECT_EQ(accepted(*d, "ref_name =~ LUT*"), "ab");
    EXPECT_EQ(accepted(*d, "ref_name !~ LUT*"), "c");
    EXPECT_EQ(accepted(*d, "fanout > 1"), "a");
    EXPECT_EQ(accepted(*d, "fanout >= 1"), "ac");
    EXPECT_EQ(accepted(*d, "fanout < 1"), "b");
    EXPECT_EQ(accepted(*d, "fanout <= 1.5"), "bc");
    EXPECT_EQ(accepted(*d, "fanout == 2"), "a");
    EXPECT_EQ(accepted(*d, "pin_count != 2"), "a");
    EXPECT_EQ(accepted(*d, "pin_count =~ 3*"), "a");
    EXPECT_EQ(accepted(*d, "name > a"), "bc");
}

TEST(Filter, JoinsWithTheUsualPrecedence) {
    const auto d = make_design(three_cells);
    EXPECT_EQ(accepted(*d, "ref_name =~ LUT* && fanout > 1"), "a");
    EXPECT_EQ(accepted(*d, "name==c||name==b&&fanout>1"), "c");
    EXPECT_EQ(accepted(*d, "(name==c||name==a)&&fanout>1"), "a");
    EXPECT_EQ(accepted(*d, "!(name == a) && !name==b"), "c");
    EXPECT_EQ(accepted(*d, "!!is_leaf"), "abc");
    EXPECT_EQ(accepted(*d, "!is_leaf || !(name == b || name == c)"), "a");
    EXPECT_EQ(accepted(*d, "name == a && is_leaf || name == b && is_leaf || name == c && !is_leaf"), "ab");
}

// All combinations of three variables against the same expression in C++.
TEST(Filter, EvaluatesLikeItsTruthTable) {
    for (int bits = 0; bits < 8; ++bits) {
        const bool x = bits & 1, y = bits & 2, z = bits & 4;
        const auto flag = [](bool b) { return b ? R"("00000000000000000000000000000001")" : R"("0")"; };
        const auto d =
            make_design(std::string(R"({"modules":{"m":{"cells":{"q":{"type":"T","attributes":{"x":)") +
                        flag(x) + ",\"y\":" + flag(y) + ",\"z\":" + flag(z) + "}}}}}}");
        const auto holds = [&](const char* expression) { return accepted(*d, expression) == "q"; };
        EXPECT_EQ(holds("x && y || z"), (x && y) || z);
        EXPECT_EQ(holds("x || y && z"), x || (y && z));
        EXPECT_EQ(holds("!x && (y || !z)"), !x && (y || !z));
        EXPECT_EQ(holds("!(x || y) || !(y && z)"), !(x || y) || !(y && z));
        EXPECT_EQ(holds("x && !y && z || !x && y"), (x && !y && z) || (!x && y));
        EXPECT_EQ(holds("((x||y)&&(y||z))&&!(x&&y&&z)"), ((x || y) && (y || z)) && !(x && y && z));
    }
}

TEST(Filter, TestsOfAllCostsMayBeJoined) {
    const auto d = make_design(three_cells);
    EXPECT_EQ(accepted(*d, "name =~ * && fanout >= 1 && ref_name =~ *"), "ac");
    EXPECT_EQ(accepted(*d, "name =~ [ab]* && fanout >= 1 && ref_name =~ LUT*"), "");
    EXPECT_EQ(accepted(*d, "(name != a && (fanout < 2 && ref_name != FDRE)) && WIDTH == 2"), "b");
    EXPECT_EQ(accepted(*d, "name != a && !(fanout < 1 && ref_name != FDRE)"), "c");
    EXPECT_NE(refusal(*d, "name == nosuch && fanuot > 1").find("'fanout'"), std::string::npos);
}

TEST(Filter, ReadsAttributesAndParametersOfTheFile) {
    const auto d = make_design(three_cells);
    EXPECT_EQ(accepted(*d, "WIDTH == 4"), "a");
    EXPECT_EQ(accepted(*d, "WIDTH > 1"), "ab");
    EXPECT_EQ(accepted(*d, "WIDTH != 4"), "bc");
    EXPECT_EQ(accepted(*d, "WIDTH"), "ab");
    EXPECT_EQ(accepted(*d, "INIT == 1"), "c");
    EXPECT_EQ(accepted(*d, "src =~ x.v:*"), "a");
    EXPECT_EQ(accepted(*d, "src !~ x.v:*"), "bc");
    EXPECT_EQ(accepted(*d, "\"odd name\" == v"), "a");
    EXPECT_EQ(accepted(*d, "dont_touch"), "a");
    EXPECT_EQ(accepted(*d, "dont_touch == false"), "bc");
}

TEST(Filter, SeesValuesThatAreSet) {
    const auto d = make_design(three_cells);
    const ObjectRef b(find_one<Cell>(*d, "b"));
    PropertyChange change = set_property({&b, 1}, "dont_touch", "true");
    set_property({&b, 1}, "note", "00000000000000000000000000000001");
    EXPECT_EQ(accepted(*d, "dont_touch"), "ab");
    EXPECT_EQ(accepted(*d, "note == 00000000000000000000000000000001"), "b");
    change.undo();
    EXPECT_EQ(accepted(*d, "dont_touch == 1"), "a");
}

TEST(Filter, ValuesMayBeQuoted) {
    const auto d = make_design(
        R"j({"modules":{"m":{"cells":{"x y":{"type":"T"},"p(q)":{"type":"T"},"a\"b":{"type":"T"}}}}})j");
    EXPECT_EQ(accepted(*d, "name == \"x y\""), "x y");
    EXPECT_EQ(accepted(*d, "name == 'x y'"), "x y");
    EXPECT_EQ(accepted(*d, "name == {x y}"), "x y");
    EXPECT_EQ(accepted(*d, "name == 'p(q)'"), "p(q)");
    EXPECT_EQ(accepted(*d, "name == \"a\\\"b\""), "a\"b");
    EXPECT_EQ(accepted(*d, "name == \"\""), "");
}

TEST(Filter, NocaseAndRegexpAreOptions) {
    const auto d = make_design(three_cells);
    EXPECT_EQ(accepted(*d, "ref_name == lut4", {false, true}), "a");
    EXPECT_EQ(accepted(*d, "ref_name =~ lut*", {false, true}), "ab");
    EXPECT_EQ(accepted(*d, "ref_name =~ \"LUT[0-3]\"", {true, false}), "b");
    EXPECT_EQ(accepted(*d, "ref_name =~ lut.", {true, true}), "ab");
}

TEST(Filter, ComparesEnumsByTheirNames) {
    const auto d = make_design(three_cells);
    Filter filter("direction == out || direction =~ in && bit == 1");
    std::vector<std::string> found;
    for (uint32_t i = 0; i < d->count<Pin>(); ++i)
        if (filter.matches(d->object<Pin>(i)))
            found.push_back(d->object<Pin>(i)->name());
    EXPECT_EQ(found, (std::vector<std::string>{"a/I[1]", "a/O", "b/O", "c/Q"}));
    EXPECT_NE(error_of([&] {
                  Filter("direction == up").matches(d->object<Pin>(0));
              }).find("one of 'unknown', 'in', 'out', 'inout'"),
              std::string::npos);
}

TEST(Filter, TellsThePositionAndWhatWasExpected) {
    EXPECT_EQ(fault("name == "),
              "The filter expression 'name == ' is wrong at character 9: a value was expected, not the end.");
    EXPECT_EQ(fault(""),
              "The filter expression '' is wrong at character 1: a property name was expected, not "
              "the end.");
    EXPECT_NE(fault("name = a").find("at character 6: one of ==, !=, =~, !~, <, <=, >, >= was expected"),
              std::string::npos);
    EXPECT_NE(fault("name == a b").find("at character 11: '&&', '||' or the end was expected, not 'b'"),
              std::string::npos);
    EXPECT_NE(fault("(name == a").find("a ')' for the '(' at character 1 was expected, not the end"),
              std::string::npos);
    EXPECT_NE(fault("name == a)").find("at character 10: '&&', '||' or the end was expected, not ')'"),
              std::string::npos);
    EXPECT_NE(fault("name == a &&").find("at character 13: a property name"), std::string::npos);
    EXPECT_NE(fault("()").find("at character 2: a property name was expected, not ')'"), std::string::npos);
    EXPECT_NE(fault("name == \"a").find("a closing \" for the one at character 9"), std::string::npos);
    EXPECT_NE(fault("name == {a").find("a closing } for the one at character 9"), std::string::npos);
    EXPECT_NE(fault("name & is_leaf").find("'&&', '||' or the end"), std::string::npos);
}

TEST(Filter, RefusesANumberThatIsNone) {
    const auto d = make_design(three_cells);
    EXPECT_EQ(refusal(*d, "fanout > many"),
              "'many' cannot be compared with the property 'fanout', which is of the "
              "type int; a number was expected.");
    EXPECT_NE(refusal(*d, "is_leaf == maybe").find("takes a bool"), std::string::npos);
}

TEST(Filter, SuggestsTheNearestProperty) {
    const auto d = make_design(three_cells);
    EXPECT_EQ(refusal(*d, "fanuot > 3"),
              "No object of the class 'cell' has a property 'fanuot'. Did you mean 'fanout'?");
    EXPECT_NE(refusal(*d, "WIDHT > 3").find("'WIDTH'"), std::string::npos);
}

TEST(Filter, NestingOfAnyDepthIsSafe) {
    const auto d = make_design(three_cells);
    const std::string open(100000, '('), close(100000, ')');
    EXPECT_EQ(accepted(*d, open + "name == a" + close), "a");
    EXPECT_NE(fault(open + "name == a").find("a ')' for the '('"), std::string::npos);
    EXPECT_EQ(accepted(*d, std::string(100001, '!') + "(name == a)"), "bc");
    std::string chain = "name == a";
    for (int i = 0; i < 20000; ++i)
        chain += " || (name == x && (fanout > 1";
    chain += std::string(40000, ')');
    EXPECT_EQ(accepted(*d, chain), "a");
}
