#include "platform/msg/ComMsgMgrFile.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <system_error>
#include <unordered_set>
#include <utility>

#include "platform/env/HUTEnv.h"
#include "platform/env/HUTFile.h"
#include "platform/env/HUTPathUtils.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/DataFileScanner.h"

namespace {

using Token = DataFileScanner::Token;
using Entry = ComMsgMgrFile::Entry;

std::string in_quotes(std::string_view text) {
    return '\'' + std::string(text) + '\'';
}

std::optional<unsigned> to_unsigned(std::string_view text) {
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

/// The first "%..." of a message text that is no conversion, empty if all are sound.
std::string bad_conversion(std::string_view text) {
    for (std::size_t i = text.find('%'); i < text.size(); i = text.find('%', i)) {
        if (text.substr(i, 2) == "%%") {
            i += 2;
            continue;
        }
        const std::size_t letter =
            std::min(text.find_first_not_of("0123456789$-+ #.hlz", i + 1), text.size());
        if (letter == text.size() ||
            std::string_view("scdiuxfge").find(text[letter]) == std::string_view::npos)
            return std::string(text.substr(i, letter - i + 1));
        i = letter + 1;
    }
    return {};
}

/// Recursive descent over the tokens of one file. Faults are thrown as DataFileScanner::Error and end the
/// statement that they stand in.
class Parser {
public:
    explicit Parser(std::string_view text) : m_scanner(text) {}

    std::string subsystem, alias;
    unsigned number = 0;
    std::vector<Entry> entries;
    std::vector<ComMsgMgrFile::Problem> problems;

    void run() {
        advance();
        while (m_token.kind != Token::end) {
            try {
                statement();
            } catch (const DataFileScanner::Error& error) {
                problems.push_back({error.line, error.column, error.what()});
                recover();
            }
        }
    }

private:
    [[noreturn]] static void fail(const Token& at, const std::string& what) {
        throw DataFileScanner::Error(at.line, at.column, what);
    }

    void advance() { m_token = m_scanner.next(); }

    bool at(std::string_view word) const { return m_token.kind == Token::word && m_token.text == word; }

    /// Goes to the next "subsystem" or "message" at the beginning of a line.
    void recover() {
        do {
            m_scanner.skipToWordAtLineStart();
            try {
                advance();
            } catch (const DataFileScanner::Error&) {
                continue;
            }
        } while (m_token.kind != Token::end && !at("message") && !at("subsystem"));
    }

    Token take(Token::Kind kind, const char* expected) {
        if (m_token.kind != kind)
            fail(m_token, m_token.kind == Token::end
                              ? std::string("the file ends where ") + expected + " is expected"
                              : std::string(expected) + " is expected here, not " + in_quotes(m_token.text));
        Token token = std::move(m_token);
        advance();
        return token;
    }

    void statement() {
        if (at("subsystem"))
            subsystemStatement();
        else if (at("message"))
            messageStatement();
        else
            fail(m_token, "'subsystem' or 'message' is expected here, not " + in_quotes(m_token.text));
    }

    void subsystemStatement() {
        const Token keyword = take(Token::word, "'subsystem'");
        if (!subsystem.empty())
            fail(keyword, "the file belongs to the subsystem " + in_quotes(subsystem) + " already");
        Token name = take(Token::word, "the subsystem's name");
        const Token digits = take(Token::word, "the subsystem's number");
        const auto value = to_unsigned(digits.text);
        if (!value)
            fail(digits, "the subsystem's number is a whole number, not " + in_quotes(digits.text));
        alias = take(Token::string, "the subsystem's alias in double quotes").text;
        number = *value;
        subsystem = std::move(name.text);
    }

    void messageStatement() {
        const Token keyword = take(Token::word, "'message'");
        if (subsystem.empty())
            fail(keyword, "a 'subsystem' line must stand before the first message");
        Entry entry;
        entry.line = keyword.line;
        Token id = take(Token::word, "a message number such as 17-153");
        checkNumber(id);
        const Token severity = take(Token::word, "a severity");
        entry.severity = severityOf(severity);
        const Token text = take(Token::string, "the message's text in double quotes");
        if (const std::string bad = bad_conversion(text.text); !bad.empty())
            fail(text, in_quotes(bad) + " in the text is no conversion; a percent sign is written %%");
        entry.number = std::move(id.text);
        entry.text = text.text;
        field("description", entry.description, entry.number);
        field("resolution", entry.resolution, entry.number);
        if (at("reserved"))
            advance();
        m_numbers.insert(entry.number);
        entries.push_back(std::move(entry));
    }

    void checkNumber(const Token& id) const {
        const std::size_t dash = id.text.find('-');
        const bool sound = dash != std::string::npos && to_unsigned(id.text.substr(0, dash)) == number &&
                           to_unsigned(id.text.substr(dash + 1));
        if (!sound)
            fail(id, "a message number of this subsystem looks like " + std::to_string(number) +
                         "-153, not " + in_quotes(id.text));
        if (m_numbers.count(id.text))
            fail(id, "the message " + in_quotes(id.text) + " stands in the file already");
    }

    static ComMsgMgrMask severityOf(const Token& token) {
        std::string word = token.text;
        std::replace(word.begin(), word.end(), '_', ' ');
        const ComMsgMgrMask mask = ComMsgMgr::msgStr2Type(word);
        if (!mask || mask == ComMsgMgr::MSGTYPE_ANY)
            fail(token, "a severity is ERROR, CRITICAL_WARNING, WARNING, INFO, STATUS or ADVISORY, not " +
                            in_quotes(token.text));
        return mask;
    }

    void field(const char* name, std::string& value, const std::string& message) {
        if (!at(name))
            fail(m_token,
                 "the " + std::string(name) + " of the message " + in_quotes(message) + " is expected here");
        advance();
        value = take(Token::string, (std::string("the ") + name + " in double quotes").c_str()).text;
    }

    DataFileScanner m_scanner;
    Token m_token;
    std::unordered_set<std::string> m_numbers;
};

struct DbStore {
    std::mutex mutex; // guards `loaded`
    std::map<std::string, std::shared_ptr<const ComMsgMgrDb>, std::less<>> loaded;
};

/// Never destroyed: messages are sent up to the very end of the process.
DbStore& store() {
    static DbStore& s = *new DbStore;
    return s;
}

bool is_plain_name(std::string_view name) {
    return !name.empty() &&
           std::all_of(name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) || c == '_'; });
}

