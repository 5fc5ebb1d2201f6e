#include "platform/msg/detail/RuleFile.h"

#include <algorithm>
#include <system_error>

#include "platform/env/HUTFile.h"
#include "platform/msg/DataFileScanner.h"
#include "platform/msg/HEX.h"

namespace com_msg_mgr {

namespace {

using Token = DataFileScanner::Token;
using Attributes = ComMsgMgrMsgControlRule::Attributes;

constexpr std::string_view head =
    "# The message rules of this project. Corvane reads this file when the project is opened, and writes it\n"
    "# anew when rules change.\n";
constexpr std::string_view version_word = "version", version = "1", rule_word = "rule", order_key = "order";

std::string in_quotes(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c == '\n')
            out += "\\n";
        else if (c == '\t')
            out += "\\t";
        else if (c == '"' || c == '\\')
            (out += '\\') += c;
        else
            out += c;
    }
    return out += '"';
}

class Reader {
public:
    Reader(const std::string& path, std::string_view text) : m_path(path), m_scanner(text) { next(); }

    std::vector<ComMsgMgrRuleParts> read() {
        if (m_token.kind == Token::end)
            return {};
        if (!isWord(version_word))
            fail("the file begins with 'version 1'");
        next();
        if (!isWord(version))
            fail("only files of the version 1 can be read");
        next();
        std::vector<ComMsgMgrRuleParts> rules;
        while (m_token.kind != Token::end)
            rules.push_back(rule());
        return rules;
    }

private:
    ComMsgMgrRuleParts rule() {
        if (!isWord(rule_word))
            fail("a rule begins with the word 'rule'");
        const Token start = m_token;
        next();
        Attributes list;
        while (m_token.kind == Token::word && !isWord(rule_word)) {
            const std::string key = m_token.text;
            next();
            if (m_token.kind != Token::string)
                fail("a text in double quotes follows '" + key + '\'');
            list.emplace_back(key, m_token.text);
            next();
        }
        if (m_token.kind == Token::string)
            fail("a key stands in front of each text");
        try {
            const ComMsgMgrMsgControlRule checked(ComMsgMgrMsgControlRule::partsOf(list));
            ComMsgMgrRuleParts parts = checked.parts();
            parts.order = 0; // the one in the file counts
            return parts;
        } catch (const HEXError& error) {
            m_token = start;
            fail(error.message().text());
        }
    }

    bool isWord(std::string_view word) const { return m_token.kind == Token::word && m_token.text == word; }

    void next() {
        try {
            m_token = m_scanner.next();
        } catch (const DataFileScanner::Error& error) {
            m_token.line = error.line;
            m_token.column = error.column;
            fail(error.what());
        }
    }

    [[noreturn]] void fail(const std::string& reason) const {
        throw HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5465@%s%u%u%s\n", m_path,
                                         m_token.line, m_token.column, reason));
    }

    const std::string& m_path;
    DataFileScanner m_scanner;
    Token m_token;
};

} // namespace

std::vector<ComMsgMgrRuleParts> read_rule_file(const std::string& path) {
    std::string text;
    try {
        text = DataFileScanner::textOf(path);
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::no_such_file_or_directory)
            return {};
        throw HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5466@%s%s\n", path,
                                         error.code().message()));
    }
    return Reader(path, text).read();
}

void write_rule_file(const std::string& path,
                     const std::map<std::string, std::shared_ptr<const ComMsgMgrMsgControlRule>>& rules) {
    std::string text(head);
    text.append(version_word).append(1, ' ').append(version).append(1, '\n');
    std::vector<std::shared_ptr<const ComMsgMgrMsgControlRule>> inOrder;
    inOrder.reserve(rules.size());
    for (const auto& [ruleId, rule] : rules)
        inOrder.push_back(rule);
    std::sort(inOrder.begin(), inOrder.end(),
              [](const auto& a, const auto& b) { return a->parts().order < b->parts().order; });
    for (const auto& rule : inOrder) {
        Attributes list;
        rule->getMsgRuleAttributes(list);
        text.append(rule_word).append(1, '\n');
        for (const auto& [key, value] : list)
            if (!value.empty() && key != order_key)
                text.append("    ").append(key).append(1, ' ').append(in_quotes(value)).append(1, '\n');
    }
    HUTFile::write_atomically(path, text);
}

} // namespace com_msg_mgr
