#include "platform/gui/HUTGuiEventBroker.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/gui/HDGUIStatus.h"

namespace {

struct renamed : HUTGuiEvent::GuiEventBase {
    explicit renamed(std::string text) : name(std::move(text)) {}
    std::string name;
};
struct moved : HUTGuiEvent::GuiEventBase {};

struct sourced {
    static constexpr int type = 66;
};
using sourced_event = HUTGuiEvent::detail::gui_native_event<sourced>;

class GuiEvents : public ::testing::Test {
protected:
    HUTGuiEventConnectionHandle listen(const std::string& who) {
        handles.push_back(HUTGuiEventBroker::instance().addListener<renamed>(
            [this, who](const renamed& event) { heard.push_back(who + event.name); }));
        return handles.back();
    }
    void TearDown() override {
        for (auto& handle : handles) {
            handle.disconnect();
        }
    }

    std::vector<std::string> heard;
    std::vector<HUTGuiEventConnectionHandle> handles;
};

using Names = std::vector<std::string>;

} // namespace

TEST_F(GuiEvents, ListenersHearOfTheirClassOnlyInOrder) {
    listen("1:");
    listen("2:");
    HUTGuiEvent::fire<moved>();
    HUTGuiEvent::fire<renamed>("x");
    EXPECT_EQ(heard, (Names{"1:x", "2:x"}));
}

TEST_F(GuiEvents, ADisconnectedListenerHearsNothing) {
    auto first = listen("1:");
    listen("2:");
    auto copy = first;
    EXPECT_TRUE(copy.isConnected());
    first.disconnect();
    EXPECT_FALSE(copy.isConnected());
    copy.disconnect();
    HUTGuiEvent::fire<renamed>("x");
    EXPECT_EQ(heard, Names{"2:x"});
}

TEST_F(GuiEvents, AListenerMayDisconnectAnotherAndAddOnesWhileItIsCalled) {
    auto& broker = HUTGuiEventBroker::instance();
    HUTGuiEventConnectionHandle later;
    handles.push_back(broker.addListener<renamed>([&](const renamed&) {
        later.disconnect();
        listen("new:");
    }));
    later = listen("later:");
    HUTGuiEvent::fire<renamed>("x");
    EXPECT_EQ(heard, Names{});
    handles.front().disconnect();
    HUTGuiEvent::fire<renamed>("y");
    EXPECT_EQ(heard, Names{"new:y"});
}

TEST_F(GuiEvents, AListenerMayRaiseEvents) {
    handles.push_back(HUTGuiEventBroker::instance().addListener<moved>(
        [](const moved&) { HUTGuiEvent::fire<renamed>("inner"); }));
    listen("");
    HUTGuiEvent::fire<moved>();
    EXPECT_EQ(heard, Names{"inner"});
}

TEST_F(GuiEvents, DataItemsAreReadByTheirType) {
    int code = 1;
    const sourced_event event(&code, std::string("text"));
    EXPECT_EQ(event.getType(), 66);
    EXPECT_EQ(event.size(), 2);
    EXPECT_EQ(event.dataAs<int*>(0), &code);
    EXPECT_EQ(event.dataAs<std::string>(1), "text");
    EXPECT_THROW(event.dataAs<int>(1), HEXAlgException);
    EXPECT_THROW(event.dataAs<int>(2), HEXAlgException);
    EXPECT_TRUE(event.getData(-1).empty());
}

TEST(GuiStatus, StateFourMeansCancelled) {
    HDGUIStatus status;
    EXPECT_FALSE(status.isCancelled());
    status.setState(4);
    EXPECT_TRUE(status.isCancelled());
    EXPECT_EQ(vek::tcltasks::HTCGuiStatusAccess::getGuiStatus(),
              vek::tcltasks::HTCGuiStatusAccess::getGuiStatus());
}
