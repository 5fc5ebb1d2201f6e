// How one option takes its value.
#include "support.h"

#include <boost/program_options/value_semantic.hpp>

#include "platform/taskcore/HTCErrors.h"
#include "platform/taskcore/ResolveBool.h"
#include "platform/taskcore/tcl_globals.h"

using namespace vek::tcltasks;

namespace {

template <class T, class tcltype>
std::unique_ptr<tcl_value_semantic<T, tcltype>> own(tcl_value_semantic<T, tcltype>* semantic) {
    return std::unique_ptr<tcl_value_semantic<T, tcltype>>(semantic);
}

class ValueSemantic : public TaskTest {
protected:
    ValueSemantic() { detail::tcl_globals::interp = interp; }
    ~ValueSemantic() override { detail::tcl_globals::objv.clear(); }

    /// Parses one argument.
    template <class Semantic>
    void give(const Semantic& semantic, boost::any& store, Tcl_Obj* argument) {
        const tclobj_ref held(argument);
        detail::tcl_globals::objv["#1"] = argument;
        semantic->parse(store, {"#1"}, true);
        detail::tcl_globals::objv["#1"] = nullptr;
    }
    template <class Semantic>
    void give(const Semantic& semantic, boost::any& store, const char* text) {
        give(semantic, store, Tcl_NewStringObj(text, -1));
    }
    template <class T, class Semantic>
    T taken(const Semantic& semantic, const char* text) {
        boost::any store;
        give(semantic, store, text);
        return boost::any_cast<T>(store);
    }
};

TEST_F(ValueSemantic, AFlagTakesNoTokensAndATextOne) {
    EXPECT_EQ(own(options::flag())->min_tokens(), 0u);
    EXPECT_EQ(own(options::flag())->max_tokens(), 0u);
    EXPECT_EQ(own(options::text())->min_tokens(), 1u);
    EXPECT_EQ(own(options::text())->max_tokens(), 1u);
    EXPECT_EQ(own(options::words()->multi_token())->max_tokens(), 32000u);
}

TEST_F(ValueSemantic, TheNameOfAFlagShowsBothValues) {
    EXPECT_EQ(own(options::flag())->name(), "[=arg(=true)] (=false)");
    EXPECT_EQ(own(options::text("x"))->name(), "arg (=x)");
    EXPECT_EQ(own(options::text())->name(), "arg");
    EXPECT_EQ(own(options::value<int>()->default_value(3))->name(), "arg");
}

TEST_F(ValueSemantic, ADeprecatedOptionIsHidden) {
    const auto old = own(options::text()->deprecated("Use -new."));
    EXPECT_TRUE(old->is_deprecated());
    EXPECT_TRUE(old->is_hidden());
    EXPECT_EQ(old->deprecation_message(), "Use -new.");
    EXPECT_FALSE(own(options::text())->is_hidden());
    EXPECT_TRUE(own(options::text()->hidden())->is_hidden());
}

TEST_F(ValueSemantic, FieldsBeginAsDocumented) {
    const auto fresh = own(options::value<std::string>());
    EXPECT_EQ(fresh->switch_name(), "unknown");
    EXPECT_TRUE(fresh->is_composing());
    EXPECT_FALSE(fresh->is_infra());
    EXPECT_FALSE(fresh->is_required());
    EXPECT_FALSE(fresh->has_default());
    EXPECT_FALSE(fresh->has_implicit());
    EXPECT_TRUE(fresh->default_value().empty());
    boost::any store;
    EXPECT_FALSE(fresh->apply_default(store));
    EXPECT_TRUE(own(options::value<bool>()->infra())->is_infra());
}

TEST_F(ValueSemantic, OnlyListsAreLists) {
    EXPECT_FALSE(own(options::words())->is_list());
    EXPECT_TRUE(own(options::list())->is_list());
    EXPECT_FALSE(own(options::list()->max_list_length(1))->is_list());
    EXPECT_TRUE(own(options::objects<gate*>())->is_list());
}

TEST_F(ValueSemantic, ADefaultIsAppliedAndAProviderRenewsIt) {
    boost::any store;
    EXPECT_TRUE(own(options::number(4))->apply_default(store));
    EXPECT_EQ(boost::any_cast<int>(store), 4);
    int calls = 0;
    const auto provided = own(options::value<int>()->default_provider([&] { return ++calls; }));
    EXPECT_TRUE(provided->apply_default(store));
    EXPECT_TRUE(provided->apply_default(store));
    EXPECT_EQ(boost::any_cast<int>(store), 2);
    EXPECT_EQ(boost::any_cast<int>(provided->default_value()), 2);
}

TEST_F(ValueSemantic, TheParseHookSeesEveryParseFirst) {
    int seen = 0;
    const auto hooked =
        own(options::text()->parse_hook([&](boost::any& store, const std::vector<std::string>& tokens, bool) {
            seen += store.empty() && tokens.size() == 1;
        }));
    taken<std::string>(hooked, "x");
    EXPECT_EQ(seen, 1);
}

TEST_F(ValueSemantic, ScalarsAreConverted) {
    EXPECT_EQ(taken<int>(own(options::number(0)), "-12"), -12);
    EXPECT_EQ(taken<long>(own(options::value<long>()), "123456789012"), 123456789012L);
    EXPECT_EQ(taken<unsigned>(own(options::value<unsigned>()), "4294967295"), 4294967295u);
    EXPECT_EQ(taken<std::string>(own(options::text()), "a b"), "a b");
    EXPECT_TRUE(taken<bool>(own(options::value<bool>()), "enabled"));
    EXPECT_EQ(taken<double>(own(options::value<double>()), "2.5"), 2.5);
}

TEST_F(ValueSemantic, AnIntegerGivenAWordRaisesInvalidOptionValue) {
    const auto number = own(options::number(0));
    number->switch_name("count");
    try {
        taken<int>(number, "abc");
        FAIL() << "abc was taken";
    } catch (const HTCErrors::invalid_option_value& refused) {
        EXPECT_EQ(refused.switch_name(), "count");
        EXPECT_EQ(refused.value(), "abc");
    }
}

template <class T>
class Scalars : public ValueSemantic {};
using ScalarTypes = ::testing::Types<bool, int, unsigned, long, double, std::string, Tcl_Obj*, tclany, gate*>;
TYPED_TEST_SUITE(Scalars, ScalarTypes);

TYPED_TEST(Scalars, GivenTwiceRaisesMultipleOccurrences) {
    const gate one("1");
    const auto semantic = own(options::value<TypeParam>());
    boost::any store;
    this->give(semantic, store, "1");
    EXPECT_THROW(this->give(semantic, store, "1"), HTCErrors::multiple_occurrences);
}

TEST_F(ValueSemantic, AFlagGivenTwiceRaisesMultipleOccurrences) {
    const auto flag = own(options::flag());
    boost::any store;
    flag->parse(store, {}, true);
    EXPECT_TRUE(boost::any_cast<bool>(store));
    EXPECT_THROW(flag->parse(store, {}, true), HTCErrors::multiple_occurrences);
}

TEST_F(ValueSemantic, ListsOfEachTypeAreAppended) {
    const auto check = [&](auto semantic, size_t expected) {
        using list = std::decay_t<decltype(*semantic)>;
        static_cast<void>(sizeof(list));
        boost::any store;
        give(semantic, store, "a b");
        give(semantic, store, "c");
        if (const auto* strings = boost::any_cast<std::vector<std::string>>(&store)) {
            EXPECT_EQ(strings->size(), expected);
        } else if (const auto* values = boost::any_cast<std::vector<Tcl_Obj*>>(&store)) {
            EXPECT_EQ(values->size(), expected);
        } else if (const auto* own_list = boost::any_cast<HSTVector<std::string>>(&store)) {
            EXPECT_EQ(own_list->size(), expected);
        } else {
            FAIL() << "no list";
        }
    };
    check(own(options::words()), 2);
    check(own(options::list()), 3);
    check(own(options::value<std::vector<Tcl_Obj*>>()), 2);
    check(own(options::value<HSTVector<std::string>>()), 2);
    check(own(options::value<HSTVector<std::string>, tcltypes::tcllist>()), 3);
}

TEST_F(ValueSemantic, AListThatDoesNotComposeIsReplacedWithAWarning) {
    const auto list = own(options::list()->composing(false));
    list->switch_name("names");
    boost::any store;
    give(list, store, "a b");
    give(list, store, "c");
    EXPECT_EQ(boost::any_cast<std::vector<std::string>>(store), std::vector<std::string>{"c"});
    EXPECT_NE(console->all().find("17-5010"), std::string::npos);
}

TEST_F(ValueSemantic, AListLongerThanItMayBeIsRefused) {
    const auto list = own(options::list()->max_list_length(2));
    EXPECT_EQ(taken<std::vector<std::string>>(list, "a b").size(), 2u);
    EXPECT_THROW(taken<std::vector<std::string>>(list, "a b c"), HTCErrors::invalid_option_value);
    boost::any store;
    give(list, store, "a b");
    EXPECT_THROW(give(list, store, "c"), HTCErrors::invalid_option_value);
}

TEST_F(ValueSemantic, CollectionsOfTextsAndOfAnythingAreTaken) {
    EXPECT_EQ(taken<strings>(own(options::value<strings, tcltypes::tclcoll>()), "a b c").size(), 3u);
    EXPECT_EQ(taken<anys>(own(options::value<anys, tcltypes::tclcoll>()), "a b").size(), 2u);
}

TEST_F(ValueSemantic, ACollectionGivenTwiceLosesItsContext) {
    const auto semantic = own(options::value<strings, tcltypes::tclcoll>());
    boost::any store;
    give(semantic, store, "a b");
    EXPECT_TRUE(boost::any_cast<strings>(store).body().collection_context());
    give(semantic, store, "c");
    EXPECT_EQ(boost::any_cast<strings>(store).size(), 3u);
    EXPECT_FALSE(boost::any_cast<strings>(store).body().collection_context());
}

TEST_F(ValueSemantic, ACollectionThatDoesNotComposeIsReplacedWithAWarning) {
    const auto semantic = own(options::value<strings, tcltypes::tclcoll>()->composing(false));
    boost::any store;
    give(semantic, store, "a b");
    give(semantic, store, "c");
    EXPECT_EQ(boost::any_cast<strings>(store).size(), 1u);
    EXPECT_NE(console->all().find("17-5010"), std::string::npos);
}

TEST_F(ValueSemantic, AnUntypedCollectionSharesTheBodyAndTakesNothingElse) {
    gate g("g");
    const gates given(HSTVector<gate*>{&g});
    const auto semantic = own(options::value<untyped>());
    boost::any store;
    give(semantic, store, native_wrapper<gates>::convert_to_tcl(given));
    EXPECT_EQ(boost::any_cast<untyped>(store).base(), given.base());
    EXPECT_THROW(give(semantic, store, "x"), HTCErrors::append_untyped_collection);
    boost::any other;
    give(semantic, other, "no collection");
    EXPECT_FALSE(boost::any_cast<untyped>(other).has_body());
    EXPECT_EQ(boost::any_cast<untyped>(other).size(), 0u);
}

TEST(ResolveBool, KnowsItsWordsInAnyCaseAndLeavesTheRestAlone) {
    bool value = false;
    EXPECT_TRUE(ResolveBool(value, "Enable"));
    EXPECT_TRUE(value);
    EXPECT_TRUE(ResolveBool(value, "DISABLED"));
    EXPECT_FALSE(value);
    value = true;
    EXPECT_FALSE(ResolveBool(value, "enables"));
    EXPECT_FALSE(ResolveBool(value, ""));
    EXPECT_TRUE(value);
}

} // namespace