/// The installed file of a subsystem, or its translation if a language is given; empty if there is none.
std::string find_file(std::string_view subsystem, const std::string& language = {}) {
    if (!is_plain_name(subsystem))
        return {};
    const std::string file = (language.empty() ? "" : language + '/') + std::string(subsystem) + ".msg";
    const std::string data = HUTEnv::getOMUDataDir("msg/" + file);
    return data.empty() ? std::string() : HUTPathUtils::join({data, "msg", file});
}

/// The user's language as directories are named, the more special one first: "de_AT", "de". None for the
/// language that the texts are written in.
std::vector<std::string> languages() {
    std::string name;
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (name.empty())
            name = HUTEnv::getEnv(variable, "");
    name.resize(std::min(name.find_first_of(".@"), name.size()));
    const std::string language = name.substr(0, name.find('_'));
    if (!is_plain_name(name) || language == "C" || language == "POSIX" || language == "en")
        return {};
    return name == language ? std::vector{language} : std::vector{name, language};
}

std::string find_translation(std::string_view subsystem) {
    for (const std::string& language : languages())
        if (std::string path = find_file(subsystem, language); !path.empty())
            return path;
    return {};
}

void report(const ComMsgMgrFile& file) {
    for (const ComMsgMgrFile::Problem& problem : file.problems())
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5151@%s%u%u%s\n", file.path(),
                           problem.line, problem.column, problem.what);
}

} // namespace

ComMsgMgrFile::ComMsgMgrFile(std::string subsystem, std::string path)
    : m_expected(std::move(subsystem)), m_path(std::move(path)) {}

bool ComMsgMgrFile::parse() {
    const bool sound = read();
    report(*this);
    return sound;
}

bool ComMsgMgrFile::read() {
    try {
        return readText(HUTFile::read(m_path));
    } catch (const std::system_error& error) {
        m_entries.clear();
        m_problems = {{0, 0, error.what()}};
        return false;
    }
}

bool ComMsgMgrFile::readText(std::string_view content) {
    Parser parser(content);
    parser.run();
    if (parser.subsystem.empty() && parser.problems.empty())
        parser.problems.push_back({0, 0, "the file has no 'subsystem' line"});
    if (!m_expected.empty() && !parser.subsystem.empty() && parser.subsystem != m_expected)
        parser.problems.push_back({0, 0,
                                   "the file is for the subsystem " + in_quotes(parser.subsystem) + ", not " +
                                       in_quotes(m_expected)});
    m_subsystem = std::move(parser.subsystem);
    m_alias = std::move(parser.alias);
    m_number = parser.number;
    m_entries = std::move(parser.entries);
    m_problems = std::move(parser.problems);
    return m_problems.empty();
}

