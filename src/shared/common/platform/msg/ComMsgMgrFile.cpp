#include "platform/msg/ComMsgMgrFile.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdio>
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
#include "platform/env/detail/utf8.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/DataFileScanner.h"

namespace {

using Token = DataFileScanner::Token;
using Entry = ComMsgMgrFile::Entry;

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

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

/// What is wrong with the conversions of a message text, in words that can follow a colon.
std::vector<std::string> conversion_faults(std::string_view text) {
    std::vector<std::string> faults;
    std::map<unsigned, char> kinds; // of the arguments that are numbered: 's', 'c', 'd' or 'f'
    bool numbered = false, inOrder = false;
    for (std::size_t i = text.find('%'); i < text.size(); i = text.find('%', i)) {
        if (text.substr(i, 2) == "%%") {
            i += 2;
            continue;
        }
        const std::size_t letter =
            std::min(text.find_first_not_of("0123456789$-+ #.hlz", i + 1), text.size());
        const std::string conversion(text.substr(i, letter - i + 1));
        i = letter + 1;
        if (letter >= text.size() ||
            std::string_view("scdiuxfge").find(text[letter]) == std::string_view::npos) {
            faults.push_back(in_quotes(conversion) +
                             " in the text is no conversion; a percent sign is written %%");
            continue;
        }
        const std::size_t dollar = conversion.find('$');
        if (dollar == std::string::npos) {
            inOrder = true;
            continue;
        }
        numbered = true;
        const auto argument = to_unsigned(std::string_view(conversion).substr(1, dollar - 1));
        if (!argument || *argument == 0) {
            faults.push_back(in_quotes(conversion) +
                             " has no sound number of an argument; they count from 1");
            continue;
        }
        const char type = conversion.back();
        const char kind = type == 's' || type == 'c'               ? type
                          : std::string_view("fge").find(type) < 3 ? 'f'
                                                                   : 'd';
        if (const auto [known, isNew] = kinds.emplace(*argument, kind); !isNew && known->second != kind)
            faults.push_back("the argument " + std::to_string(*argument) +
                             " stands in the text with two types that do not go together");
    }
    if (numbered && inOrder)
        faults.push_back("the text numbers some of its conversions and not the others");
    if (!kinds.empty() && kinds.rbegin()->first > kinds.size() && !inOrder) {
        unsigned missing = 1;
        while (kinds.count(missing))
            ++missing;
        faults.push_back("the text leaves out the argument " + std::to_string(missing));
    }
    return faults;
}

/// The first byte in each line that is no UTF-8, or is NUL.
std::vector<ComMsgMgrFile::Problem> encoding_faults(std::string_view text) {
    std::vector<ComMsgMgrFile::Problem> faults;
    unsigned line = 1, column = 1, toldLine = 0;
    for (std::size_t i = 0; i < text.size();) {
        const unsigned char byte = static_cast<unsigned char>(text[i]);
        const auto [code, size] =
            byte && byte < 0x80 ? env_detail::utf8_char{byte, 1} : env_detail::utf8_at(text, i);
        if ((byte == 0 || (code == 0xFFFD && size == 1)) && toldLine != line) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "0x%02X", byte);
            faults.push_back({line, column, std::string("the byte ") + hex + " is no text in UTF-8"});
            toldLine = line;
        }
        i += size;
        ++column;
        if (byte == '\n') {
            ++line;
            column = 1;
        }
    }
    return faults;
}

/// Recursive descent over the tokens of one file. Faults after which it is not clear how to go on are thrown
/// as DataFileScanner::Error and end the statement that they stand in; the others are noted.
class Parser {
public:
    explicit Parser(std::string_view text)
        : problems(encoding_faults(text)), m_scanner(text.substr(text.starts_with(byte_order_mark) ? 3 : 0)) {
    }

    std::string subsystem, alias;
    unsigned number = 0;
    std::vector<Entry> entries;
    std::vector<ComMsgMgrFile::Problem> problems; ///< in the order of the file, after run()

    void run() {
        start();
        while (m_token.kind != Token::end) {
            try {
                statement();
            } catch (const DataFileScanner::Error& error) {
                problems.push_back({error.line, error.column, error.what()});
                recover();
            }
        }
        std::stable_sort(problems.begin(), problems.end(), [](const auto& a, const auto& b) {
            return std::pair(a.line, a.column) < std::pair(b.line, b.column);
        });
    }

private:
    [[noreturn]] static void fail(const Token& at, const std::string& what) {
        throw DataFileScanner::Error(at.line, at.column, what);
    }

    void note(const Token& at, const std::string& what) {
        problems.push_back({at.line, at.column, what});
        m_sound = false;
    }

    void advance() { m_token = m_scanner.next(); }

    void start() {
        try {
            advance();
        } catch (const DataFileScanner::Error& error) {
            problems.push_back({error.line, error.column, error.what()});
            recover();
        }
    }

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
        m_sound = true;
        Entry entry;
        entry.line = keyword.line;
        Token id = take(Token::word, "a message number such as 17-153");
        checkNumber(id);
        const Token severity = take(Token::word, "a severity");
        entry.severity = severityOf(severity);
        const Token text = take(Token::string, "the message's text in double quotes");
        for (const std::string& fault : conversion_faults(text.text))
            note(text, fault);
        entry.number = std::move(id.text);
        entry.text = text.text;
        field("description", entry.description, entry.number);
        field("resolution", entry.resolution, entry.number);
        if (at("reserved"))
            advance();
        m_numbers.insert(entry.number);
        if (m_sound)
            entries.push_back(std::move(entry));
    }

    void checkNumber(const Token& id) {
        const std::size_t dash = id.text.find('-');
        const bool sound = dash != std::string::npos && to_unsigned(id.text.substr(0, dash)) == number &&
                           to_unsigned(id.text.substr(dash + 1));
        if (!sound)
            note(id, "a message number of this subsystem looks like " + std::to_string(number) +
                         "-153, not " + in_quotes(id.text));
        if (m_numbers.count(id.text))
            note(id, "the message " + in_quotes(id.text) + " stands in the file already");
    }

    ComMsgMgrMask severityOf(const Token& token) {
        std::string word = token.text;
        std::replace(word.begin(), word.end(), '_', ' ');
        const ComMsgMgrMask mask = ComMsgMgr::msgStr2Type(word);
        if (!mask || mask == ComMsgMgr::MSGTYPE_ANY)
            note(token, "a severity is ERROR, CRITICAL_WARNING, WARNING, INFO, STATUS or ADVISORY, not " +
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
    bool m_sound = true; ///< the entry in work
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
        return readText(DataFileScanner::textOf(m_path));
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
            db->m_content = DataFileScanner::textOf(db->m_path);
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
    if (isNew && !ComMsgMgr::areMsgMgrErrorsMasked()) {
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
    if (!ComMsgMgr::areMsgMgrErrorsMasked())
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
