#pragma once

#include <boost/any.hpp>
#include <string>
#include <utility>
#include <vector>

#include "platform/msg/HEX.h"

/// What the command layer tells the windows, and what windows tell each other: an event is an object of a
/// class of its own, raised by doEvent() and brought to the listeners of its class by HUTGuiEventBroker.
///
///     struct net_renamed : HUTGuiEvent::GuiEventBase {
///         explicit net_renamed(net* n) : renamed(n) {}
///         net* renamed;
///     };
///     HUTGuiEvent::fire<net_renamed>(n);
///
/// Without a listener an event costs next to nothing.
namespace HUTGuiEvent {

class GuiEventBase {
public:
    virtual ~GuiEventBase() = default;

    /// Calls the listeners of the event's class, in the order in which they were added, and returns when all
    /// are done. What a listener throws is thrown on, and the rest is not called. Interpreter's thread.
    void doEvent() const;
};

/// Makes an event and raises it.
template <class Event, class... Args>
void fire(Args&&... args) {
    Event(std::forward<Args>(args)...).doEvent();
}

namespace detail {

/// The data items of an event for listeners outside C++.
class native_event : public GuiEventBase {
public:
    int size() const { return static_cast<int>(m_data.size()); }
    /// An item by its place, from 0; empty beyond the last.
    boost::any getData(int index) const;
    /// An item as a T. Throws HEXAlgException if it is none.
    template <class T>
    T dataAs(int index) const {
        const boost::any item = getData(index);
        if (const T* held = boost::any_cast<T>(&item)) {
            return *held;
        }
        throw HEXAlgException("failed type conversion of event data");
    }

protected:
    explicit native_event(std::vector<boost::any> data) : m_data(std::move(data)) {}

private:
    std::vector<boost::any> m_data;
};

/// An event for listeners outside C++: a number that tells its kind and an ordered list of data items. `Tag`
/// has the number as `static constexpr int type`.
template <class Tag>
class gui_native_event : public native_event {
public:
    template <class... Items>
    explicit gui_native_event(const Items&... items) : native_event({boost::any(items)...}) {}

    int getType() const { return Tag::type; }
};

} // namespace detail
} // namespace HUTGuiEvent
