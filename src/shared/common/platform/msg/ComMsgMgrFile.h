#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/msg/ComMsgMgrInstance.h"

/// A message file: the words of one subsystem's messages. docs/messages.md has the format.
class ComMsgMgrFile {
public:
    struct Entry {
        std::string number; ///< "17-153"
        ComMsgMgrMask severity = 0;
        std::string text;
        std::string description;
        std::string resolution;
        unsigned line = 0;
    };
    /// Something wrong in the file. Lines and columns (of characters) count from 1; 0 for the file as a
    /// whole.
    struct Problem {
        unsigned line;
        unsigned column;
        std::string what;
    };

    /// \param subsystem the name that the file must declare, empty for any.
    ComMsgMgrFile(std::string subsystem, std::string path);

    /// Reads the file and sends an ERROR for each thing wrong in it. True if there is none.
    bool parse();
    /// Reads the file without sending anything. True if problems() is empty afterwards. Entries that are
    /// whole are kept even when others are not.
    bool read();
    /// As read(), from a text instead of the file.
    bool readText(std::string_view content);

    const std::string& path() const { return m_path; }
    const std::string& subsystem() const { return m_subsystem; }
    /// The subsystem as a message id shows it, "Common".
    const std::string& alias() const { return m_alias; }
    unsigned subsystemNumber() const { return m_number; }
    const std::vector<Entry>& entries() const { return m_entries; }
    const std::vector<Problem>& problems() const { return m_problems; }

private:
    std::string m_expected;
    std::string m_path;
    std::string m_subsystem;
    std::string m_alias;
    unsigned m_number = 0;
    std::vector<Entry> m_entries;
    std::vector<Problem> m_problems;
};

/// The messages of one subsystem, ready for lookups by number.
class ComMsgMgrDb {
public:
    /// The words of a subsystem, read from data/msg/<subsystem>.msg under the application roots at the first
    /// call and kept until clear(). A session needs few of a file's messages, so each is parsed when it is
    /// asked for; the rest of the file is, and its faults are told, when one is missing. Translations come
    /// from a file of the same form in data/msg/<language>, the language being that of the variables LC_ALL,
    /// LC_MESSAGES and LANG ("de_AT", else "de"). Never null: a subsystem without a file has no entries and
    /// an alias made from its name. Safe on any thread.
    static std::shared_ptr<const ComMsgMgrDb> of(std::string_view subsystem);
    /// Forgets what was read. Values handed out stay valid.
    static void clear();

    const std::string& alias() const { return m_alias; }
    /// The number that the subsystem's keys begin with, 0 for a subsystem without a file.
    unsigned subsystemNumber() const { return m_number; }
    /// The entry of a number such as "17-153", null if there is none.
    const ComMsgMgrFile::Entry* find(std::string_view number) const;
    /// The words of a message: translated where that is asked for and there is a translation. Null if the
    /// message is not known.
    const std::string* words(std::string_view number, bool translated) const;

    /// The names of all subsystems whose files are installed, sorted.
    static std::vector<std::string> subsystems();

private:
    const ComMsgMgrFile::Entry* findParsed(std::string_view number) const;
    const ComMsgMgrFile::Entry* parseOne(std::string_view number) const;
    void parseAll() const;

    std::string m_subsystem;
    std::string m_path; ///< empty for a subsystem without a file
    std::string m_content;
    std::size_t m_firstMessage = 0; ///< where the part before the first message ends
    std::string m_alias;
    unsigned m_number = 0;
    mutable std::mutex m_mutex;
    mutable std::map<std::string, ComMsgMgrFile::Entry, std::less<>> m_entries; ///< guarded by m_mutex
    mutable bool m_parsedAll = false;                                           ///< guarded by m_mutex
    std::map<std::string, std::string, std::less<>> m_translations;             ///< words by number
};
