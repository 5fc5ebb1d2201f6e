#include "platform/tcl/HTCHistory.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "platform/taskcore/HTCErrors.h"

namespace HTCHistory {

namespace {

constexpr const char* blanks = " \t\n\v\f\r";

std::string_view without_tail(std::string_view command) {
    const size_t last = command.find_last_not_of(" \n");
    return command.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

} // namespace

Mgr& Mgr::instance() {
    // Never destroyed: commands may be recorded while the process ends.
    static Mgr& manager = *new Mgr;
    return manager;
}

void Mgr::add(const std::string& command) {
    if (command.find_first_not_of(blanks) == std::string::npos) {
        return;
    }
    const std::lock_guard lock(m_mutex);
    m_events.push_back(command);
    ++m_newest;
    forget_older();
}

void Mgr::change(const std::string& value, int id) {
    const std::lock_guard lock(m_mutex);
    const long long back = m_newest - number_of(id);
    if (back < static_cast<long long>(m_events.size())) {
        m_events[m_events.size() - 1 - static_cast<size_t>(back)] = value;
    }
}

void Mgr::clear() {
    const std::lock_guard lock(m_mutex);
    m_events.clear();
    m_newest = 0;
}

int Mgr::keep(int count) {
    const std::lock_guard lock(m_mutex);
    if (count >= 0) {
        m_keep = count;
        forget_older();
    }
    return m_keep;
}

std::string Mgr::event(int id) const {
    const std::lock_guard lock(m_mutex);
    const long long back = m_newest - number_of(id);
    if (back >= static_cast<long long>(m_events.size())) {
        return {};
    }
    return std::string(without_tail(m_events[m_events.size() - 1 - static_cast<size_t>(back)]));
}

std::string Mgr::info(int count) const {
    const std::lock_guard lock(m_mutex);
    const size_t shown = count < 0 ? m_events.size() : std::min(m_events.size(), static_cast<size_t>(count));
    std::string text;
    for (size_t i = m_events.size() - shown; i < m_events.size(); ++i) {
        char number[32];
        std::snprintf(number, sizeof number, "%6d  ", m_newest - static_cast<int>(m_events.size() - 1 - i));
        text += text.empty() ? "" : "\n";
        text += number;
        for (const char c : without_tail(m_events[i])) {
            text += c;
            if (c == '\n') {
                text += '\t';
            }
        }
    }
    return text;
}

int Mgr::nextid() const {
    const std::lock_guard lock(m_mutex);
    return m_newest + 1;
}

void Mgr::forget_older() {
    while (m_events.size() > static_cast<size_t>(m_keep)) {
        m_events.pop_front();
    }
}

long long Mgr::number_of(int id) const {
    const long long number = id > 0 ? id : static_cast<long long>(m_newest) + id;
    if (number > m_newest) {
        throw HTCErrors::command_failed("event \"" + std::to_string(id) + "\" hasn't occurred yet");
    }
    if (number <= static_cast<long long>(m_newest) - m_keep) {
        throw HTCErrors::command_failed("event \"" + std::to_string(id) + "\" is too far in the past");
    }
    return number;
}

} // namespace HTCHistory
