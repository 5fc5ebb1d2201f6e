// Native values in Tcl: conversions, identity, and what Tcl makes of them.
#include "support.h"

#include <thread>

#include "platform/msg/HEX.h"
#include "platform/taskcore/HTCErrors.h"
#include "platform/taskcore/tcl_globals.h"
#include "platform/tcl/HTCTclListCmds.h"

using namespace vek::tcltasks;

namespace {

class Native : public TaskTest {};

std::string text(Tcl_Obj* obj) {
    return HTCTclEncoding::tclGetString(obj);
}

TEST_F(Native, TwoConversionsOfOnePointerGiveTheSameValue) {
    gate g("g0"), other("g1");
    Tcl_Obj* obj = native_wrapper<gate*>::convert_to_tcl(&g);
    EXPECT_EQ(native_wrapper<gate*>::convert_to_tcl(&g), obj);
    EXPECT_NE(native_wrapper<gate*>::convert_to_tcl(&other), obj);
    EXPECT_STREQ(Tcl_GetString(obj), "g0");
}

TEST_F(Native, ManyConversionsAtOnceGiveTheSameValuesAsSingleOnes) {
    gate a("a"), b("b"), c("c");
    Tcl_Obj* const known = native_wrapper<gate*>::convert_to_tcl(&b);
    gate* const all[] = {&a, &b, nullptr, &c, &a};
    tclobj_ref values[5];
    native_wrapper<gate*>::convert_to_tcl(std::span<gate* const>(all), values);
    EXPECT_EQ(text(values[0].get()), "a");
    EXPECT_EQ(values[1].get(), known);
    EXPECT_FALSE(values[2]);
    EXPECT_EQ(values[0].get(), values[4].get());
    for (int i : {0, 1, 3}) {
        EXPECT_EQ(native_wrapper<gate*>::convert_to_tcl(all[i]), values[i].get());
        EXPECT_EQ(native_wrapper<gate*>::convert_to_native(interp, values[i].get()), all[i]);
        EXPECT_EQ(values[i]->refCount, i == 0 ? 3 : 2) << "the cache's and ours";
    }
}

TEST_F(Native, NullHasNoValue) {
    EXPECT_EQ(native_wrapper<gate*>::convert_to_tcl(nullptr), nullptr);
}

TEST_F(Native, TheTypeIsNamedAfterTheCompilersName) {
    EXPECT_EQ(std::string(native_wrapper<gate*>::get_type_obj()->name),
              std::string("ormeau:") + typeid(gate*).name());
    EXPECT_EQ(std::string(native_wrapper<gates>::get_type_obj()->name),
              std::string("ormeau:") + typeid(gate*).name() + "(tclcoll)");
    EXPECT_EQ(native_wrapper<gate*>::get_type_obj(), native_wrapper<gate*>::get_type_obj());
}

TEST_F(Native, AValueUsedAsAListOrNumberKeepsItsTextAndItsObject) {
    gate g("a b");
    const tclobj_ref obj = native_wrapper<gate*>::convert_to_tcl(&g);
    int count = 0;
    EXPECT_EQ(Tcl_ListObjLength(nullptr, obj.get(), &count), TCL_OK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(text(obj.get()), "a b");
    EXPECT_EQ(native_wrapper<gate*>::convert_to_native(interp, obj.get()), &g);
    EXPECT_EQ(native_wrapper<gate*>::convert_to_tcl(&g), obj.get());
    double number = 0;
    EXPECT_EQ(Tcl_GetDoubleFromObj(nullptr, obj.get(), &number), TCL_ERROR);
    EXPECT_EQ(text(obj.get()), "a b");
    EXPECT_EQ(detail::GetTclTypeInfo(native_wrapper<gate*>::convert_to_tcl(&g))->get_type_info(),
              typeid(gate*));
}

TEST_F(Native, AValueOfAnotherFormIsStillItsObjectToWhateverTakesAnyObject) {
    gate screw("screw");
    const tclobj_ref value(native_wrapper<gate*>::convert_to_tcl(&screw));
    int length = 0;
    ASSERT_EQ(Tcl_ListObjLength(nullptr, value.get(), &length), TCL_OK);
    ASSERT_EQ(detail::GetTclTypeInfo(value.get()), nullptr);
    EXPECT_EQ(any_cast<gate*>(native_wrapper<tclany>::convert_to_native(interp, value.get())), &screw);

    ASSERT_EQ(Tcl_ListObjLength(nullptr, value.get(), &length), TCL_OK);
    using any_collection = tcl_collection<HSTVector<tclany>>;
    const any_collection one = native_wrapper<any_collection>::convert_to_native(interp, value.get());
    ASSERT_EQ(one.size(), 1u);
    EXPECT_EQ(any_cast<gate*>((*one)[0]), &screw);
}

TEST_F(Native, AScriptMayDoWithAValueWhatItDoesWithText) {
    gate g("u0/ff");
    Tcl_SetVar2Ex(interp, "x", nullptr, native_wrapper<gate*>::convert_to_tcl(&g), TCL_GLOBAL_ONLY);
    EXPECT_EQ(eval("llength $x; lindex $x 0"), "u0/ff");
    EXPECT_EQ(eval("set y $x; append y /d; list $x $y"), "u0/ff u0/ff/d");
    EXPECT_EQ(native_wrapper<gate*>::convert_to_native(interp, Tcl_GetVar2Ex(interp, "x", nullptr, 0)), &g);
    EXPECT_THROW(native_wrapper<gate*>::convert_to_native(interp, Tcl_GetVar2Ex(interp, "y", nullptr, 0)),
                 HTCErrors::type_error);
}

TEST_F(Native, TextIsFoundByNameOrRefused) {
    gate g("g0");
    EXPECT_EQ(native_wrapper<gate*>::convert_to_native(interp, text_value("g0").get()), &g);
    EXPECT_THROW(native_wrapper<gate*>::convert_to_native(interp, text_value("g1").get()),
                 HTCErrors::type_error);
}

TEST_F(Native, ATypeWithoutConversionFromTextIsRefused) {
    wire w{"w0"};
    const tclobj_ref obj = native_wrapper<wire*>::convert_to_tcl(&w);
    EXPECT_EQ(native_wrapper<wire*>::convert_to_native(interp, obj.get()), &w);
    EXPECT_THROW(native_wrapper<wire*>::convert_to_native(interp, text_value("w0").get()),
                 HTCErrors::type_error);
    try {
        HTCGetNativeFromString<wire*>::get("w0");
        FAIL() << "a wire was found";
    } catch (const HEXAlgException& fault) {
        EXPECT_NE(std::string(fault.what()).find("HTCGetNativeFromString<wire*> not implemented"),
                  std::string::npos)
            << fault.what();
    }
    native_cache<wire*>::forget(&w);
}

TEST_F(Native, AnObjectThatIsForgottenLeavesPlainText) {
    tclobj_ref obj;
    {
        gate g("gone");
        obj = native_wrapper<gate*>::convert_to_tcl(&g);
    }
    EXPECT_EQ(text(obj.get()), "gone");
    EXPECT_THROW(native_wrapper<gate*>::convert_to_native(interp, obj.get()), HTCErrors::type_error);
    EXPECT_EQ(native_cache<gate*>::find_native(obj.get()), nullptr);
    gate again("gone");
    EXPECT_EQ(native_wrapper<gate*>::convert_to_native(interp, obj.get()), &again);
    EXPECT_NE(native_wrapper<gate*>::convert_to_tcl(&again), obj.get());
}

TEST_F(Native, LookupsOnOtherThreadsAreSafeWhileObjectsComeAndGo) {
    gate steady("steady");
    const tclobj_ref obj = native_wrapper<gate*>::convert_to_tcl(&steady);
    std::atomic<bool> stop{false};
    std::atomic<int> wrong{0};
    std::vector<std::thread> readers;
    for (int i = 0; i < 3; ++i) {
        readers.emplace_back([&] {
            while (!stop) {
                wrong += native_cache<gate*>::find_native(obj.get()) != &steady;
            }
        });
    }
    for (int i = 0; i < 2000; ++i) {
        gate g("g" + std::to_string(i));
        native_wrapper<gate*>::convert_to_tcl(&g);
    }
    stop = true;
    for (std::thread& reader : readers) {
        reader.join();
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(Native, ScalarsGoBothWays) {
    const auto round = [&](const auto& value) {
        using T = std::decay_t<decltype(value)>;
        const tclobj_ref obj = native_wrapper<T>::convert_to_tcl(value);
        EXPECT_EQ(native_wrapper<T>::convert_to_native(interp, obj.get()), value);
        return text(obj.get());
    };
    EXPECT_EQ(round(-5), "-5");
    EXPECT_EQ(round(123456789012L), "123456789012");
    EXPECT_EQ(round(4294967295u), "4294967295");
    EXPECT_EQ(round(0.1), "0.1");
    EXPECT_EQ(round(true), "1");
    EXPECT_EQ(round(false), "0");
    EXPECT_EQ(round(std::string("a {b")), "a {b");
    EXPECT_EQ(round(std::string("nul\0in", 6)).size(), 6u);
    EXPECT_EQ(round(std::vector<std::string>{"a b", "", "c"}), "{a b} {} c");
    EXPECT_EQ(round(HSTVector<std::string>{"x"}), "x");
}

TEST_F(Native, AValueThatIsNoListGivesAnEmptyVector) {
    EXPECT_TRUE(native_wrapper<std::vector<std::string>>::tcllist_to_native(interp, text_value("a {b").get())
                    .empty());
    EXPECT_TRUE(
        native_wrapper<std::vector<Tcl_Obj*>>::tcllist_to_native(interp, text_value("\"").get()).empty());
}

TEST_F(Native, AnyHoldsWhatItWasGiven) {
    gate g("g0");
    const tclany any(&g);
    EXPECT_EQ(any.get_as_string(), "g0");
    EXPECT_EQ(any.type(), typeid(gate*));
    EXPECT_EQ(any_cast<gate*>(any), &g);
    EXPECT_EQ(any.get_as_tcl_obj(), native_wrapper<gate*>::convert_to_tcl(&g));
    const tclany copy(any);
    EXPECT_EQ(any_cast<gate*>(copy), &g);
    EXPECT_TRUE(tclany().empty());
    EXPECT_EQ(tclany().get_as_tcl_obj(), nullptr);
}

TEST_F(Native, AnyReadAsAnotherTypeThrows) {
    const tclany any(std::string("x"));
    try {
        any_cast<int>(any);
        FAIL() << "a text was read as a number";
    } catch (const bad_tclany_cast& wrong) {
        EXPECT_STREQ(wrong.what(),
                     "vek::tcltasks::bad_tclany_cast: failed conversion using vek::tcltasks::any_cast");
    }
    EXPECT_THROW(any_cast<int>(tclany()), bad_tclany_cast);
}

TEST_F(Native, AnyCopiesItsValue) {
    tclany first(std::string("a"));
    tclany second(first);
    any_cast<std::string>(second) = "b";
    EXPECT_EQ(any_cast<std::string>(first), "a");
}

TEST_F(Native, AnyHoldingACollectionPrintsTacol) {
    EXPECT_EQ(tclany(gates()).get_as_string(), "tacol");
    EXPECT_EQ(tclany(untyped()).get_as_string(), "tacol");
}

TEST_F(Native, AnyMadeOfTextIsText) {
    EXPECT_EQ(
        any_cast<std::string>(native_wrapper<tclany>::convert_to_native(interp, text_value("a b").get())),
        "a b");
}

TEST_F(Native, FloatingTextHasThePrecisionOfTheInterpreter) {
    EXPECT_EQ(HTCGetTclStringRep<double>::get(0.5), "0.500");
    EXPECT_EQ(HTCGetTclStringRep<double>::get(2e20), "200000000000000000000.000");
    EXPECT_EQ(HTCGetTclStringRep<bool>::get(true), "1");
    EXPECT_EQ(HTCGetTclStringRep<int>::get(-7), "-7");
    EXPECT_EQ(HTCGetTclStringRep<std::string>::get("x"), "x");
}

} // namespace
