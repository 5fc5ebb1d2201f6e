#include "platform/property/HCPTclFilterMatch.h"

#include <gtest/gtest.h>

#include "sample_classes.h"

using vek::tcltasks::tclany;

namespace {

class FilterMatch : public ::testing::Test {
protected:
    FilterMatch() { sample::register_classes(); }

    bool match(const std::string& expression, sample::gate* object, bool regexp = false,
               bool nocase = false) {
        return HCPTclFilterMatch(expression, nullptr, regexp, nocase).match(tclany(object));
    }
    std::string refusal(const std::string& expression) {
        try {
            match(expression, gate);
        } catch (const HEXAll& refused) {
            return refused.message().text();
        }
        return "";
    }

    sample::gate* gate = sample::new_gate("u1/g[3]", 10);
};

} // namespace

TEST_F(FilterMatch, NumbersCompareAsNumbers) {
    EXPECT_TRUE(match("fanout > 9", gate));
    EXPECT_TRUE(match("fanout == 10.0", gate));
    EXPECT_TRUE(match("fanout >= 1e1 && fanout <= 10", gate));
    EXPECT_FALSE(match("fanout < 9", gate));
    EXPECT_TRUE(match("weight != 2", gate));
}

TEST_F(FilterMatch, BoolsCompareWithTheirWords) {
    EXPECT_TRUE(match("keep == false && keep == no && keep == 0 && !keep", gate));
    gate->keep = true;
    EXPECT_TRUE(match("keep && keep == on", gate));
}

TEST_F(FilterMatch, ANumberCannotBeComparedWithAText) {
    EXPECT_EQ(refusal("fanout > many"),
              "'many' cannot be compared with the property 'fanout', which takes a whole number of 32 bits.");
    EXPECT_EQ(refusal("slew == medium"),
              "'medium' is not a value of the property 'slew', which takes one of 'slow', 'fast'.");
}

TEST_F(FilterMatch, ATextMayReadAsANumber) {
    gate->note = "9";
    EXPECT_TRUE(match("note < 10", gate));
    EXPECT_FALSE(match("note == 9.0", gate));
    EXPECT_TRUE(match("note == 9", gate));
    gate->note = "nine";
    EXPECT_FALSE(match("note < 10", gate));
    EXPECT_TRUE(match("note", gate));
    gate->note = "False";
    EXPECT_FALSE(match("note", gate));
}

TEST_F(FilterMatch, BracketsOfNamesStandForThemselves) {
    EXPECT_TRUE(match("name =~ */g[3]", gate));
    EXPECT_FALSE(match("name =~ */g[4]", gate));
    EXPECT_TRUE(match("name =~ {.*/g\\[\\d\\]}", gate, true));
    EXPECT_TRUE(match("name == U1/G[3] && name =~ U1*", gate, false, true));
}

TEST_F(FilterMatch, AnObjectWithoutAValueDiffersFromAll) {
    EXPECT_TRUE(match("size != 3 && size !~ 3", gate));
    EXPECT_FALSE(match("size == 3 || size =~ * || size < 3 || size >= 3 || size", gate));
}

TEST_F(FilterMatch, APropertyThatTheClassDoesNotKnowIsRefused) {
    EXPECT_EQ(refusal("nosuch == 1"), "No property is named 'nosuch' for objects of the class 'gate'.");
}

TEST_F(FilterMatch, ObjectsOfSeveralClassesAreBoundInTurn) {
    HCPTclFilterMatch filter("name =~ x*", nullptr);
    sample::port port{"x1"};
    sample::gate* other = sample::new_gate("x2");
    EXPECT_TRUE(filter.match(tclany(&port)));
    EXPECT_TRUE(filter.match(tclany(other)));
    EXPECT_FALSE(filter.match(tclany(gate)));
    EXPECT_TRUE(filter.match(tclany(&port)));
}

TEST_F(FilterMatch, ATextAndAnObjectThatIsGoneAreRefused) {
    HCPTclFilterMatch filter("name == x", nullptr);
    EXPECT_THROW(filter.match(tclany(std::string("x"))), HEXError);
    EXPECT_THROW(filter.match(tclany()), HEXError);
    gate->alive = false;
    EXPECT_THROW(filter.match(tclany(gate)), HEXError);
}
