#include "design/Database.h"

#include "design/NetlistWriter.h"
#include "design/Property.h"
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

// The example's netlist, and those in the folder that CORVANE_NETLISTS names, if it does.
TEST(Database, NetlistsOfWholeDesignsAreReadWrittenAndReadAgain) {
    std::vector<std::filesystem::path> files{std::filesystem::path(CORVANE_TEST_DATA) /
                                             "../../examples/uart/uart.json"};
    if (const char* folder = std::getenv("CORVANE_NETLISTS"))
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().extension() == ".gz" || entry.path().extension() == ".json")
                files.push_back(entry.path());
    TemporaryFolder folder;
    for (const std::filesystem::path& file : files) {
        Database database;
        const Design& design = database.read(file.string());
        ASSERT_GT(design.count<Cell>(), 0u) << file;
        for (uint32_t i = 0; i < design.count<Cell>(); i += 1 + design.count<Cell>() / 1000) {
            Cell* const cell = design.object<Cell>(i);
            EXPECT_EQ(find_one<Cell>(design, cell->name()), cell);
            for (const std::string& name : list_properties(cell))
                EXPECT_NO_THROW(get_property(cell, name)) << name;
            for (uint32_t p = 0; p < cell->pin_count(); ++p)
                EXPECT_EQ(cell->pin(p)->cell(), cell);
        }
        const std::string copy = folder.file("copy.json.gz");
        write_netlist(design, copy, true);
        Database others;
        const Design& again = others.read(copy);
        EXPECT_EQ(all_names<Cell>(again), all_names<Cell>(design)) << file;
        EXPECT_EQ(all_names<Net>(again), all_names<Net>(design)) << file;
        EXPECT_EQ(all_names<Port>(again), all_names<Port>(design)) << file;
    }
}
