#include "netlists.h"

using namespace design;

namespace {

// A chain of modules m0..m<levels>, each holding `width` instances of the next.
std::string chain(int levels, int width) {
    std::string json = R"({"modules":{)";
    for (int i = 0; i <= levels; ++i) {
        json += (i ? ",\"m" : "\"m") + std::to_string(i) + R"(":{"cells":{)";
        for (int k = 0; i < levels && k < width; ++k)
            json +=
                (k ? ",\"u" : "\"u") + std::to_string(k) + R"(":{"type":"m)" + std::to_string(i + 1) + "\"}";
        json += "}}";
    }
    return json + "}}";
}

std::string deep_name(int levels) {
    std::string name;
    for (int i = 0; i < levels; ++i)
        name += i ? "/u0" : "u0";
    return name;
}

} // namespace

TEST(Design, ChoosesTheTopByAttributeThenByUse) {
    EXPECT_EQ(blinker()->name(), "blinker");
    EXPECT_EQ(make_design(chain(3, 1))->name(), "m0");
    EXPECT_EQ(make_design(chain(3, 1), "m2")->name(), "m2");
    EXPECT_EQ(make_design(R"({"modules":{"a":{"attributes":{"top":1}},"b":{}}})")->name(), "a");
    EXPECT_EQ(make_design(R"({"modules":{"a":{"attributes":{"blackbox":1}},"b":{}}})")->name(), "b");
}

TEST(Design, ListsCandidatesWhereTheTopIsNotClear) {
    EXPECT_EQ(error_of([] { make_design(R"({"modules":{"a":{},"b":{}}})"); }),
              "The netlist has no single top module; candidates are 'a', 'b'. Name one with -top.");
    EXPECT_EQ(error_of([] { make_design(R"({"modules":{"a":{},"b":{}}})", "c"); }),
              "The netlist has no module 'c'; candidates are 'a', 'b'.");
    EXPECT_EQ(error_of([] { make_design(R"({"modules":{}})"); }),
              "The netlist holds no module, so there is no top module to choose.");
}

TEST(Design, UnfoldsEachInstanceOfAModule) {
    const auto d = make_design(chain(3, 4));
    EXPECT_EQ(d->count<Cell>(), 4u + 16u + 64u);
    EXPECT_EQ(d->scopes().size(), 1u + 4u + 16u + 64u);
    const Cell* cell = find_one<Cell>(*d, "u3/u1/u2");
    EXPECT_EQ(cell->name(), "u3/u1/u2");
    EXPECT_EQ(cell->depth(), 2u);
    EXPECT_EQ(cell->parent(), find_one<Cell>(*d, "u3/u1"));
    EXPECT_EQ(cell->parent()->parent()->parent(), nullptr);
}

TEST(Design, EveryObjectIsFoundByItsName) {
    const auto d = blinker();
    for (uint32_t i = 0; i < d->count<Cell>(); ++i)
        EXPECT_EQ(find_one<Cell>(*d, d->object<Cell>(i)->name()), d->object<Cell>(i));
    for (uint32_t i = 0; i < d->count<Net>(); ++i)
        EXPECT_EQ(find_one<Net>(*d, d->object<Net>(i)->name()), d->object<Net>(i));
    for (uint32_t i = 0; i < d->count<Pin>(); ++i)
        EXPECT_EQ(find_one<Pin>(*d, d->object<Pin>(i)->name()), d->object<Pin>(i));
    for (uint32_t i = 0; i < d->count<Port>(); ++i)
        EXPECT_EQ(find_one<Port>(*d, d->object<Port>(i)->name()), d->object<Port>(i));
}

TEST(Design, NetsKnowTheirPinsAndPinsTheirNets) {
    const auto d = blinker();
    size_t connected = 0;
    for (uint32_t i = 0; i < d->count<Net>(); ++i) {
        const Net* net = d->object<Net>(i);
        EXPECT_EQ(net->index(), i);
        for (uint32_t p = 0; p < net->pin_count(); ++p, ++connected)
            EXPECT_EQ(net->pin(p)->net(), net);
    }
    for (uint32_t i = 0; i < d->count<Pin>(); ++i)
        connected -= d->object<Pin>(i)->net() != nullptr;
    EXPECT_EQ(connected, 0u);
}

TEST(Design, CountsLoadsAndDrivers) {
    const auto d = blinker();
    const Net* clock = find_one<Port>(*d, "clk")->net();
    EXPECT_EQ(clock->fanout(), 2u);
    EXPECT_EQ(clock->driver_count(), 1u);
    // The carry of the second stage is left unconnected, that of the first drives the buffer.
    EXPECT_EQ(find_one<Pin>(*d, "u_second/carry")->net(), nullptr);
    EXPECT_EQ(find_one<Pin>(*d, "u_first/carry")->net()->fanout(), 1u);
    EXPECT_EQ(find_one<Cell>(*d, "u_empty")->fanout(), 0u);
}

TEST(Design, AliasesLeadToTheSameNet) {
    const auto d = blinker();
    Net* net = find_one<Net>(*d, "odd/name.with[2]");
    EXPECT_EQ(net, find_one<Pin>(*d, "io/buf[0]/O")->net());
    EXPECT_EQ(net, find_one<Port>(*d, "fixed[1]")->net());
    EXPECT_EQ(net->name(), "fixed[1]");
}

TEST(Design, ABusNamedWithoutIndexMeansAllItsBits) {
    const auto d = blinker();
    std::vector<Port*> ports;
    d->find<Port>("start", [&](Port* port) { ports.push_back(port); });
    EXPECT_EQ(names(ports), (std::vector<std::string>{"start[4]", "start[5]", "start[6]", "start[7]"}));
    ports.clear();
    d->find<Port>("start[3]", [&](Port* port) { ports.push_back(port); });
    d->find<Port>("start[04]", [&](Port* port) { ports.push_back(port); });
    d->find<Port>("clk[0]", [&](Port* port) { ports.push_back(port); });
    EXPECT_TRUE(ports.empty());
}

TEST(Design, ASlashMayStandInNames) {
    const auto d = make_design(R"({"modules":{
        "m":{"cells":{"a":{"type":"n"},"a/b":{"type":"n"},"a/b/c":{"type":"T","connections":{"x/y":["0"]}}}},
        "n":{"cells":{"b":{"type":"o"},"c":{"type":"T"},"b/c":{"type":"T"}}},
        "o":{"cells":{"c":{"type":"T"}}}}})");
    std::vector<Cell*> found;
    d->find<Cell>("a/b/c", [&](Cell* cell) { found.push_back(cell); });
    EXPECT_EQ(found.size(), 4u);
    for (const Cell* cell : found)
        EXPECT_EQ(cell->name(), "a/b/c");
    EXPECT_EQ(find_one<Pin>(*d, "a/b/c/x/y")->cell()->parent(), nullptr);
}

