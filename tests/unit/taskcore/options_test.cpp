// The grammar by which a task takes its words.
#include "support.h"

#include <algorithm>
#include <limits>

#include "platform/taskcore/HTCErrors.h"

using namespace vek::tcltasks;

namespace grammar {

class task;
std::function<void(const task&)> probe;

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "trial::grammar";

    static void load_description() {
        in_categories("Trial");
        description_instance("Take one option of every kind.", "What was given")
            .add_options()
            .add_option("name", options::text("none"), "A text")
            .add_option("number", options::number(7), "An integer")
            .add_option("force", options::flag(), "A flag")
            .add_option("source", options::words(), "Words, one at a time")
            .add_option("names", options::list(), "A list")
            .add_option("mode", options::text("tcl"), "One of a few")
            .choices({"gui", "tcl", "batch"})
            .add_option("up", options::flag(), "Upwards")
            .excludes({"down"})
            .add_option("down", options::flag(), "Downwards")
            .add_option("many", options::words()->multi_token(), "As many words as follow")
            .add_option("last", options::value<std::vector<std::string>>()->composing(false),
                        "Words, the last of which counts")
            .add_option("ratio", options::value<double>(), "A number")
            .add_option("long", options::value<long>(), "A long integer")
            .add_option("size", options::value<unsigned>(), "A size")
            .add_option("yes", options::value<bool>(), "A boolean")
            .add_option("object", options::value<Tcl_Obj*>(), "A value as it is")
            .add_option("any", options::value<tclany>(), "A value of any type")
            .add_option("gates", options::objects<gate*>(), "Gates")
            .add_option("collection", options::value<untyped>(), "A collection of any type")
            .add_option("secret", options::text()->hidden(), "Not for everyone")
            .add_option("sourcery", options::text()->hidden(), "Not for everyone either")
            .add_option("oldname", options::text()->deprecated("Use -name."), "What -name was called")
            .add_option("fresh", options::value<int>()->default_provider([] { return ++provided; }),
                        "Computed anew")
            .add_option("first", options::text(), "First word")
            .add_option("rest", options::words(), "Other words");
        positional_instance().add("first", 1).add("rest", -1);
    }
    std::string owner() const override { return "trial"; }

    int execute(Tcl_Interp* interp) override {
        ++runs;
        if (probe) {
            probe(*this);
        }
        std::vector<std::string> given;
        for (const auto& option : get_options_description().options()) {
            if (specified_option(option.name)) {
                given.push_back(option.name);
            }
        }
        return set_result(interp, given);
    }

    static inline int runs = 0;
    static inline int provided = 0;
};

} // namespace grammar

namespace strict {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "trial::strict";

    static void load_description() {
        description_instance("Need a name.", "")
            .add_options()
            .add_option("name", options::text(), "The name")
            .required()
            .add_option("pair", options::words(), "Two words");
        positional_instance().add("name", 1).add("pair", 2);
    }
    int execute(Tcl_Interp* interp) override {
        std::vector<std::string> words = get_option<std::vector<std::string>>("pair");
        words.insert(words.begin(), get_option<std::string>("name"));
        return set_result(interp, words);
    }
};

} // namespace strict

namespace {

class Options : public TaskTest {
protected:
    Options() {
        grammar::probe = nullptr;
        grammar::task::runs = 0;
        register_task<grammar::task>(interp);
        register_task<strict::task>(interp);
    }
    ~Options() override { grammar::probe = nullptr; }

