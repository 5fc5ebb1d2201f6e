#pragma once

#include <iterator>
#include <map>
#include <memory>
#include <string>

#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/ComMsgMgrMsgControlRule.h"

/// Settings of the message manager that belong to the work at hand, and the rules that a project keeps from
/// session to session. Any thread.
///
/// The rules made while a project is open belong to it: they are saved in a file in its directory and are in
/// force again when it is opened next. The file is written beside and renamed: at once while rules are few,
/// else in batches, at the latest before the next command at the prompt and when the project is closed. What
/// was made without a project lasts as long as the session.
class ComMsgMgrProjIface {
public:
    /// The modes that the session works in: a message is shown if one of its own modes is among them.
    /// MODE_DEFAULT at the start.
    static ComMsgMgr::OperatingMode getOperatingMode();
    static void setOperatingMode(ComMsgMgr::OperatingMode modes);

    /// The file of the rules in the directory of a project.
    static constexpr const char* ruleFileName = "message_rules.txt";

    /// Brings the rules of a project into force; a project that was open is closed before. A rule whose id is
    /// taken gets another. Throws HEXError for a directory that does not exist, and for a file of rules that
    /// cannot be read or has a fault, naming line and column: no project is open then, and the file stays as
    /// it is.
    static void openProject(const std::string& directory);
    /// Saves the rules of the project and takes them out of force. Harmless without one.
    static void closeProject();
    /// Saves the rules of the project if they have changed since. A failure is told in a CRITICAL WARNING.
    static void saveProject();
    /// The absolute path of the project's directory; empty without one.
    static std::string getProject();
    /// Opens and closes projects as the parameter messaging.projectDirectory says, from now on.
    static void followParameter();
    static void stopFollowingParameter();

    /// Walks over rules by rule id. All iterators of a walk see the rules as they were when it began.
    class Iterator {
    public:
        using Map = std::map<std::string, std::shared_ptr<const ComMsgMgrMsgControlRule>>;
        using iterator_category = std::input_iterator_tag;
        using value_type = Map::value_type;
        using difference_type = std::ptrdiff_t;
        using pointer = const value_type*;
        using reference = const value_type&;

        Iterator() = default;
        explicit Iterator(Map rules)
            : m_rules(std::make_shared<const Map>(std::move(rules))), m_at(m_rules->begin()) {}

        reference operator*() const { return *m_at; }
        pointer operator->() const { return &*m_at; }
        Iterator& operator++() {
            ++m_at;
            return *this;
        }
        Iterator operator++(int) {
            Iterator before = *this;
            ++m_at;
            return before;
        }
        bool operator==(const Iterator& other) const {
            return isAtEnd() || other.isAtEnd() ? isAtEnd() == other.isAtEnd() : m_at == other.m_at;
        }

    private:
        bool isAtEnd() const { return !m_rules || m_at == m_rules->end(); }

        std::shared_ptr<const Map> m_rules;
        Map::const_iterator m_at;
    };
    /// The rules of a scope: the empty one has all that are in force, a project's directory those of the
    /// project while it is open, any other none.
    static Iterator beginMsgControlRules(const std::string& scope);
    static Iterator endMsgControlRules(const std::string& scope);
};
