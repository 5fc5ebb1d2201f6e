#include "design/Database.h"

#include "netlists.h"

using namespace design;

namespace {

std::string small(const std::string& name) {
    return R"({"modules":{")" + name + R"(":{"cells":{"c":{"type":"T"}}}}})";
}

} // namespace

TEST(Database, TheDesignReadLastIsCurrent) {
    Database database;
    EXPECT_EQ(database.current(), nullptr);
    EXPECT_EQ(error_of([&] { database.require_current(); }),
              "No design is open; read one with read_netlist.");
    Design& a = database.add(make_design(small("a")));
    Design& b = database.add(make_design(small("b")));
    EXPECT_EQ(database.current(), &b);
    EXPECT_EQ(database.designs(), (std::vector<Design*>{&a, &b}));
    EXPECT_EQ(&database.require("a"), &a);
    database.set_current(a);
    EXPECT_EQ(&database.require_current(), &a);
    database.close(a);
    EXPECT_EQ(database.current(), &b);
    database.close_all();
    EXPECT_EQ(database.current(), nullptr);
}

TEST(Database, TellsWhichDesignsThereAre) {
    Database database;
    EXPECT_EQ(error_of([&] { database.require("x"); }), "No design is named 'x'; none is open.");
    database.add(make_design(small("a")));
    database.add(make_design(small("b")));
    EXPECT_EQ(error_of([&] { database.require("x"); }), "No design is named 'x'; there are 'a', 'b'.");
}

TEST(Database, ReadingAgainReplacesTheDesign) {
    Database database;
    Design& old = database.read(blinker_path());
    const Cell* cell = old.object<Cell>(0);
    Design& fresh = database.read(blinker_path());
    EXPECT_NE(&old, &fresh);
    EXPECT_FALSE(old.is_open());
    EXPECT_FALSE(cell->is_alive());
    EXPECT_THROW(cell->name(), Error);
    EXPECT_EQ(database.designs(), (std::vector<Design*>{&fresh}));
    EXPECT_EQ(fresh.file(), blinker_path());
}

TEST(Database, AFailedReadLeavesAllAsItWas) {
    Database database;
    TemporaryFolder folder;
    Design& design = database.read(blinker_path());
    const Cell* cell = design.object<Cell>(0);
    const std::string text = read_text(blinker_path());
    const std::string cut = folder.write("cut.json", std::string_view(text).substr(0, text.size() - 10));
    EXPECT_THROW(database.read(cut), NetlistError);
    EXPECT_THROW(database.read(folder.file("nosuch.json")), Error);
    EXPECT_THROW(database.read(blinker_path(), "nosuch"), Error);
    EXPECT_EQ(error_of([&] { database.read(blinker_path(), "", [] { return true; }); }),
              "Reading the netlist '" + blinker_path() + "' was interrupted.");
    EXPECT_EQ(database.current(), &design);
    EXPECT_TRUE(cell->is_alive());
}

TEST(Database, FurtherNetlistsFromElsewhereAreRead) {
    const std::filesystem::path folder =
        std::getenv("CORVANE_NETLISTS") ? std::getenv("CORVANE_NETLISTS") : "";
    if (folder.empty() || !std::filesystem::exists(folder))
        GTEST_SKIP() << "CORVANE_NETLISTS names no folder of further netlists";
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".gz") {
            Database database;
            EXPECT_GT(database.read(entry.path().string()).count<Cell>(), 0u) << entry.path();
        }
}
