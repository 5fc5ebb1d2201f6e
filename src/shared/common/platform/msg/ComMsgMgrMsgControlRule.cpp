#include "platform/msg/ComMsgMgrMsgControlRule.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <re2/re2.h>

#include "platform/msg/HEX.h"
#include "platform/msg/detail/RuleText.h"

using com_msg_mgr::tcl_word;
using Attributes = ComMsgMgrMsgControlRule::Attributes;

struct ComMsgMgrMsgControlRule::Expressions {
    std::vector<std::unique_ptr<const RE2>> list;
};

namespace {

using M = ComMsgMgr;
using Parts = ComMsgMgrRuleParts;

/// A shorter text cannot be looked up.
constexpr std::size_t least_required = 3;

template <class... Args>
HEXError failure(com_msg_mgr::Key<std::type_identity_t<Args>...> key, const Args&... args) {
    return HEXError(ComMsgMgrInstance("common", M::MSGTYPE_ERROR, key, args...));
}

std::unique_ptr<const RE2> compiled(const std::string& pattern) {
    RE2::Options options;
    options.set_log_errors(false);
    auto expression = std::make_unique<const RE2>(pattern, options);
    if (!expression->ok())
        throw failure("@17-5460@%s%s\n", pattern.substr(0, 200), expression->error());
    return expression;
}

bool contains(std::string_view text, std::string_view part) {
    return ::memmem(text.data(), text.size(), part.data(), part.size()) != nullptr;
}

std::string word_of(M::MsgMask severity) {
    return std::string(M::msgType2Str(severity));
}

bool is_any_or_one(M::MsgMask severity) {
    return severity != 0 && M::msgStr2Type(M::msgType2Str(severity)) == severity;
}

/// "a", "b" and "c", as the user wrote them.
std::string quoted_list(const std::vector<std::string>& strings) {
    std::string out;
    for (std::size_t i = 0; i < strings.size(); ++i) {
        if (i > 0)
            out += i + 1 == strings.size() ? " and " : ", ";
        out += '\'' + strings[i] + '\'';
    }
    return out;
}

std::string number_text(int number) {
    return std::to_string(number);
}

int number_of(const std::string& key, const std::string& text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        throw failure("@17-5462@%s%s\n", key, text);
    return number;
}

std::uint64_t order_of(const std::string& key, const std::string& text) {
    std::uint64_t order = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), order);
    if (error != std::errc() || end != text.data() + text.size() || order > Parts::maxOrder)
        throw failure("@17-5462@%s%s\n", key, text);
    return order;
}

bool truth_of(const std::string& key, const std::string& text) {
    if (text != "0" && text != "1")
        throw failure("@17-5462@%s%s\n", key, text);
    return text == "1";
}

M::MsgMask severity_of(const std::string& key, const std::string& text) {
    const M::MsgMask mask = M::msgStr2Type(text);
    if (mask == 0)
        throw failure("@17-5462@%s%s\n", key, text);
    return mask;
}

/// One key of the attributes: how it is written and read.
struct Attribute {
    const char* key;
    std::string (*get)(const ComMsgMgrRuleParts&);
    void (*set)(ComMsgMgrRuleParts&, const std::string& key, const std::string& text);
};

template <std::string ComMsgMgrRuleParts::*member>
constexpr Attribute text_attribute(const char* key) {
    return {
        key, [](const ComMsgMgrRuleParts& parts) { return parts.*member; },
        [](ComMsgMgrRuleParts& parts, const std::string&, const std::string& text) { parts.*member = text; }};
}
template <bool ComMsgMgrRuleParts::*member>
constexpr Attribute flag_attribute(const char* key) {
    return {key, [](const ComMsgMgrRuleParts& parts) { return std::string(parts.*member ? "1" : "0"); },
            [](ComMsgMgrRuleParts& parts, const std::string& name, const std::string& text) {
                parts.*member = truth_of(name, text);
            }};
}
template <int ComMsgMgrRuleParts::*member>
constexpr Attribute number_attribute(const char* key) {
    return {key, [](const ComMsgMgrRuleParts& parts) { return number_text(parts.*member); },
            [](ComMsgMgrRuleParts& parts, const std::string& name, const std::string& text) {
                parts.*member = number_of(name, text);
            }};
}
template <M::MsgMask ComMsgMgrRuleParts::*member>
constexpr Attribute severity_attribute(const char* key) {
    return {key, [](const ComMsgMgrRuleParts& parts) { return word_of(parts.*member); },
            [](ComMsgMgrRuleParts& parts, const std::string& name, const std::string& text) {
                parts.*member = severity_of(name, text);
            }};
}

constexpr std::string_view string_key = "string";
constexpr Attribute attributes[] = {
    text_attribute<&Parts::ruleId>("ruleid"),
    text_attribute<&Parts::id>("id"),
    severity_attribute<&Parts::severity>("severity"),
    flag_attribute<&Parts::regexp>("regexp"),
    flag_attribute<&Parts::suppress>("suppress"),
    severity_attribute<&Parts::newSeverity>("new_severity"),
    number_attribute<&Parts::limit>("limit"),
    number_attribute<&Parts::source>("source"),
    text_attribute<&Parts::notes>("notes"),
    text_attribute<&Parts::author>("author"),
    text_attribute<&Parts::timeStamp>("created_timestamp"),
    flag_attribute<&Parts::visible>("visible"),
    flag_attribute<&Parts::kept>("kept"),
    {"order", [](const Parts& parts) { return std::to_string(parts.order); },
     [](Parts& parts, const std::string& key, const std::string& text) {
         parts.order = order_of(key, text);
     }},
};

