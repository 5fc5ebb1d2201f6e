#include "design/Property.h"

#include "netlists.h"

using namespace design;

namespace {

std::string text_of(const ObjectRef& object, std::string_view name) {
    const auto value = get_property(object, name);
    return value ? value->to_text() : "(none)";
}

/// Takes a user-defined property away again at the end of a test.
class UserProperty {
public:
    UserProperty(ObjectClass cls, PropertySpec spec) : cls_(cls), name_(spec.name) {
        property_registry().create(cls, std::move(spec));
    }
    UserProperty(const UserProperty&) = delete;
    UserProperty& operator=(const UserProperty&) = delete;
    ~UserProperty() { property_registry().remove(cls_, name_); }

private:
    ObjectClass cls_;
    std::string name_;
};

PropertySpec spec_of(std::string name, ValueType type, std::optional<std::string> default_value = {},
                     std::vector<std::string> values = {}) {
    PropertySpec spec;
    spec.name = std::move(name);
    spec.type = type;
    spec.default_value = std::move(default_value);
    spec.enum_values = std::move(values);
    return spec;
}

} // namespace

TEST(Property, EachClassReadsItsOwn) {
    const auto d = blinker();
    const ObjectRef cell(find_one<Cell>(*d, "u_first")), net(find_one<Net>(*d, "start[5]")),
        pin(find_one<Pin>(*d, "u_first/d[1]")), port(find_one<Port>(*d, "reversed[0]"));
    EXPECT_EQ(text_of(cell, "name"), "u_first");
    EXPECT_EQ(text_of(cell, "class"), "cell");
    EXPECT_EQ(text_of(cell, "is_leaf"), "0");
    EXPECT_EQ(text_of(cell, "is_hierarchical"), "1");
    EXPECT_EQ(text_of(cell, "parent"), "");
    EXPECT_EQ(text_of(cell, "pin_count"), "11");
    EXPECT_EQ(text_of(find_one<Cell>(*d, "io/buf[0]"), "is_blackbox"), "1");
    EXPECT_EQ(text_of(net, "bus_name"), "start");
    EXPECT_EQ(text_of(net, "bus_index"), "5");
    EXPECT_EQ(text_of(net, "bus_width"), "4");
    EXPECT_EQ(text_of(net, "is_constant"), "0");
    EXPECT_EQ(text_of(pin, "direction"), "in");
    EXPECT_EQ(text_of(pin, "net"), "start[5]");
    EXPECT_EQ(text_of(pin, "cell"), "u_first");
    EXPECT_EQ(text_of(pin, "bit"), "1");
    EXPECT_EQ(text_of(port, "direction"), "in");
    EXPECT_EQ(text_of(port, "bus_index"), "0");
    EXPECT_EQ(text_of(*d, "top"), "blinker");
    EXPECT_EQ(text_of(*d, "module_count"), "4");
    EXPECT_EQ(text_of(*d, "creator"), "Yosys");
    EXPECT_EQ(text_of(*d, "origin"), "7");
}

TEST(Property, EverySpecHasADescriptionAndReads) {
    const auto d = blinker();
    const ObjectRef objects[] = {*d, d->object<Cell>(0), d->object<Net>(0), d->object<Pin>(0),
                                 d->object<Port>(0)};
    for (const ObjectRef& object : objects)
        for (const PropertySpec* spec : property_registry().list(object.object_class())) {
            EXPECT_FALSE(spec->description.empty()) << spec->name;
            EXPECT_EQ(spec->read_only, !spec->is_stored()) << spec->name;
            const auto value = get_property(object, spec->name);
            ASSERT_TRUE(value) << spec->name;
            EXPECT_EQ(value->type, spec->type) << spec->name;
        }
}

TEST(Property, NamesOfSpecsDisregardCase) {
    const auto d = blinker();
    EXPECT_EQ(text_of(find_one<Cell>(*d, "u_first"), "IS_LEAF"), "0");
}

TEST(Property, ValuesOfTheFileAreNumbersWhereTheyAre) {
    const auto d = make_design(R"({"modules":{"m":{"cells":{"c":{"type":"T","parameters":{
        "W":"11111111111111111111111111111110","BITS":"0101","GUARDED":"0101 ","TEXT":"hello ","PLAIN":12}}}}}})");
    const ObjectRef c(d->object<Cell>(0));
    EXPECT_EQ(text_of(c, "W"), "-2");
    EXPECT_EQ(get_property(c, "W")->type, ValueType::integer);
    EXPECT_EQ(text_of(c, "BITS"), "0101");
    EXPECT_EQ(text_of(c, "GUARDED"), "0101");
    EXPECT_EQ(text_of(c, "TEXT"), "hello ");
    EXPECT_EQ(text_of(c, "PLAIN"), "12");
}

