#include "platform/property/HCPProperty.h"

#include <gtest/gtest.h>

#include "sample_classes.h"

using namespace HCPProperty;

namespace {

class Properties : public ::testing::Test {
protected:
    static Objects objects(std::initializer_list<sample::gate*> gates) {
        Objects all;
        for (sample::gate* g : gates) {
            all->push_back(tclany(g));
        }
        return all;
    }
    static HATAttr text(const std::string& value) {
        HATAttr attr({}, HATAttrTypes::type_string);
        attr.setStringVal(value);
        return attr;
    }
    static HATAttrAny value_of(sample::gate* g, const std::string& name) {
        HATAttrAny value;
        Get::get(nullptr, tclany(g), name, value, false);
        return value;
    }

    std::shared_ptr<ObjectInfo> gates = (sample::register_classes(), getObjectInfo("gate"));
    sample::gate* a = sample::new_gate("a", 3);
    sample::gate* b = sample::new_gate("b", 5);
};

} // namespace

TEST_F(Properties, AClassIsFoundByTypeNameAndObject) {
    EXPECT_EQ(getObjectInfo(typeid(sample::gate*)), gates);
    EXPECT_EQ(getObjectInfo(tclany(a)), gates);
    EXPECT_EQ(getObjectInfo("nosuch"), nullptr);
    EXPECT_EQ(getObjectInfo(tclany(std::string("a"))), nullptr);
    EXPECT_EQ(Get::getClass(tclany(a)), "gate");
    EXPECT_EQ(gates->getDescription(), "A gate of the samples.");
}

TEST_F(Properties, RegisteringAgainChangesNothing) {
    const size_t before = gates->specs().size();
    sample::register_classes();
    EXPECT_EQ(getObjectInfo("gate"), gates);
    EXPECT_EQ(gates->specs().size(), before);
}

TEST_F(Properties, OneLineOfATableSaysItAll) {
    const HATAttrSpec& size = *gates->getSpec("size")->getAttrSpec();
    EXPECT_EQ(size.getAttrType(), HATAttrTypes::type_int);
    EXPECT_EQ(size.getDefault(), HATAttrAny(1));
    EXPECT_EQ(size.getClassName(), "gate");
    EXPECT_FALSE(size.isReadOnly());
    EXPECT_TRUE(gates->getSpec("fanout")->getAttrSpec()->isReadOnly());
    EXPECT_EQ(gates->getSpec("slew")->getAttrSpec()->getAttrType(), HATAttrTypes::type_enum);
    EXPECT_EQ(gates->getSpec("keep")->getAttrSpec()->getDefault(), HATAttrAny(false));
    EXPECT_FALSE(gates->getSpec("secret")->getAttrSpec()->isVisible());
    EXPECT_EQ(gates->getSpec("serial")->getAttrSpec()->getAttrType(), HATAttrTypes::type_long);
}

TEST_F(Properties, NamesAreFoundWhateverTheirCaseAndUnderTheirOldName) {
    EXPECT_EQ(gates->getSpec("SiZe"), gates->getSpec("size"));
    EXPECT_EQ(gates->getSpec("bulk"), gates->getSpec("size"));
    EXPECT_EQ(gates->getSpec("nosuch"), nullptr);
    EXPECT_THROW(gates->getSpec("nosuch", true), HEXError);
    std::string out;
    EXPECT_TRUE(gates->getSpec("SIZE")->isValid(tclany(a), "SIZE", out));
    EXPECT_EQ(out, "size");
}

TEST_F(Properties, ReadsTypedValues) {
    EXPECT_EQ(value_of(a, "fanout"), HATAttrAny(3));
    EXPECT_EQ(value_of(a, "name"), HATAttrAny(std::string("a")));
    EXPECT_EQ(value_of(a, "size"), HATAttrAny());
    EXPECT_EQ(value_of(a, "class"), HATAttrAny(std::string("gate")));
    HATAttrAny stale = 5;
    EXPECT_FALSE(Get::get(nullptr, tclany(a), "size", stale, false));
    EXPECT_EQ(stale, HATAttrAny());
}

