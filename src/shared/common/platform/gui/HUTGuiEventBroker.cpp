#include "platform/gui/HUTGuiEventBroker.h"

#include <typeinfo>
#include <unordered_map>
#include <vector>

struct HUTGuiEventBroker::state {
    struct listener {
        std::shared_ptr<bool> live;
        std::shared_ptr<const call> function;
    };
    std::unordered_map<std::type_index, std::vector<listener>> listeners;
};

HUTGuiEventBroker::HUTGuiEventBroker() : m_state(std::make_unique<state>()) {}

HUTGuiEventBroker& HUTGuiEventBroker::instance() {
    // Never destroyed: handles outlive the libraries that hold them.
    static HUTGuiEventBroker& broker = *new HUTGuiEventBroker;
    return broker;
}

HUTGuiEventConnectionHandle HUTGuiEventBroker::add(std::type_index event, call listener) {
    auto live = std::make_shared<bool>(true);
    m_state->listeners[event].push_back({live, std::make_shared<const call>(std::move(listener))});
    return HUTGuiEventConnectionHandle(std::move(live));
}

void HUTGuiEventBroker::raise(const HUTGuiEvent::GuiEventBase& event) {
    const auto at = m_state->listeners.find(typeid(event));
    if (at == m_state->listeners.end()) {
        return;
    }
    std::erase_if(at->second, [](const state::listener& l) { return !*l.live; });
    const auto called = at->second;
    for (const state::listener& l : called) {
        if (*l.live) {
            (*l.function)(event);
        }
    }
}

void HUTGuiEvent::GuiEventBase::doEvent() const {
    HUTGuiEventBroker::instance().raise(*this);
}

boost::any HUTGuiEvent::detail::native_event::getData(int index) const {
    return index >= 0 && index < size() ? m_data[static_cast<size_t>(index)] : boost::any();
}

bool HUTGuiEventConnectionHandle::isConnected() const {
    return m_live && *m_live;
}

void HUTGuiEventConnectionHandle::disconnect() {
    if (m_live) {
        *m_live = false;
    }
}