TEST(Property, ListNamesSpecsAndAttributes) {
    const auto d = blinker();
    const std::vector<std::string> names = list_properties(find_one<Cell>(*d, "u_first"));
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_TRUE(std::binary_search(names.begin(), names.end(), "src"));
    EXPECT_TRUE(std::binary_search(names.begin(), names.end(), "dont_touch"));
    EXPECT_FALSE(std::binary_search(names.begin(), names.end(), "origin"));
}

TEST(Property, UnknownOnesAreToldWithTheNearest) {
    const auto d = blinker();
    EXPECT_EQ(error_of([&] { get_property(d->object<Cell>(0), "ref_nmae"); }),
              "No object of the class 'cell' has a property 'ref_nmae'. Did you mean 'ref_name'?");
    EXPECT_EQ(error_of([&] { get_property(d->object<Cell>(0), "quite_another"); }),
              "No object of the class 'cell' has a property 'quite_another'.");
}

TEST(Property, OneThatOnlyOthersHaveIsAbsent) {
    const auto d = make_design(
        R"({"modules":{"m":{"cells":{"a":{"type":"T","attributes":{"k":"v"}},"b":{"type":"T"}}}}})");
    EXPECT_EQ(text_of(d->object<Cell>(0), "k"), "v");
    EXPECT_EQ(text_of(d->object<Cell>(1), "k"), "(none)");
}

TEST(Property, SetResetUndoAndRedoAreExact) {
    const auto d = blinker();
    const ObjectRef cell(find_one<Cell>(*d, "u_first"));
    EXPECT_EQ(text_of(cell, "loc"), "");
    PropertyChange first = set_property({&cell, 1}, "loc", "X1Y1");
    PropertyChange second = set_property({&cell, 1}, "LOC", "X2Y2");
    PropertyChange reset = reset_property({&cell, 1}, "loc");
    EXPECT_EQ(text_of(cell, "loc"), "");
    reset.undo();
    EXPECT_EQ(text_of(cell, "loc"), "X2Y2");
    second.undo();
    EXPECT_EQ(text_of(cell, "loc"), "X1Y1");
    first.undo();
    EXPECT_EQ(text_of(cell, "loc"), "");
    first.redo();
    second.redo();
    EXPECT_EQ(text_of(cell, "loc"), "X2Y2");
    reset.redo();
    EXPECT_EQ(text_of(cell, "loc"), "");
}

TEST(Property, ResetShowsTheValueOfTheFile) {
    const auto d = blinker();
    const ObjectRef design(*d);
    set_property({&design, 1}, "origin", "8");
    EXPECT_EQ(text_of(design, "origin"), "8");
    reset_property({&design, 1}, "origin");
    EXPECT_EQ(text_of(design, "origin"), "7");
}

TEST(Property, AnObjectTwiceInAListUndoesToItsFirstValue) {
    const auto d = blinker();
    const ObjectRef cell(d->object<Cell>(0));
    const ObjectRef twice[] = {cell, cell};
    PropertyChange change = set_property(twice, "mark", "1");
    change.undo();
    EXPECT_EQ(text_of(cell, "mark"), "(none)");
    change.redo();
    EXPECT_EQ(text_of(cell, "mark"), "1");
}

TEST(Property, SetChecksEverythingBeforeItChangesAnything) {
    const auto d = blinker();
    const ObjectRef objects[] = {d->object<Cell>(0), d->object<Net>(0)};
    // "type" is free on cells and an enum on nets.
    EXPECT_THROW(set_property(objects, "type", "wrong"), Error);
    EXPECT_THROW(get_property(objects[0], "type"), Error);
}

TEST(Property, RefusesReadOnlyAndBadValues) {
    const auto d = blinker();
    const ObjectRef cell(d->object<Cell>(0)), net(d->object<Net>(0)), port(d->object<Port>(0));
    const auto refusal = [](const ObjectRef& object, const char* name, const char* value) {
        return error_of([&] { set_property({&object, 1}, name, value); });
    };
    EXPECT_EQ(refusal(cell, "name", "x"),
              "The property 'name' of the class 'cell' is read-only and cannot be "
              "changed.");
    EXPECT_EQ(error_of([&] {
                  reset_property({&cell, 1}, "ref_name");
              }),
              "The property 'ref_name' of the class 'cell' is read-only and cannot be changed.");
    EXPECT_EQ(refusal(cell, "dont_touch", "maybe"),
              "'maybe' is no value for the property 'dont_touch', which takes "
              "a bool: '1', '0', 'true' or 'false'.");
    EXPECT_EQ(refusal(net, "weight", "1.5"),
              "'1.5' is no value for the property 'weight', which takes a whole number of at most 64 bits.");
    EXPECT_EQ(refusal(port, "slew", "quick"),
              "'quick' is no value for the property 'slew', which takes one of 'slow', 'fast'.");
    EXPECT_EQ(refusal(cell, "", "x"), "A property needs a name that is not empty.");
}

