#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <typeindex>
#include <utility>

#include "platform/gui/HUTGuiEvent.h"

/// A listener's tie to the broker. Copies stand for the same tie; it lasts until one of them is disconnected,
/// not until they are gone.
class HUTGuiEventConnectionHandle {
public:
    HUTGuiEventConnectionHandle() = default;

    bool isConnected() const;
    /// The listener is not called any more, also not by an event that is under way. Harmless when repeated.
    void disconnect();

private:
    friend class HUTGuiEventBroker;
    explicit HUTGuiEventConnectionHandle(std::shared_ptr<bool> live) : m_live(std::move(live)) {}

    std::shared_ptr<bool> m_live; // shared with the broker; false once disconnected
};

/// Brings events to those who listen for their class. Listeners may add and disconnect listeners, themselves
/// too, and raise events; one that is added while an event is under way hears of the next. Interpreter's
/// thread.
class HUTGuiEventBroker {
public:
    static HUTGuiEventBroker& instance();

    /// Has `listener` called with each event of exactly the class `Event`.
    template <class Event>
    [[nodiscard]] HUTGuiEventConnectionHandle addListener(std::function<void(const Event&)> listener) {
        return add(typeid(Event), [call = std::move(listener)](const HUTGuiEvent::GuiEventBase& event) {
            call(static_cast<const Event&>(event));
        });
    }

private:
    friend class HUTGuiEvent::GuiEventBase;
    using call = std::function<void(const HUTGuiEvent::GuiEventBase&)>;
    struct state;

    HUTGuiEventBroker();
    HUTGuiEventConnectionHandle add(std::type_index event, call listener);
    void raise(const HUTGuiEvent::GuiEventBase& event);

    std::unique_ptr<state> m_state;
};