TEST(Design, DeepHierarchyHasFullNames) {
    const auto d = make_design(chain(5000, 1));
    EXPECT_EQ(d->count<Cell>(), 5000u);
    EXPECT_EQ(d->object<Cell>(4999)->name(), deep_name(5000));
    EXPECT_EQ(find_one<Cell>(*d, deep_name(5000)), d->object<Cell>(4999));
}

TEST(Design, RefusesAHierarchyThatNeverEnds) {
    EXPECT_EQ(error_of([] {
                  make_design(R"({"modules":{"t":{"cells":{"u":{"type":"a"}}},
                      "a":{"cells":{"u":{"type":"b"}}},"b":{"cells":{"u":{"type":"a"}}}}})");
              }),
              "The hierarchy has a loop: 'a' holds 'b' holds 'a'.");
    EXPECT_NE(error_of([] {
                  make_design(R"({"modules":{"a":{"cells":{"u":{"type":"a"}}}}})", "a");
              }).find("'a' holds 'a'"),
              std::string::npos);
    EXPECT_NE(error_of([] { make_design(chain(11000, 1)); }).find("11000 levels deep"), std::string::npos);
    EXPECT_NE(error_of([] { make_design(chain(64, 10)); }).find("unfolds into more than"), std::string::npos);
}

TEST(Design, RefusesPortsThatUnfoldWithoutEnd) {
    // One wide module, and many cells that leave all its ports unconnected.
    std::string json = R"({"modules":{"wide":{"ports":{"p":{"direction":"input","bits":[)";
    for (int i = 0; i < 100000; ++i)
        json += (i ? "," : "") + std::to_string(i);
    json += R"(]}}},"m":{"cells":{)";
    for (int i = 0; i < 10000; ++i)
        json += (i ? ",\"c" : "\"c") + std::to_string(i) + R"(":{"type":"wide"})";
    EXPECT_THROW(make_design(json + "}}}}"), Error);
}

TEST(Design, ObjectsKnowThatTheyDied) {
    const auto d = blinker();
    const Cell* cell = find_one<Cell>(*d, "u_first");
    const Net* net = find_one<Net>(*d, "clk");
    const Pin* pin = find_one<Pin>(*d, "u_first/clk");
    const Port* port = find_one<Port>(*d, "clk");
    const ObjectRef ref(cell);
    EXPECT_TRUE(cell->is_alive() && net->is_alive() && pin->is_alive() && port->is_alive() && ref.is_alive());
    d->close();
    EXPECT_FALSE(cell->is_alive() || net->is_alive() || pin->is_alive() || port->is_alive() ||
                 ref.is_alive());
    EXPECT_EQ(error_of([&] { cell->name(); }),
              "This cell no longer exists: its design was closed or read again.");
    EXPECT_THROW(net->fanout(), Error);
    EXPECT_THROW(pin->net(), Error);
    EXPECT_THROW(port->direction(), Error);
    EXPECT_THROW(ref.name(), Error);
    EXPECT_EQ(error_of([&] { d->netlist(); }), "The design 'blinker' was closed or read again.");
    EXPECT_EQ(d->name(), "blinker");
}

TEST(Design, AddressesOfDeadObjectsAreNotUsedAgain) {
    const auto d = blinker();
    const Cell* cell = d->object<Cell>(0);
    d->close();
    for (int i = 0; i < 50; ++i) {
        const auto other = blinker();
        EXPECT_NE(other->object<Cell>(0), cell);
        EXPECT_FALSE(cell->is_alive());
    }
}