TEST(Property, ValuesAreKeptInOneForm) {
    const auto d = blinker();
    const ObjectRef cell(d->object<Cell>(0)), net(d->object<Net>(0));
    for (const char* yes : {"1", "TRUE", "yes", "On"}) {
        set_property({&cell, 1}, "dont_touch", yes);
        EXPECT_EQ(text_of(cell, "dont_touch"), "1");
    }
    set_property({&net, 1}, "weight", "0x10");
    EXPECT_EQ(text_of(net, "weight"), "16");
    set_property({&net, 1}, "weight", "-9223372036854775808");
    EXPECT_EQ(get_property(net, "weight")->integer, INT64_MIN);
    EXPECT_THROW(set_property({&net, 1}, "weight", "9223372036854775808"), Error);
}

TEST(Property, UsersMayAddTheirOwn) {
    const auto d = blinker();
    const ObjectRef cell(d->object<Cell>(0));
    const UserProperty level(ObjectClass::cell, spec_of("level", ValueType::integer, "3"));
    EXPECT_EQ(text_of(cell, "level"), "3");
    set_property({&cell, 1}, "level", "7");
    EXPECT_EQ(get_property(cell, "level")->integer, 7);
    EXPECT_THROW(set_property({&cell, 1}, "level", "high"), Error);
    reset_property({&cell, 1}, "level");
    EXPECT_EQ(text_of(cell, "level"), "3");
    EXPECT_TRUE(property_registry().find(ObjectClass::cell, "level")->user_defined);
    EXPECT_THROW(get_property(d->object<Net>(0), "level"), Error);
}

TEST(Property, CreatingRefusesWhatCannotBe) {
    PropertyRegistry registry;
    const auto refusal = [&](PropertySpec spec) {
        return error_of([&] { registry.create(ObjectClass::cell, spec); });
    };
    EXPECT_NE(refusal(spec_of("", ValueType::string)).find("not empty"), std::string::npos);
    EXPECT_NE(refusal(spec_of("name", ValueType::string)).find("exists already"), std::string::npos);
    EXPECT_NE(refusal(spec_of("e", ValueType::enumeration)).find("needs values"), std::string::npos);
    EXPECT_NE(refusal(spec_of("n", ValueType::integer, "x")).find("'x' is no value"), std::string::npos);
    registry.create(ObjectClass::cell, spec_of("mine", ValueType::string));
    EXPECT_NO_THROW(registry.create(ObjectClass::cell, spec_of("mine", ValueType::string)));
    EXPECT_NE(refusal(spec_of("mine", ValueType::integer)).find("as 'mine' of the type string"),
              std::string::npos);
    EXPECT_TRUE(registry.remove(ObjectClass::cell, "mine"));
    EXPECT_FALSE(registry.remove(ObjectClass::cell, "mine"));
    EXPECT_FALSE(registry.remove(ObjectClass::cell, "name"));
}

TEST(Property, AFileValueThatDoesNotFitIsShownAsItIs) {
    const auto d =
        make_design(R"({"modules":{"m":{"cells":{"c":{"type":"T","attributes":{"dont_touch":"soft"}}}}}})");
    const auto value = get_property(d->object<Cell>(0), "dont_touch");
    EXPECT_EQ(value->type, ValueType::string);
    EXPECT_EQ(value->text, "soft");
}

TEST(Property, UndoAfterTheDesignIsGoneDoesNothing) {
    const auto d = blinker();
    const ObjectRef cell(d->object<Cell>(0));
    PropertyChange change = set_property({&cell, 1}, "loc", "A");
    d->close();
    EXPECT_NO_THROW(change.undo());
    EXPECT_NO_THROW(change.redo());
    EXPECT_THROW(set_property({&cell, 1}, "loc", "A"), Error);
    EXPECT_THROW(get_property(cell, "loc"), Error);
}

TEST(Property, TypesHaveNames) {
    EXPECT_EQ(value_type_of("INT"), ValueType::integer);
    EXPECT_EQ(value_type_of("enum"), ValueType::enumeration);
    EXPECT_FALSE(value_type_of("colour"));
    EXPECT_STREQ(value_type_name(ValueType::real), "double");
}
