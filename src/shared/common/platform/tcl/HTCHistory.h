#pragma once

#include <cstddef>
#include <deque>
#include <mutex>
#include <string>

namespace HTCHistory {

/// The commands that the user gave, the newest ones of them. Events are numbered from 1. Where an event is
/// asked for, a number above 0 is its own, and one of 0 or below counts back from the newest: 0 is the
/// newest, which is the command that is running when the user typed it, -1 the one before. One for the
/// process; all operations are safe on any thread.
class Mgr {
public:
    static Mgr& instance();

    /// Adds a command as the newest event. A blank one is no event.
    void add(const std::string& command);
    /// Puts other text in the place of an event.
    void change(const std::string& value, int id);
    /// Forgets all events; numbers start from 1 again.
    void clear();
    /// Sets how many events are kept and forgets the older ones; a negative count changes nothing. Returns
    /// how many are kept.
    int keep(int count);
    /// An event's command without blanks and line ends behind it; empty for a number that is within what is
    /// kept, but was not reached yet. change() and event() throw HTCErrors::command_failed for an event that
    /// is forgotten or yet to come.
    std::string event(int id) const;
    /// A listing of the newest `count` events, all of them with a negative count: one line for each, with its
    /// number; further lines of a command are indented.
    std::string info(int count) const;
    /// The number that the next event gets.
    int nextid() const;

private:
    Mgr() = default;
    void forget_older();
    long long number_of(int id) const;

    mutable std::mutex m_mutex;       // guards all below
    std::deque<std::string> m_events; // the newest at the back
    int m_newest = 0;                 // its number
    int m_keep = 20;
};

} // namespace HTCHistory