TEST_F(Properties, ASetterKeepsWhatStoodThereBefore) {
    a->weight = 7;
    const auto setter = gates->getSpec("weight")->getSetter();
    HATAttr two = text("2");
    EXPECT_EQ(setter->set(nullptr, objects({a, b}), "weight", two), 0);
    EXPECT_EQ(a->weight, 2);
    setter->undo(nullptr);
    EXPECT_EQ(a->weight, 7);
    EXPECT_EQ(b->weight, 1);
    setter->redo(nullptr);
    EXPECT_EQ(b->weight, 2);
    setter->undo(nullptr);
    EXPECT_EQ(a->weight, 7);
}

TEST_F(Properties, AnObjectTwiceInTheListIsGivenBackWhatItHad) {
    a->weight = 7;
    const auto setter = gates->getSpec("weight")->getSetter();
    HATAttr two = text("2");
    setter->set(nullptr, objects({a, b, a}), "weight", two);
    setter->undo(nullptr);
    EXPECT_EQ(a->weight, 7);
}

TEST_F(Properties, ChangingTheCollectionAfterwardsDoesNotChangeWhatUndoTakesBack) {
    Objects list = objects({a, b});
    const auto setter = gates->getSpec("weight")->getSetter();
    HATAttr two = text("2");
    setter->set(nullptr, list, "weight", two);
    list->clear();
    setter->undo(nullptr);
    EXPECT_EQ(a->weight, 1);
    EXPECT_EQ(b->weight, 1);
}

TEST_F(Properties, AValueThatOneObjectRefusesIsTakenBackFromAll) {
    sample::gate* refusing = sample::new_gate("r", 99);
    a->size = 4;
    const auto setter = gates->getSpec("size")->getSetter();
    HATAttr thirteen = text("13");
    EXPECT_ANY_THROW(setter->set(nullptr, objects({a, b, refusing}), "size", thirteen));
    EXPECT_EQ(a->size, 4);
    EXPECT_EQ(b->size, std::nullopt);
}

TEST_F(Properties, SeveralPropertiesAtOnceAllOrNone) {
    const auto setter = gates->getSpec(defaultSpecName)->getSetter();
    EXPECT_ANY_THROW(setter->set(nullptr, objects({a, b}), Pairs{{"weight", "3"}, {"fanout", "1"}}));
    EXPECT_EQ(a->weight, 1);
    sample::gate* refusing = sample::new_gate("r", 99);
    EXPECT_ANY_THROW(gates->getSpec(defaultSpecName)
                         ->getSetter()
                         ->set(nullptr, objects({a, refusing}), Pairs{{"weight", "3"}, {"size", "13"}}));
    EXPECT_EQ(a->weight, 1);
    const auto good = gates->getSpec(defaultSpecName)->getSetter();
    EXPECT_EQ(good->set(nullptr, objects({a}), Pairs{{"weight", "3"}, {"weight", "4"}, {"keep", "on"}}), 0);
    EXPECT_EQ(a->weight, 4);
    good->undo(nullptr);
    EXPECT_EQ(a->weight, 1);
    EXPECT_FALSE(a->keep);
}

TEST_F(Properties, ASetterOfTheBaseClassDoesNotKnowSeveralAtOnce) {
    class plain : public Setter {
    public:
        using Setter::set;
        int set(Tcl_Interp*, const Objects&, const std::string&, HATAttr&) override { return 0; }
        int reset(const Objects&, const std::string&, HATAttr&) override { return 0; }
        int undo(Tcl_Interp*) override { return 0; }
        int redo(Tcl_Interp*) override { return 0; }
    };
    EXPECT_EQ(plain().set(nullptr, objects({a}), Pairs{{"a", "b"}}), 9999);
}

TEST_F(Properties, AnObjectThatIsGoneIsRefused) {
    a->alive = false;
    EXPECT_THROW(getObjectInfoOrError(tclany(a)), HEXError);
    EXPECT_THROW(value_of(a, "name"), HEXError);
    std::string out;
    EXPECT_FALSE(gates->getSpec("name")->isValid(tclany(a), "name", out));
}

TEST_F(Properties, ValuesOfUsersAreForgottenWithTheirObject) {
    const auto spec = gates->createSpecOrError("mine");
    spec->getAttrSpec()->setUserDefined(true);
    ASSERT_TRUE(gates->getSpec(defaultSpecName)->registerUserSpec(spec));
    HATAttr x = text("x");
    gates->getSpec(defaultSpecName)->getSetter()->set(nullptr, objects({a, b}), "mine", x);
    forgetObject(*gates, a);
    EXPECT_EQ(value_of(a, "mine"), HATAttrAny());
    EXPECT_EQ(value_of(b, "mine"), HATAttrAny(std::string("x")));
    gates->getSpec(defaultSpecName)->unregisterUserSpec(spec);
    gates->deleteSpec("mine");
    EXPECT_TRUE(spec->getAttrSpec()->isDeleted());
    EXPECT_EQ(gates->getSpec("mine"), nullptr);
}

