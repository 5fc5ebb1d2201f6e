// Collections: the elements, the text, the list, and the conversions between them.
#include "support.h"

#include <algorithm>
#include <random>

#include "platform/taskcore/HTCErrors.h"
#include "platform/tcl/HTCTclListCmds.h"

using namespace vek::tcltasks;

namespace {

std::string text(Tcl_Obj* obj) {
    return HTCTclEncoding::tclGetString(obj);
}

class Collection : public TaskTest {
protected:
    gate a{"a"}, b{"b"}, c{"c"};

    template <class C>
    C converted(Tcl_Obj* obj) {
        const tclobj_ref held(obj);
        return native_wrapper<C>::convert(interp, obj, 0);
    }
    template <class C>
    C converted(const std::string& words) {
        return converted<C>(Tcl_NewStringObj(words.data(), static_cast<int>(words.size())));
    }
    gates abc() { return gates(HSTVector<gate*>{&a, &b, &c}); }
};

strings many(int count) {
    strings all;
    for (int i = 0; i < count; ++i) {
        all->push_back("n" + std::to_string(i));
    }
    return all;
}

TEST_F(Collection, ADefaultHandleIsAnEmptyCollection) {
    gates none;
    EXPECT_EQ(none.size(), 0u);
    EXPECT_TRUE(none->empty());
    EXPECT_EQ(text(tclobj_ref(native_wrapper<gates>::convert_to_tcl(none)).get()), "");
}

TEST_F(Collection, TheElementsOfAHandleThatGoesAreStillThere) {
    const auto made = [&] { return abc(); };
    std::string names;
    for (gate* g : *made()) {
        names += g->name;
    }
    EXPECT_EQ(names, "abc");
}

TEST_F(Collection, CopiesShareTheBodyAndACloneIsIndependent) {
    gates first = abc();
    gates second = first;
    second->push_back(&a);
    EXPECT_EQ(first.size(), 4u);
    gates third(first.body().clone());
    third->push_back(&b);
    EXPECT_EQ(first.size(), 4u);
    EXPECT_EQ(third.size(), 5u);
}

TEST_F(Collection, APartIsCutAtTheEnd) {
    const gates all = abc();
    EXPECT_EQ(gates(all.body().clone(1, 1))->at(0), &b);
    EXPECT_EQ(gates(all.body().clone(1, 100)).size(), 2u);
    EXPECT_EQ(gates(all.body().clone(3, 1)).size(), 0u);
    EXPECT_EQ(gates(all.body().clone(100, 1)).size(), 0u);
    EXPECT_EQ(gates(all.body().clone(1, ~0ul)).size(), 2u);
}

TEST_F(Collection, TheBodyLivesAsLongAsAnyoneCountsIt) {
    tclobj_ref obj;
    {
        const gates all = abc();
        obj = native_wrapper<gates>::convert_to_tcl(all);
        EXPECT_EQ(all.body().ref_count(), 2);
    }
    EXPECT_EQ(detail::get_collection(obj.get())->ref_count(), 1);
    const tclany any(native_wrapper<gates>::convert_to_native(interp, obj.get()));
    obj = {};
    EXPECT_EQ(any_cast<gates>(any).size(), 3u);
}

TEST_F(Collection, OneBodyHasOneValue) {
    const gates all = abc();
    const tclobj_ref obj = native_wrapper<gates>::convert_to_tcl(all);
    EXPECT_EQ(native_wrapper<gates>::convert_to_tcl(all), obj.get());
    EXPECT_EQ(obj->bytes, nullptr) << "no text is made before it is asked for";
    EXPECT_EQ(converted<gates>(obj.get()).base(), all.base());
    EXPECT_EQ(obj->bytes, nullptr);
}

TEST_F(Collection, ADuplicateHoldsTheSameBody) {
    const gates all = abc();
    const tclobj_ref obj = native_wrapper<gates>::convert_to_tcl(all);
    const tclobj_ref copy = Tcl_DuplicateObj(obj.get());
    EXPECT_EQ(detail::get_collection(copy.get()), all.base());
    EXPECT_EQ(all.body().ref_count(), 3);
}

TEST_F(Collection, TheTextStopsAtTheDisplayLimitAndTheListDoesNot) {
    const strings all = many(501);
    const tclobj_ref obj = native_wrapper<strings>::convert_to_tcl(all);
    const std::string shown = text(obj.get());
    EXPECT_TRUE(shown.ends_with(" n499 ...")) << shown.substr(shown.size() - 20);
    EXPECT_EQ(std::count(shown.begin(), shown.end(), ' '), 500);
    int count = 0;
    Tcl_Obj** elements = nullptr;
    EXPECT_EQ(HTCTclListCmds::tclListObjGetElements(interp, obj.get(), &count, &elements), TCL_OK);
    EXPECT_EQ(count, 501);
    EXPECT_EQ(text(elements[500]), "n500");
    EXPECT_EQ(shown, all.body().get_tcl_string_rep());
}

TEST_F(Collection, ACollectionOfTheLimitsSizeIsShownWhole) {
    const ParamScope limit("tcl.collectionResultDisplayLimit", "3");
    EXPECT_EQ(many(3).body().get_tcl_string_rep(), "n0 n1 n2");
    EXPECT_EQ(many(4).body().get_tcl_string_rep(), "n0 n1 n2 ...");
}

TEST_F(Collection, ALimitOfZeroShowsNoElement) {
    const ParamScope limit("tcl.collectionResultDisplayLimit", "0");
    EXPECT_EQ(many(2).body().get_tcl_string_rep(), " ...");
    EXPECT_EQ(many(0).body().get_tcl_string_rep(), "");
}

TEST_F(Collection, WithoutTheCheckAllIsShown) {
    const ParamScope limit("tcl.collectionResultDisplayLimit", "-1");
    EXPECT_TRUE(many(2000).body().get_tcl_string_rep().ends_with(" n1999"));
}

TEST_F(Collection, AValueWithoutABodyShowsXcol) {
    const gates all = abc();
    const tclobj_ref obj = Tcl_NewObj();
    Tcl_InvalidateStringRep(obj.get());
    obj->typePtr = native_wrapper<gates>::get_type_obj();
    obj->internalRep.twoPtrValue = {nullptr, nullptr};
    EXPECT_EQ(text(obj.get()), "_xcol");
}

TEST_F(Collection, WithCollectionsDisabledAResultIsAPlainList) {
    const ParamScope disabled("tcl.disableCollections", "true");
    const tclobj_ref obj = native_wrapper<gates>::convert_to_tcl(abc());
    EXPECT_EQ(detail::get_collection(obj.get()), nullptr);
    EXPECT_EQ(text(obj.get()), "a b c");
    int count = 0;
    EXPECT_EQ(Tcl_ListObjLength(nullptr, obj.get(), &count), TCL_OK);
    EXPECT_EQ(count, 3);
}

TEST_F(Collection, TheDisabledListHasAllElementsBeyondTheLimit) {
    const ParamScope disabled("tcl.disableCollections", "true");
    const ParamScope limit("tcl.collectionResultDisplayLimit", "2");
    const tclobj_ref obj = native_wrapper<strings>::convert_to_tcl(many(10));
    EXPECT_EQ(text(obj.get()), "n0 n1 n2 n3 n4 n5 n6 n7 n8 n9");
}

TEST_F(Collection, TheListIsKeptUntilTheCollectionChanges) {
    const gates all = abc();
    Tcl_Obj* list = all.body().get_collection_as_tcllist();
    EXPECT_EQ(all.body().get_collection_as_tcllist(), list);
    all.body().reverse();
    EXPECT_EQ(text(all.body().get_collection_as_tcllist()), "c b a");
}

TEST_F(Collection, AChangeIsSeenInTheTextOfTheValue) {
    const gates all = abc();
    const tclobj_ref obj = native_wrapper<gates>::convert_to_tcl(all);
    EXPECT_EQ(text(obj.get()), "a b c");
    all.body().remove_element_at_index(0);
    EXPECT_EQ(text(obj.get()), "b c");
}

TEST_F(Collection, ShimmeringKeepsAllElements) {
    const tclobj_ref obj = native_wrapper<strings>::convert_to_tcl(many(600));
    detail::shimmer(obj.get());
    EXPECT_EQ(detail::get_collection(obj.get()), nullptr);
    int count = 0;
    EXPECT_EQ(Tcl_ListObjLength(nullptr, obj.get(), &count), TCL_OK);
    EXPECT_EQ(count, 600);
    EXPECT_TRUE(text(obj.get()).ends_with(" n599"));
}

TEST_F(Collection, ElementsAreReachedInEveryForm) {
    const gates all = abc();
    EXPECT_EQ(boost::any_cast<gate*>(all.body().get_element_as_boostany(1)), &b);
    EXPECT_EQ(any_cast<gate*>(all.body().get_element_as_tclany(1)), &b);
    EXPECT_EQ(all.body().get_element_as_string(1), "b");
    EXPECT_EQ(all.body().get_element_as_tclobj(1), native_wrapper<gate*>::convert_to_tcl(&b));
    EXPECT_EQ(all.body().get_value_type_info(), typeid(gate*));
    EXPECT_THROW(all.body().get_element_as_string(3), HTCErrors::index_out_of_range);
}

TEST_F(Collection, ValuesAreAppendedSetInsertedAndRemoved) {
    const gates all = abc();
    const auto& body = all.body();
    auto& changing = const_cast<std::decay_t<decltype(body)>&>(body);
    changing.append_tclobj(interp, text_value("a").get());
    EXPECT_EQ(all->back(), &a);
    changing.append_tclobj(interp, tclobj_ref(native_wrapper<gate*>::convert_to_tcl(&b)).get());
    EXPECT_EQ(all->back(), &b);
    changing.set_tclobj_at_index(interp, text_value("c").get(), 0);
    EXPECT_EQ(all->front(), &c);
    changing.insert_tclobj_at_index(interp, text_value("a").get(), 1);
    EXPECT_EQ(all->at(1), &a);
    changing.remove_element_at_index(0);
    EXPECT_EQ(changing.get_tcl_string_rep(), "a b c a b");
    EXPECT_THROW(changing.append_tclobj(interp, text_value("nosuch").get()), HTCErrors::type_error);
    EXPECT_EQ(all.size(), 5u);
}

TEST_F(Collection, AnIndexAtOrBeyondTheEndIsOutOfRange) {
    const gates all = abc();
    auto& body = all.body();
    const tclobj_ref name = text_value("a");
    for (const unsigned long index : {3ul, 100ul}) {
        EXPECT_THROW(body.set_tclobj_at_index(interp, name.get(), index), HTCErrors::index_out_of_range);
        EXPECT_THROW(body.insert_tclobj_at_index(interp, name.get(), index), HTCErrors::index_out_of_range);
        EXPECT_THROW(body.remove_element_at_index(index), HTCErrors::index_out_of_range);
    }
    try {
        body.remove_element_at_index(3);
    } catch (const HTCErrors::index_out_of_range& wrong) {
        EXPECT_EQ(wrong.index(), 3);
    }
    EXPECT_EQ(all.size(), 3u);
}

TEST_F(Collection, OnlyTheSameTypeIsAppended) {
    const gates all = abc();
    all.body().append_collection(gates(HSTVector<gate*>{&a}).base());
    EXPECT_EQ(all.size(), 4u);
    EXPECT_THROW(all.body().append_collection(strings(HSTVector<std::string>{"a"}).base()),
                 HTCErrors::append_typed_collection);
    EXPECT_THROW(all.body().append_collection(nullptr), HTCErrors::append_typed_collection);
    all.body().append(all.body());
    EXPECT_EQ(all.body().get_tcl_string_rep(), "a b c a a b c a") << "a collection may be appended to itself";
}

TEST_F(Collection, SortingGoesByTheText) {
    const gates all(HSTVector<gate*>{&c, &a, &b, &a});
    all.body().sort();
    EXPECT_EQ(all.body().get_tcl_string_rep(), "a a b c");
    const strings texts(HSTVector<std::string>{"b", "a10", "a9"});
    texts.body().sort();
    EXPECT_EQ(texts.body().get_tcl_string_rep(), "a10 a9 b");
}

TEST_F(Collection, UniqueKeepsTheFirstOfEqualsInOrder) {
    const gates all(HSTVector<gate*>{&c, &a, &c, &b, &a});
    all.body().unique();
    EXPECT_EQ(all.body().get_tcl_string_rep(), "c a b");
    const strings texts(HSTVector<std::string>{"x", "y", "x", "", ""});
    texts.body().unique();
    EXPECT_EQ(texts.size(), 3u);
}

TEST_F(Collection, ObjectsOfEqualNameAreNotTheSameObject) {
    gate twin("a");
    const gates all(HSTVector<gate*>{&a, &twin, &a});
    all.body().unique();
    EXPECT_EQ(all.size(), 2u);
}

TEST_F(Collection, MixedElementsHaveNoOrder) {
    anys one(HSTVector<tclany>{tclany(std::string("x"))});
    EXPECT_NO_THROW(one.body().sort());
    anys two(HSTVector<tclany>{tclany(std::string("x")), tclany(&a)});
    try {
        two.body().sort();
        FAIL() << "mixed elements were sorted";
    } catch (const HTCErrors::not_implemented& refused) {
        EXPECT_STREQ(refused.what(), "not implemented");
    }
    EXPECT_THROW(one.body().unique(), HTCErrors::not_implemented);
    EXPECT_NO_THROW(anys().body().unique());
    EXPECT_EQ(two.body().get_tcl_string_rep(), "x a");
}

TEST_F(Collection, IsOfValueTypeTellsObjectsAndCollections) {
    const gates all = abc();
    wire w{"w"};
    EXPECT_TRUE(all.body().is_of_value_type(tclobj_ref(native_wrapper<gate*>::convert_to_tcl(&a)).get()));
    EXPECT_TRUE(all.body().is_of_value_type(tclobj_ref(native_wrapper<gates>::convert_to_tcl(abc())).get()));
    EXPECT_FALSE(all.body().is_of_value_type(tclobj_ref(native_wrapper<wire*>::convert_to_tcl(&w)).get()));
    EXPECT_FALSE(all.body().is_of_value_type(text_value("a").get()));
    const strings texts(HSTVector<std::string>{"x"});
    EXPECT_TRUE(texts.body().is_of_value_type(text_value("a").get()));
    EXPECT_FALSE(texts.body().is_of_value_type(tclobj_ref(native_wrapper<gate*>::convert_to_tcl(&a)).get()));
    const anys mixed;
    EXPECT_TRUE(mixed.body().is_of_value_type(text_value("a").get()));
    EXPECT_TRUE(mixed.body().is_of_value_type(tclobj_ref(native_wrapper<wire*>::convert_to_tcl(&w)).get()));
    native_cache<wire*>::forget(&w);
}

TEST_F(Collection, AnObjectOfAnotherFormIsStillOfItsType) {
    const gates all = abc();
    const tclobj_ref one = native_wrapper<gate*>::convert_to_tcl(&a);
    int count = 0;
    ASSERT_EQ(Tcl_ListObjLength(nullptr, one.get(), &count), TCL_OK);
    ASSERT_EQ(detail::GetTclTypeInfo(one.get()), nullptr);
    EXPECT_TRUE(all.body().is_of_value_type(one.get()));
}

TEST_F(Collection, AWordWithABlankIsAListAtTheTop) {
    EXPECT_EQ(converted<strings>("a b").size(), 2u);
    EXPECT_EQ(converted<anys>("a b").size(), 2u);
    EXPECT_EQ(converted<gates>("a b").size(), 2u);
    EXPECT_EQ(native_wrapper<strings>::convert(interp, text_value("a b").get(), 1)->at(0), "a b");
}

TEST_F(Collection, AWordWithoutABlankIsOneElement) {
    EXPECT_EQ(converted<strings>("word")->at(0), "word");
    EXPECT_EQ(converted<gates>("b")->at(0), &b);
}

TEST_F(Collection, ListsOfListsFlatten) {
    EXPECT_EQ(converted<gates>("a {b {c a}} {}").body().get_tcl_string_rep(), "a b c a");
}

TEST_F(Collection, AnEmptyTextIsAnEmptyList) {
    EXPECT_EQ(converted<gates>("").size(), 0u);
    EXPECT_EQ(converted<strings>("").size(), 0u);
    EXPECT_EQ(converted<strings>("a {} b").size(), 3u) << "an empty element is an element";
    const ParamScope disabled("tcl.disableCollections", "true");
    EXPECT_EQ(converted<gates>(native_wrapper<gates>::convert_to_tcl(gates())).size(), 0u);
}

TEST_F(Collection, AListOfCollectionsFlattens) {
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    Tcl_ListObjAppendElement(nullptr, list, native_wrapper<gates>::convert_to_tcl(abc()));
    Tcl_ListObjAppendElement(nullptr, list, native_wrapper<gate*>::convert_to_tcl(&a));
    Tcl_ListObjAppendElement(
        nullptr, list, native_wrapper<strings>::convert_to_tcl(strings(HSTVector<std::string>{"b", "c"})));
    EXPECT_EQ(converted<gates>(list).body().get_tcl_string_rep(), "a b c a b c");
}

TEST_F(Collection, ListsInListsWithoutEndAreRefused) {
    std::string deep = "a";
    for (int i = 0; i < 5000; ++i) {
        deep = "{" + deep + "} a";
    }
    EXPECT_THROW(converted<gates>(deep), HTCErrors::type_error);
}

TEST_F(Collection, ANativeObjectIsACollectionOfOne) {
    const gates one = converted<gates>(native_wrapper<gate*>::convert_to_tcl(&b));
    EXPECT_EQ(one->at(0), &b);
    EXPECT_EQ(converted<anys>(native_wrapper<gate*>::convert_to_tcl(&b))->at(0).type(), typeid(gate*));
    gate blank("a b");
    EXPECT_EQ(converted<gates>(native_wrapper<gate*>::convert_to_tcl(&blank))->at(0), &blank)
        << "an object with a blank in its name is no list";
}

TEST_F(Collection, AnotherTypesCollectionIsCopiedAndLeftAsItIs) {
    const tclobj_ref names =
        native_wrapper<strings>::convert_to_tcl(strings(HSTVector<std::string>{"a", "c"}));
    const gates found = converted<gates>(names.get());
    EXPECT_EQ(found.body().get_tcl_string_rep(), "a c");
    EXPECT_EQ(detail::get_collection(names.get())->get_value_type_info(), typeid(std::string));
    const tclobj_ref objects = native_wrapper<gates>::convert_to_tcl(abc());
    EXPECT_EQ(converted<strings>(objects.get()).size(), 3u);
    EXPECT_EQ(converted<anys>(objects.get())->at(0).type(), typeid(gate*));
}

TEST_F(Collection, WhatIsNoObjectIsRefused) {
    wire w{"w"};
    EXPECT_THROW(converted<gates>("nosuch"), HTCErrors::type_error);
    EXPECT_THROW(converted<gates>("a nosuch"), HTCErrors::type_error);
    EXPECT_THROW(converted<gates>("a {b"), HTCErrors::type_error);
    EXPECT_THROW(converted<gates>(native_wrapper<wire*>::convert_to_tcl(&w)), HTCErrors::type_error);
    native_cache<wire*>::forget(&w);
}

TEST_F(Collection, TheContextRemembersTheListAndCanStandForTheText) {
    const gates found = converted<gates>("a b");
    ASSERT_TRUE(found.body().collection_context());
    EXPECT_EQ(found.body().collection_context()->string_rep(), "a b");
    const tclobj_ref obj = native_wrapper<gates>::convert_to_tcl(gates(HSTVector<gate*>{&c}));
    auto* body = detail::get_collection(obj.get());
    body->set_collection_context(found.body().collection_context(), 7);
    EXPECT_EQ(body->collection_context_id(), 7u);
    detail::set_use_collection_context_string_rep(true);
    EXPECT_EQ(text(obj.get()), "a b");
    detail::set_use_collection_context_string_rep(false);
    body->clear_collection_context();
    Tcl_InvalidateStringRep(obj.get());
    EXPECT_EQ(text(obj.get()), "c");
}

TEST_F(Collection, AContextOfVeryManySourcesStaysSmall) {
    const auto context = HTCCollectionContextMgr::createListCollectionContext();
    for (int i = 0; i < 1000; ++i) {
        HTCCollectionContextMgr::addTclObjToCtx(text_value("s" + std::to_string(i)).get(), context);
    }
    EXPECT_TRUE(context->string_rep().ends_with("s99 ..."));
    HTCCollectionContextMgr::append(context, context);
    HTCCollectionContextMgr::append(context, nullptr);
    HTCCollectionContextMgr::append(nullptr, context);
}

TEST_F(Collection, AnUntypedHandleWithoutABodyCannotBeDereferenced) {
    const untyped none;
    EXPECT_THROW(none->size(), std::bad_cast);
    EXPECT_THROW(static_cast<void>(*none), std::bad_cast);
    EXPECT_EQ(text(tclobj_ref(native_wrapper<untyped>::convert_to_tcl(none)).get()), "");
}

TEST_F(Collection, AnUntypedHandleTakesAnyCollectionAsItIs) {
    const gates all = abc();
    const tclobj_ref obj = native_wrapper<gates>::convert_to_tcl(all);
    const untyped handle = native_wrapper<untyped>::convert_to_native(interp, obj.get());
    EXPECT_EQ(handle.base(), all.base());
    EXPECT_EQ(native_wrapper<untyped>::convert_to_tcl(handle), obj.get());
}

TEST_F(Collection, AMistakeWhileTheTextIsMadeBecomesTheText) {
    struct broken : HTCICollectionContext {
        std::string string_rep() const override { throw std::runtime_error("no text today"); }
        void add(Tcl_Obj*) override {}
        void add(const HTCICollectionContext&) override {}
    };
    const gates all = abc();
    const tclobj_ref obj = native_wrapper<gates>::convert_to_tcl(all);
    all.body().set_collection_context(std::make_shared<broken>());
    detail::set_use_collection_context_string_rep(true);
    EXPECT_EQ(text(obj.get()), "no text today");
    detail::set_use_collection_context_string_rep(false);
}

TEST_F(Collection, EveryOperationAgreesWithAPlainVector) {
    std::mt19937 random(7);
    const auto below = [&](size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(random); };
    const strings all;
    auto& body = all.body();
    std::vector<std::string> model;
    const tclobj_ref obj = native_wrapper<strings>::convert_to_tcl(all);
    for (int step = 0; step < 4000; ++step) {
        const std::string word = "w" + std::to_string(below(20));
        const tclobj_ref value = text_value(word);
        const size_t at = below(model.size() + 2);
        const bool inside = at < model.size();
        switch (below(9)) {
        case 0:
        case 1:
            body.append_tclobj(interp, value.get());
            model.push_back(word);
            break;
        case 2:
            if (inside) {
                body.insert_tclobj_at_index(interp, value.get(), at);
                model.insert(model.begin() + static_cast<long>(at), word);
            } else {
                EXPECT_THROW(body.insert_tclobj_at_index(interp, value.get(), at),
                             HTCErrors::index_out_of_range);
            }
            break;
        case 3:
            if (inside) {
                body.set_tclobj_at_index(interp, value.get(), at);
                model[at] = word;
            }
            break;
        case 4:
        case 5:
            if (inside) {
                body.remove_element_at_index(at);
                model.erase(model.begin() + static_cast<long>(at));
            }
            break;
        case 6:
            body.reverse();
            std::reverse(model.begin(), model.end());
            break;
        case 7:
            if (below(10) == 0) {
                body.sort();
                std::sort(model.begin(), model.end());
            }
            break;
        case 8:
            if (below(10) == 0) {
                body.unique();
                std::vector<std::string> seen;
                for (const std::string& w : model) {
                    if (std::find(seen.begin(), seen.end(), w) == seen.end()) {
                        seen.push_back(w);
                    }
                }
                model = seen;
            }
            break;
        }
        std::string expected;
        for (const std::string& w : model) {
            expected += (expected.empty() ? "" : " ") + w;
        }
        ASSERT_EQ(text(obj.get()), expected) << "step " << step;
        ASSERT_EQ(text(body.get_collection_as_tcllist()), expected);
    }
}

} // namespace