std::shared_ptr<const ComMsgMgrDb> ComMsgMgrDb::of(std::string_view subsystem) {
    {
        std::lock_guard lock(store().mutex);
        if (const auto found = store().loaded.find(subsystem); found != store().loaded.end())
            return found->second;
    }
    const auto db = std::make_shared<ComMsgMgrDb>();
    db->m_subsystem = subsystem;
    db->m_path = find_file(subsystem);
    ComMsgMgrFile head(db->m_subsystem, db->m_path);
    try {
        if (!db->m_path.empty()) {
            db->m_content = HUTFile::read(db->m_path);
            db->m_firstMessage = std::min(db->m_content.find("\nmessage "), db->m_content.size());
            head.readText(std::string_view(db->m_content).substr(0, db->m_firstMessage));
        }
    } catch (const std::system_error&) {
        head.read(); // for its words on what is wrong
    }
    ComMsgMgrFile translation(std::string(subsystem), find_translation(subsystem));
    if (!translation.path().empty())
        translation.read();
    db->m_alias = head.alias();
    db->m_number = head.subsystemNumber();
    for (const Entry& entry : translation.entries())
        db->m_translations.emplace(entry.number, entry.text);
    if (db->m_alias.empty()) {
        db->m_alias = subsystem;
        if (!db->m_alias.empty())
            db->m_alias[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(db->m_alias[0])));
    }

    std::unique_lock lock(store().mutex);
    const auto [position, isNew] = store().loaded.emplace(subsystem, db);
    std::shared_ptr<const ComMsgMgrDb> result = position->second;
    lock.unlock();
    // Only now that the subsystem is known: telling of a fault in the file of "common" looks texts up in it.
    if (isNew) {
        report(head);
        report(translation);
    }
    return result;
}

void ComMsgMgrDb::clear() {
    std::lock_guard lock(store().mutex);
    store().loaded.clear();
}

const ComMsgMgrFile::Entry* ComMsgMgrDb::find(std::string_view number) const {
    if (const ComMsgMgrFile::Entry* entry = findParsed(number))
        return entry;
    if (const ComMsgMgrFile::Entry* entry = parseOne(number))
        return entry;
    parseAll();
    return findParsed(number);
}

const ComMsgMgrFile::Entry* ComMsgMgrDb::findParsed(std::string_view number) const {
    std::lock_guard lock(m_mutex);
    const auto found = m_entries.find(number);
    return found == m_entries.end() ? nullptr : &found->second;
}

const ComMsgMgrFile::Entry* ComMsgMgrDb::parseOne(std::string_view number) const {
    const std::string_view content = m_content;
    const std::size_t begin = content.find("\nmessage " + std::string(number) + ' ');
    if (begin == content.npos)
        return nullptr;
    const std::size_t end = content.find("\nmessage ", begin + 1);
    ComMsgMgrFile part(m_subsystem, m_path);
    if (!part.readText(
            std::string(content.substr(0, m_firstMessage)).append(content.substr(begin, end - begin))))
        return nullptr;
    std::lock_guard lock(m_mutex);
    return &m_entries.emplace(number, part.entries().front()).first->second;
}

void ComMsgMgrDb::parseAll() const {
    ComMsgMgrFile whole(m_subsystem, m_path);
    {
        std::lock_guard lock(m_mutex);
        if (std::exchange(m_parsedAll, true))
            return;
        if (!m_content.empty())
            whole.readText(m_content);
        for (const Entry& entry : whole.entries())
            m_entries.emplace(entry.number, entry);
    }
    report(whole);
}

const std::string* ComMsgMgrDb::words(std::string_view number, bool translated) const {
    if (translated)
        if (const auto found = m_translations.find(number); found != m_translations.end())
            return &found->second;
    const ComMsgMgrFile::Entry* entry = find(number);
    return entry ? &entry->text : nullptr;
}

std::vector<std::string> ComMsgMgrDb::subsystems() {
    std::vector<std::string> names;
    for (const std::string& root : HUTEnv::getOMUAppRootList()) {
        std::error_code error;
        for (std::filesystem::directory_iterator it(root + "/data/msg", error), end; !error && it != end;
             it.increment(error))
            if (it->path().extension() == ".msg")
                names.push_back(it->path().stem().string());
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}