TEST_F(Properties, ATypedCollectionIsReadInPlaceAndAListOneByOne) {
    Tcl_Interp* interp = Tcl_CreateInterp();
    vek::tcltasks::tcl_collection<HSTVector<sample::gate*>> typed;
    typed->push_back(a);
    typed->push_back(b);
    const vek::tcltasks::tclobj_ref one(
        vek::tcltasks::native_wrapper<decltype(typed)>::convert_to_tcl(typed));
    const ObjectRange inPlace(interp, one.get());
    ASSERT_EQ(inPlace.size(), 2u);
    EXPECT_EQ(inPlace[1].info, gates.get());
    EXPECT_EQ(*static_cast<sample::gate* const*>(inPlace[1].object), b);
    EXPECT_EQ(vek::tcltasks::any_cast<sample::gate*>(inPlace.value(0)), a);

    sample::port p{"p"};
    const vek::tcltasks::tclobj_ref list(Tcl_NewListObj(0, nullptr));
    Tcl_ListObjAppendElement(nullptr, list.get(),
                             vek::tcltasks::native_wrapper<sample::gate*>::convert_to_tcl(a));
    Tcl_ListObjAppendElement(nullptr, list.get(),
                             vek::tcltasks::native_wrapper<sample::port*>::convert_to_tcl(&p));
    const ObjectRange mixed(interp, list.get());
    ASSERT_EQ(mixed.size(), 2u);
    EXPECT_EQ(mixed[0].info, gates.get());
    EXPECT_EQ(mixed[1].info, getObjectInfo(typeid(sample::port*)).get());
    vek::tcltasks::native_cache<sample::port*>::forget(&p);

    const vek::tcltasks::tclobj_ref none(Tcl_NewObj());
    EXPECT_LE(ObjectRange(interp, none.get()).size(), 1u);
    Tcl_DeleteInterp(interp);
}

TEST_F(Properties, AReaderGoesFromClassToClass) {
    sample::port p{"p"};
    Reader reader("NAME");
    HATAttrAny value;
    const auto ports = getObjectInfo(typeid(sample::port*));
    sample::port* port = &p;
    EXPECT_TRUE(reader.get(*gates, &a, value));
    EXPECT_EQ(value, HATAttrAny(std::string("a")));
    EXPECT_TRUE(reader.get(*ports, &port, value));
    EXPECT_EQ(value, HATAttrAny(std::string("p")));
    EXPECT_TRUE(reader.get(*gates, &b, value));
    EXPECT_EQ(value, HATAttrAny(std::string("b")));
}

TEST_F(Properties, TheWalkOverSpecificationsSkipsWhatAnObjectLacks) {
    sample::port in{"i", true}, out{"o", false};
    const auto ports = getObjectInfo(typeid(sample::port*));
    const auto names = [&](const tclany& object) {
        std::string all;
        for (auto at = ports->beginAttrSpec(object); !(at == ports->endAttrSpec()); ++at) {
            all += (*at)->getName() + " ";
        }
        return all;
    };
    EXPECT_EQ(names(tclany()), "class name direction loc ");
    EXPECT_EQ(names(tclany(&in)), "class name direction loc ");
    EXPECT_EQ(names(tclany(&out)), "class name direction ");
    EXPECT_EQ(ports->getAttrSpec(tclany(&out), "loc"), nullptr);
    EXPECT_NE(ports->getAttrSpec(tclany(&in), "LOC"), nullptr);
}

TEST_F(Properties, AStatusIsStoredAndTold) {
    HDGUIStatus* const before = Utils::getGuiStatus(nullptr);
    auto* status = reinterpret_cast<HDGUIStatus*>(0x10);
    EXPECT_EQ(Utils::getGuiStatus(status), status);
    EXPECT_EQ(Utils::getGuiStatus(nullptr), status);
    if (before) {
        Utils::getGuiStatus(before);
    }
}