void append_option(std::string& out, const char* option, const std::string& value) {
    if (!value.empty())
        out.append(" -").append(option).append(1, ' ').append(tcl_word(value));
}

} // namespace

ComMsgMgrMsgControlRule::ComMsgMgrMsgControlRule(ComMsgMgrRuleParts parts) : m_parts(std::move(parts)) {
    if (!is_any_or_one(m_parts.severity))
        throw failure("@17-5469@\n");
    const bool does = m_parts.suppress || m_parts.limit >= 0 || m_parts.newSeverity != M::MSGTYPE_ANY;
    if (!does || !is_any_or_one(m_parts.newSeverity))
        throw failure("@17-5463@\n");
    if (m_parts.regexp)
        m_expressions = std::make_unique<const Expressions>([&] {
            Expressions expressions;
            for (const std::string& pattern : m_parts.strings)
                expressions.list.push_back(compiled(pattern));
            return expressions;
        }());
    for (const std::string& text : m_parts.strings) {
        if (text.empty())
            throw failure("@17-5461@\n");
        std::string required = m_parts.regexp ? com_msg_mgr::required_literal(text) : text;
        if (required.size() >= least_required && required.size() > m_required.size())
            m_required = std::move(required);
    }
}

ComMsgMgrMsgControlRule::~ComMsgMgrMsgControlRule() = default;

bool ComMsgMgrMsgControlRule::matchesText(std::string_view text) const {
    if (!m_expressions)
        return std::all_of(m_parts.strings.begin(), m_parts.strings.end(),
                           [text](const std::string& part) { return contains(text, part); });
    const re2::StringPiece piece(text.data(), text.size());
    return std::all_of(m_expressions->list.begin(), m_expressions->list.end(),
                       [piece](const auto& expression) { return RE2::PartialMatch(piece, *expression); });
}

std::string ComMsgMgrMsgControlRule::getRule(bool annotations) const {
    std::string out;
    if (m_parts.suppress)
        out = "suppress";
    else if (m_parts.limit >= 0)
        out = "show " + number_text(m_parts.limit) + " of the";
    else
        out = "make " + word_of(m_parts.newSeverity) + " of";
    out += m_parts.severity == M::MSGTYPE_ANY ? " messages" : ' ' + word_of(m_parts.severity) + " messages";
    if (!m_parts.id.empty())
        out += " with the id '" + m_parts.id + '\'';
    if (!m_parts.strings.empty())
        out += (m_parts.regexp ? " that match " : " that contain ") + quoted_list(m_parts.strings);
    if (!annotations)
        return out;
    if (!m_parts.author.empty())
        out += ", by " + m_parts.author;
    if (!m_parts.timeStamp.empty())
        out += ", made " + m_parts.timeStamp;
    if (!m_parts.notes.empty())
        out += ": " + m_parts.notes;
    return out;
}

std::string ComMsgMgrMsgControlRule::getTclCommand(bool complete) const {
    std::string out = "set_msg_config";
    append_option(out, "id", m_parts.id);
    if (!m_parts.strings.empty()) {
        std::string list;
        for (const std::string& text : m_parts.strings)
            (list += list.empty() ? "" : " ") += tcl_word(text);
        append_option(out, "string", list);
    }
    if (m_parts.regexp)
        out += " -regexp";
    const bool otherwiseUnqualified = m_parts.id.empty() && m_parts.strings.empty();
    if (m_parts.severity != M::MSGTYPE_ANY || otherwiseUnqualified)
        append_option(out, "severity", word_of(m_parts.severity));
    if (m_parts.suppress)
        out += " -suppress";
    else if (m_parts.newSeverity != M::MSGTYPE_ANY)
        append_option(out, "new_severity", word_of(m_parts.newSeverity));
    else
        append_option(out, "limit", number_text(m_parts.limit));
    if (m_parts.source != M::CREATED_FROM_TCL)
        append_option(out, "source", number_text(m_parts.source));
    if (!complete)
        return out;
    append_option(out, "ruleid", m_parts.ruleId);
    append_option(out, "notes", m_parts.notes);
    append_option(out, "author", m_parts.author);
    append_option(out, "created_timestamp", m_parts.timeStamp);
    return out;
}

void ComMsgMgrMsgControlRule::getMsgRuleAttributes(Attributes& list) const {
    list.clear();
    for (const Attribute& attribute : attributes)
        list.emplace_back(attribute.key, attribute.get(m_parts));
    for (const std::string& text : m_parts.strings)
        list.emplace_back(string_key, text);
}

ComMsgMgrRuleParts ComMsgMgrMsgControlRule::partsOf(const Attributes& list) {
    ComMsgMgrRuleParts parts;
    for (const auto& [key, text] : list) {
        if (key == string_key) {
            parts.strings.push_back(text);
            continue;
        }
        const auto known = std::find_if(std::begin(attributes), std::end(attributes),
                                        [&name = key](const Attribute& one) { return one.key == name; });
        if (known == std::end(attributes))
            throw failure("@17-5464@%s\n", key);
        known->set(parts, key, text);
    }
    return parts;
}
