#include "platform/param/HPAParamFile.h"

#include <algorithm>
#include <optional>

#include "platform/msg/DataFileScanner.h"
#include "platform/param/HPAParamText.h"

namespace {

using Token = DataFileScanner::Token;

std::string in_quotes(std::string_view text) {
    return '\'' + std::string(text) + '\'';
}

class Parser {
public:
    explicit Parser(std::string_view text) : m_scanner(text) { advance(); }

    std::vector<HPAParamDeclaration> run() {
        std::vector<HPAParamDeclaration> result;
        while (m_token.kind != Token::end)
            result.push_back(declaration());
        return result;
    }

private:
    [[noreturn]] static void fail(const Token& at, const std::string& what) {
        throw DataFileScanner::Error(at.line, at.column, what);
    }

    void advance() { m_token = m_scanner.next(); }
    bool at(std::string_view word) const { return m_token.kind == Token::word && m_token.text == word; }

    Token take(const std::string& expected, std::optional<Token::Kind> kind = {}) {
        if (m_token.kind == Token::end)
            fail(m_token, "the file ends where " + expected + " is expected");
        if (kind && m_token.kind != *kind)
            fail(m_token, expected + " is expected here, not " + in_quotes(m_token.text));
        Token token = std::move(m_token);
        advance();
        return token;
    }

    template <class Convert>
    auto value(const char* what, Convert convert) {
        const Token token = take(what);
        const auto result = convert(token.text);
        if (!result)
            fail(token, in_quotes(token.text) + " is not " + what);
        return *result;
    }
    int intValue() { return value("a whole number", hpa_param_text::to_int); }
    float floatValue() { return value("a number", hpa_param_text::to_float); }

    HPAParamDeclaration declaration() {
        if (!at("parameter"))
            fail(m_token, "'parameter' is expected here, not " + in_quotes(m_token.text));
        advance();
        HPAParamDeclaration d;
        d.name = take("the parameter's name", Token::word).text;
        d.type = type();
        const Token start = m_token;
        readDefault(d);
        while (m_token.kind == Token::word && !at("parameter"))
            property(d);
        d.description =
            take("the description of the parameter " + in_quotes(d.name) + " in double quotes", Token::string)
                .text;
        checkDefault(d, start);
        return d;
    }

    HPAType type() {
        const Token token = take("the parameter's type", Token::word);
        if (token.text == "bool")
            return HPA_BOOL;
        if (token.text == "int")
            return HPA_INT;
        if (token.text == "float")
            return HPA_FLOAT;
        if (token.text == "string")
            return HPA_STRING;
        if (token.text == "linked")
            return HPA_LINKED;
        fail(token, "a type is bool, int, float, string or linked, not " + in_quotes(token.text));
    }

    void readDefault(HPAParamDeclaration& d) {
        switch (d.type) {
        case HPA_BOOL:
        case HPA_LINKED:
            d.boolDefault = value("true or false", hpa_param_text::to_bool);
            break;
        case HPA_INT:
            d.intDefault = intValue();
            break;
        case HPA_FLOAT:
            d.floatDefault = floatValue();
            break;
        case HPA_STRING:
            d.stringDefault = take("the default in double quotes", Token::string).text;
            break;
        }
    }

    void property(HPAParamDeclaration& d) {
        const Token token = take("a property", Token::word);
        if (token.text == "range" && d.type == HPA_INT) {
            d.hasRange = true;
            d.intMin = intValue();
            d.intMax = intValue();
        } else if (token.text == "range" && d.type == HPA_FLOAT) {
            d.hasRange = true;
            d.floatMin = floatValue();
            d.floatMax = floatValue();
        } else if (token.text == "values" && d.type == HPA_STRING) {
            takeValues(d);
        } else if (token.text == "links" && d.type == HPA_LINKED) {
            takeLinks(d);
        } else if (token.text == "hidden") {
            d.visible = false;
        } else if (token.text == "deprecated") {
            d.state = HPAParam::deprecated;
        } else if (token.text == "obsolete") {
            d.state = HPAParam::obsolete;
        } else {
            fail(token, in_quotes(token.text) +
                            " does not fit here: a parameter may have range (int, float), values "
                            "(string), links (linked), hidden, deprecated, obsolete");
        }
    }

    /// `values "a" "b" end`: without the word the description would count as one of them.
    void takeValues(HPAParamDeclaration& d) {
        while (m_token.kind == Token::string) {
            d.values.push_back(std::move(m_token.text));
            advance();
        }
        if (!at("end"))
            fail(m_token, "'end' is expected behind the values");
        advance();
    }

    void takeLinks(HPAParamDeclaration& d) {
        while (m_token.kind == Token::word && m_token.text.find('.') != std::string::npos) {
            const bool inverse = m_token.text.front() == '!';
            d.linked[m_token.text.substr(inverse ? 1 : 0)] = !inverse;
            advance();
        }
        if (d.linked.empty())
            fail(m_token, "the name of a linked parameter is expected here");
    }

    static void checkDefault(const HPAParamDeclaration& d, const Token& start) {
        const bool sound =
            (d.type != HPA_INT || (d.intMin <= d.intDefault && d.intDefault <= d.intMax)) &&
            (d.type != HPA_FLOAT || (d.floatMin <= d.floatDefault && d.floatDefault <= d.floatMax)) &&
            (d.values.empty() ||
             std::find(d.values.begin(), d.values.end(), d.stringDefault) != d.values.end());
        if (!sound)
            fail(start, "the default of " + in_quotes(d.name) + " is not among the values that it may have");
    }

    DataFileScanner m_scanner;
    Token m_token;
};

} // namespace

std::vector<HPAParamDeclaration> parse_param_file(std::string_view text) {
    return Parser(text).run();
}