    /// The value that an option of trial::grammar has in a call.
    template <class V>
    V value(const std::string& option, const std::string& words) {
        V held{};
        grammar::probe = [&](const grammar::task& t) { held = t.get_option<V>(option); };
        eval("trial::grammar " + words);
        grammar::probe = nullptr;
        return held;
    }
    std::string text(const std::string& option, const std::string& words) {
        return value<std::string>(option, words);
    }
    std::vector<std::string> words(const std::string& option, const std::string& given) {
        return value<std::vector<std::string>>(option, given);
    }
    std::string refused(const std::string& words) {
        const int before = grammar::task::runs;
        const std::string message = error("trial::grammar " + words);
        EXPECT_EQ(grammar::task::runs, before) << "a call with a bad option reached execute";
        EXPECT_EQ(message.rfind("ERROR: [Common 17-", 0), 0u) << message;
        return message;
    }
};

using strings_t = std::vector<std::string>;

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST_F(Options, ACallWithoutWordsHasTheDefaults) {
    EXPECT_EQ(text("name", ""), "none");
    EXPECT_EQ(value<int>("number", ""), 7);
    EXPECT_FALSE(value<bool>("force", ""));
    EXPECT_EQ(words("source", ""), strings_t{});
    EXPECT_EQ(eval("trial::grammar"), "");
}

TEST_F(Options, ASwitchTakesTheNextWord) {
    EXPECT_EQ(text("name", "-name x"), "x");
    EXPECT_EQ(value<int>("number", "-number 12"), 12);
    EXPECT_EQ(eval("trial::grammar -name x -number 1"), "name number");
}

TEST_F(Options, AFlagTakesNoWord) {
    EXPECT_TRUE(value<bool>("force", "-force"));
    EXPECT_EQ(text("first", "-force false"), "false");
}

TEST_F(Options, TheValueBehindASwitchMayLookLikeASwitch) {
    EXPECT_EQ(text("name", "-name -force"), "-force");
    EXPECT_EQ(text("name", "-name --"), "--");
    EXPECT_EQ(text("name", "-name -nosuch"), "-nosuch");
}

TEST_F(Options, AnUnambiguousPrefixIsEnough) {
    EXPECT_EQ(value<int>("number", "-nu 3"), 3);
    EXPECT_TRUE(value<bool>("force", "-fo"));
    EXPECT_EQ(text("mode", "-mo gui"), "gui");
}

TEST_F(Options, AFullNameThatBeginsAnotherIsNotAmbiguous) {
    EXPECT_EQ(text("name", "-name x"), "x");
    EXPECT_EQ(words("names", "-names {a b}"), (strings_t{"a", "b"}));
}

TEST_F(Options, AnAmbiguousPrefixNamesWhatItCouldBe) {
    const std::string message = refused("-n x");
    EXPECT_TRUE(has(message, "17-5002")) << message;
    EXPECT_TRUE(has(message, "'-n'") && has(message, "'trial::grammar'")) << message;
    EXPECT_TRUE(has(message, "-name, -number or -names")) << message;
}

TEST_F(Options, AHiddenOptionDoesNotMakeAPrefixAmbiguous) {
    EXPECT_EQ(words("source", "-so a"), strings_t{"a"}) << "-sourcery is hidden";
}

TEST_F(Options, AHiddenOptionIsFoundByItsPrefixWhenNoListedOneFits) {
    EXPECT_EQ(text("secret", "-secre x"), "x");
    EXPECT_EQ(text("sourcery", "-sourcer x"), "x");
}

TEST_F(Options, TheFrameworksOptionsGiveWayToThoseOfTheTask) {
    EXPECT_EQ(value<std::string>("first", "-o x y"), "y") << "-owner does not make -object ambiguous";
    EXPECT_EQ(text("oldname", "-old x"), "x");
}

TEST_F(Options, ADoubleDashEndsTheOptions) {
    EXPECT_EQ(text("first", "-- -force"), "-force");
    EXPECT_FALSE(value<bool>("force", "-- -force"));
    EXPECT_EQ(words("rest", "-- a -- b"), (strings_t{"--", "b"}));
    EXPECT_EQ(text("first", "-force --"), "");
}

TEST_F(Options, ASingleDashIsAValue) {
    EXPECT_EQ(text("first", "-"), "-");
    EXPECT_EQ(text("name", "-name -"), "-");
}

TEST_F(Options, ANegativeNumberIsAValueWhereOneIsDue) {
    EXPECT_EQ(value<int>("number", "-number -5"), -5);
    for (const char* word : {"-5", "-.5", "-1e3", "-0x1F"}) {
        EXPECT_EQ(text("first", word), word);
    }
    EXPECT_TRUE(has(refused("-5x"), "17-5001"));
}

TEST_F(Options, PositionalWordsFillInOrderAndTheLastTakesTheRest) {
    EXPECT_EQ(text("first", "a b c"), "a");
    EXPECT_EQ(words("rest", "a b c"), (strings_t{"b", "c"}));
    EXPECT_EQ(words("rest", "a -force b -name x c"), (strings_t{"b", "c"}));
}

TEST_F(Options, APositionFilledByItsSwitchIsLeftOut) {
    EXPECT_EQ(text("first", "-first x a b"), "x");
    EXPECT_EQ(words("rest", "-first x a b"), (strings_t{"a", "b"}));
}

TEST_F(Options, MoreWordsThanPlacesAreRefusedWithTheUsage) {
    EXPECT_EQ(eval("trial::strict a b c"), "a b c");
    const std::string message = error("trial::strict a b c d");
    EXPECT_TRUE(has(message, "17-5006") && has(message, "'d'")) << message;
    EXPECT_TRUE(has(message, "strict")) << message;
}

TEST_F(Options, AMissingRequiredOptionIsNamedWithTheUsage) {
    const std::string message = error("trial::strict");
    EXPECT_TRUE(has(message, "17-5007") && has(message, "'name'") && has(message, "Usage: trial::strict"))
        << message;
}

TEST_F(Options, AMissingValueSaysWhatIsDue) {
    EXPECT_TRUE(has(refused("-number"), "needs a value: an integer"));
    EXPECT_TRUE(has(refused("-name"), "needs a value: any text"));
    EXPECT_TRUE(has(refused("-source"), "needs a value: any text"));
    EXPECT_TRUE(has(refused("-names"), "needs a value: a list"));
    EXPECT_TRUE(has(refused("-mode"), "gui, tcl or batch"));
}

TEST_F(Options, AnUnknownOptionSuggestsTheNearest) {
    const std::string message = refused("-forse");
    EXPECT_TRUE(has(message, "17-5001") && has(message, "'-forse'") && has(message, "Did you mean '-force'?"))
        << message;
    EXPECT_FALSE(has(message, "-secret")) << "hidden options are not offered";
    EXPECT_FALSE(has(message, "-oldname")) << "deprecated options are not offered";
}

TEST_F(Options, AScalarGivenTwiceIsAnError) {
    EXPECT_TRUE(has(refused("-mode gui -mode tcl"), "17-5005"));
    EXPECT_TRUE(has(refused("-number 1 -number 1"), "'-number'"));
}

TEST_F(Options, AFlagGivenTwiceIsAnError) {
    EXPECT_TRUE(has(refused("-force -force"), "Option '-force' of 'trial::grammar' is given more than once"));
}

TEST_F(Options, AListGivenTwiceIsAppended) {
    EXPECT_EQ(words("source", "-source a -source b"), (strings_t{"a", "b"}));
    EXPECT_EQ(words("source", "-source {a b} -source c"), (strings_t{"a b", "c"}));
    EXPECT_EQ(words("names", "-names {a b} -names c"), (strings_t{"a", "b", "c"}));
}

TEST_F(Options, AListThatDoesNotComposeKeepsTheLastAndWarns) {
    EXPECT_EQ(words("last", "-last a -last b"), strings_t{"b"});
    EXPECT_TRUE(has(console->all(), "WARNING: [Common 17-5010] Option '-last'")) << console->all();
}

TEST_F(Options, AMultiTokenOptionTakesWordsUpToTheNextSwitch) {
    EXPECT_EQ(words("many", "-many a b c -force d"), (strings_t{"a", "b", "c"}));
    EXPECT_EQ(text("first", "-many a b c -force d"), "d");
    EXPECT_TRUE(has(refused("-many"), "17-5003"));
}

TEST_F(Options, ChoicesAreCheckedAndTheNearestIsSuggested) {
    EXPECT_EQ(text("mode", "-mode batch"), "batch");
    const std::string message = refused("-mode bath");
    EXPECT_TRUE(has(message, "17-5004") && has(message, "gui, tcl or batch") &&
                has(message, "Did you mean 'batch'?"))
        << message;
    EXPECT_TRUE(has(refused("-mode {}"), "''"));
}

TEST_F(Options, OptionsThatExcludeEachOtherAreRefusedInEitherOrder) {
    EXPECT_TRUE(has(refused("-up -down"), "17-5008"));
    EXPECT_TRUE(has(refused("-down -up"), "17-5008"));
    EXPECT_EQ(eval("trial::grammar -down"), "down");
}

TEST_F(Options, ADeprecatedOptionWorksWarnsAndIsHidden) {
    EXPECT_EQ(text("oldname", "-oldname x"), "x");
    EXPECT_TRUE(has(console->all(), "WARNING: [Common 17-5014]") && has(console->all(), "Use -name."))
        << console->all();
    EXPECT_FALSE(has(eval("trial::grammar -help; set console {}") + console->all(), "What -name was called"));
}

TEST_F(Options, HelpIsPrintedAndNothingRuns) {
    EXPECT_EQ(eval("trial::grammar -help"), "");
    EXPECT_EQ(grammar::task::runs, 0);
    const std::string page = console->all();
    for (const char* part :
         {"Take one option of every kind.", "-number", "An integer", "Default: 7", "gui|tcl|batch", "<first>",
          "[<rest>...]", "What was given", "-quiet", "Trial"}) {
        EXPECT_TRUE(has(page, part)) << part << "\n" << page;
    }
    EXPECT_FALSE(has(page, "secret"));
}

TEST_F(Options, OwnerIsPrintedAndNothingRuns) {
    EXPECT_EQ(eval("trial::grammar -owner"), "");
    EXPECT_EQ(console->all(), "trial\n");
    EXPECT_EQ(grammar::task::runs, 0);
}

TEST_F(Options, QuietSwallowsTheErrorWhereverItStands) {
    for (const char* words : {"-quiet -nosuch", "-nosuch -quiet", "-number abc -quiet", "-n x -quiet",
                              "-number 1 -number 1 -quiet"}) {
        EXPECT_EQ(eval(std::string("trial::grammar ") + words), "") << words;
    }
    EXPECT_EQ(grammar::task::runs, 0);
    EXPECT_EQ(console->all(), "");
}

TEST_F(Options, QuietAndVerboseCanBeAskedFor) {
    bool quiet = false, verbose = false;
    grammar::probe = [&](const grammar::task& t) {
        quiet = task_manager::isQuietMode() && t.get_option<bool>("quiet");
        verbose = t.specified_option("verbose");
    };
    eval("trial::grammar -quiet -verbose -quiet");
    EXPECT_TRUE(quiet);
    EXPECT_TRUE(verbose);
    EXPECT_FALSE(task_manager::isQuietMode());
}

TEST_F(Options, InfrastructureOptionsAreKnown) {
    const auto made = task_manager::createTask("trial::grammar");
    const auto& options = dynamic_cast<const task_options_base&>(*made);
    for (const char* name : {"help", "quiet", "verbose", "owner"}) {
        EXPECT_TRUE(options.is_infra_option(name)) << name;
    }
    EXPECT_FALSE(options.is_infra_option("name"));
    EXPECT_FALSE(options.is_infra_option("nosuch"));
}

TEST_F(Options, SupportedOptionsAreTheListedOnesInOrder) {
    const auto made = task_manager::createTask("trial::grammar");
    const std::string names = dynamic_cast<const task_options_base&>(*made).supported_options();
    EXPECT_TRUE(names.starts_with("-name ")) << names;
    EXPECT_FALSE(has(names, "-secret"));
    EXPECT_FALSE(has(names, "-oldname"));
    EXPECT_TRUE(names.ends_with(" -rest")) << names;
}

TEST_F(Options, AnIntegerGivenAWordIsRefusedByNameAndValue) {
    const std::string message = refused("-number abc");
    EXPECT_EQ(message, "ERROR: [Common 17-5004] 'abc' is not a valid value for option '-number' of "
                       "'trial::grammar': expected an integer.");
}

TEST_F(Options, ValuesBeyondTheTypeAreRefused) {
    EXPECT_TRUE(has(refused("-number 99999999999999999999"), "17-5004"));
    EXPECT_TRUE(has(refused("-long 99999999999999999999"), "17-5004"));
    EXPECT_TRUE(has(refused("-size -1"), "zero or more"));
    EXPECT_TRUE(has(refused("-size 4294967296"), "17-5004"));
    EXPECT_EQ(value<unsigned>("size", "-size 4294967295"), 4294967295u);
    EXPECT_EQ(value<long>("long", "-long -9223372036854775808"), std::numeric_limits<long>::min());
    EXPECT_EQ(value<double>("ratio", "-ratio -2.5e-3"), -2.5e-3);
}

TEST_F(Options, ABooleanTakesTclsWordsAndThoseOfResolveBool) {
    for (const char* yes : {"1", "true", "yes", "on", "TRUE", "y", "enable", "Enabled", "2"}) {
        EXPECT_TRUE(value<bool>("yes", std::string("-yes ") + yes)) << yes;
    }
    for (const char* no : {"0", "false", "no", "off", "n", "disable", "DISABLED"}) {
        EXPECT_FALSE(value<bool>("yes", std::string("-yes ") + no)) << no;
    }
    EXPECT_TRUE(has(refused("-yes maybe"), "a boolean"));
}

TEST_F(Options, HugeValuesArriveWholeAndAreShortenedInMessages) {
    const tclobj_ref huge = text_value(std::string(5'000'000, 'x'));
    std::string arrived;
    grammar::probe = [&](const grammar::task& t) { arrived = t.get_option<std::string>("name"); };
    ASSERT_EQ(call({text_value("trial::grammar").get(), text_value("-name").get(), huge.get()}), TCL_OK)
        << result();
    EXPECT_EQ(arrived.size(), 5'000'000u);
    grammar::probe = nullptr;
    ASSERT_EQ(call({text_value("trial::grammar").get(), text_value("-number").get(), huge.get()}), TCL_ERROR);
    EXPECT_LT(result().size(), 1000u);
    EXPECT_TRUE(has(result(), "(5000000 bytes)")) << result();
    const tclobj_ref option = text_value("-" + std::string(5'000'000, 'x'));
    ASSERT_EQ(call({text_value("trial::grammar").get(), option.get()}), TCL_ERROR);
    EXPECT_LT(result().size(), 2000u);
}

TEST_F(Options, VeryManyWordsArrive) {
    eval("set words {}; for {set i 0} {$i < 20000} {incr i} {lappend words w$i}");
    EXPECT_EQ(words("rest", "{*}$words").size(), 19999u);
    EXPECT_EQ(text("first", "a"), "a");
}

TEST_F(Options, TextOfAnyEncodingArrives) {
    const std::string text("gr\xC3\xBC\xC3\x9F \xE6\x97\xA5\xE6\x9C\xAC");
    std::string arrived;
    grammar::probe = [&](const grammar::task& t) { arrived = t.get_option<std::string>("name"); };
    ASSERT_EQ(call({text_value("trial::grammar").get(), text_value("-name").get(), text_value(text).get()}),
              TCL_OK);
    EXPECT_EQ(HTCTclEncoding::toTcl(arrived), text);
}

TEST_F(Options, BinaryValuesArriveWithTheirNulBytes) {
    std::string arrived;
    grammar::probe = [&](const grammar::task& t) { arrived = t.get_option<std::string>("name"); };
    eval("trial::grammar -name [binary format a3a3 a\\0b c]");
    EXPECT_EQ(arrived, std::string("a\0bc\0\0", 6));
}

TEST_F(Options, AValueIsNeverSubstitutedAgain) {
    EXPECT_EQ(text("name", "-name {[exit] $x \\n}"), "[exit] $x \\n");
}

TEST_F(Options, ATclValueArrivesAsItself) {
    const tclobj_ref list = Tcl_NewListObj(0, nullptr);
    Tcl_Obj* arrived = nullptr;
    grammar::probe = [&](const grammar::task& t) { arrived = t.get_option<Tcl_Obj*>("object"); };
    ASSERT_EQ(call({text_value("trial::grammar").get(), text_value("-object").get(), list.get()}), TCL_OK);
    EXPECT_EQ(arrived, list.get());
}

TEST_F(Options, AnyValueKnowsANativeObject) {
    gate g("g0");
    const tclobj_ref obj = native_wrapper<gate*>::convert_to_tcl(&g);
    tclany arrived;
    grammar::probe = [&](const grammar::task& t) { arrived = t.get_option<tclany>("any"); };
    ASSERT_EQ(call({text_value("trial::grammar").get(), text_value("-any").get(), obj.get()}), TCL_OK);
    EXPECT_EQ(any_cast<gate*>(arrived), &g);
    eval("trial::grammar -any text");
    EXPECT_EQ(any_cast<std::string>(arrived), "text");
}

TEST_F(Options, ACollectionArrivesWithoutTextBeingMade) {
    gate a("a"), b("b");
    const gates all(HSTVector<gate*>{&a, &b});
    const tclobj_ref obj = native_wrapper<gates>::convert_to_tcl(all);
    unsigned long size = 0;
    grammar::probe = [&](const grammar::task& t) { size = t.get_option<gates>("gates").size(); };
    ASSERT_EQ(call({text_value("trial::grammar").get(), text_value("-gates").get(), obj.get()}), TCL_OK);
    EXPECT_EQ(size, 2u);
    EXPECT_EQ(obj->bytes, nullptr);

    grammar::probe = [&](const grammar::task& t) {
        EXPECT_EQ(t.get_option<untyped>("collection").base(), all.base());
    };
    ASSERT_EQ(call({text_value("trial::grammar").get(), text_value("-collection").get(), obj.get()}), TCL_OK);
    EXPECT_EQ(obj->bytes, nullptr);
}

TEST_F(Options, ACollectionGivenTwiceIsJoinedAndTheUsersOwnStaysAsItIs) {
    gate a("a"), b("b");
    const gates first(HSTVector<gate*>{&a});
    const tclobj_ref one = native_wrapper<gates>::convert_to_tcl(first);
    const tclobj_ref two = native_wrapper<gates>::convert_to_tcl(gates(HSTVector<gate*>{&b}));
    std::vector<gate*> arrived;
    grammar::probe = [&](const grammar::task& t) { arrived = *t.get_option<gates>("gates"); };
    ASSERT_EQ(call({text_value("trial::grammar").get(), text_value("-gates").get(), one.get(),
                    text_value("-gates").get(), two.get()}),
              TCL_OK);
    EXPECT_EQ(arrived, (std::vector<gate*>{&a, &b}));
    EXPECT_EQ(first.size(), 1u);
}

TEST_F(Options, AnUntypedCollectionGivenTwiceIsRefused) {
    gate a("a");
    const tclobj_ref one = native_wrapper<gates>::convert_to_tcl(gates(HSTVector<gate*>{&a}));
    EXPECT_EQ(call({text_value("trial::grammar").get(), text_value("-collection").get(), one.get(),
                    text_value("-collection").get(), one.get()}),
              TCL_ERROR);
    EXPECT_TRUE(has(result(), "17-5009")) << result();
}

TEST_F(Options, NamesOfObjectsAreFoundAndOthersRefused) {
    gate a("a"), b("b c");
    std::vector<gate*> arrived;
    grammar::probe = [&](const grammar::task& t) { arrived = *t.get_option<gates>("gates"); };
    eval("trial::grammar -gates {a {b c}}");
    EXPECT_EQ(arrived, (std::vector<gate*>{&a, &b}));
    grammar::probe = nullptr;
    EXPECT_TRUE(has(refused("-gates {a nosuch}"), "objects or their names"));
}

TEST_F(Options, AListThatIsNoListIsAnEmptyOne) {
    EXPECT_EQ(words("names", "-names \"a \\{b\""), strings_t{});
}

TEST_F(Options, ADefaultProviderIsAskedEachTimeTheOptionIsNotGiven) {
    const int before = grammar::task::provided;
    EXPECT_EQ(value<int>("fresh", ""), before + 1);
    EXPECT_EQ(value<int>("fresh", ""), before + 2);
    EXPECT_EQ(value<int>("fresh", "-fresh 0"), 0);
    EXPECT_EQ(grammar::task::provided, before + 2);
}

TEST_F(Options, ReadingAnOptionAsAnotherTypeIsAFault) {
    grammar::probe = [&](const grammar::task& t) { t.get_option<int>("name"); };
    EXPECT_TRUE(has(error("trial::grammar -name x"), "Internal fault: option 'name'"));
}

TEST_F(Options, AnOptionWithoutValueReadsAsAnEmptyOne) {
    EXPECT_EQ(value<long>("long", ""), 0);
    EXPECT_EQ(value<Tcl_Obj*>("object", ""), nullptr);
    grammar::probe = [](const grammar::task& t) {
        EXPECT_FALSE(t.get_given<long>("long"));
        EXPECT_FALSE(t.get_given<int>("number")) << "a default was not given";
        EXPECT_EQ(t.get_option_value("long"), nullptr);
        EXPECT_EQ(t.get_option_value("nosuch"), nullptr);
        EXPECT_FALSE(t.specified_option("nosuch"));
        EXPECT_EQ(t.cmdline(nullptr), "trial::grammar {a b}");
    };
    eval("trial::grammar {a b}");
}

TEST_F(Options, TheErrorNamesTheCommandAsItWasCalled) {
    eval("interp alias {} my_grammar {} trial::grammar");
    EXPECT_TRUE(has(error("::trial::grammar -nosuch"), "'trial::grammar'"));
}

TEST_F(Options, TheErrorCodeHasTheMessageId) {
    refused("-nosuch");
    EXPECT_EQ(eval("set errorCode"), "CORVANE {Common 17-5001}");
}

TEST_F(Options, DeclaringATaskTwiceIsReported) {
    grammar::task::description_instance("Another", "");
    EXPECT_TRUE(has(console->all(), "17-5015") && has(console->all(), "trial::grammar")) << console->all();
    EXPECT_EQ(grammar::task::description_instance(options_description::undeclared, "").description(),
              "Take one option of every kind.");
}

} // namespace
