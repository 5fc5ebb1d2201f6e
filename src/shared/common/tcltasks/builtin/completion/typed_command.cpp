#include "tcltasks/builtin/completion/typed_command.h"

#include <algorithm>
#include <tcl.h>

namespace HTCLibEdit::detail {

namespace {

// Tcl's parser over a text that lives as long as this.
class parse {
public:
    parse(const char* from, size_t length)
        : m_code(Tcl_ParseCommand(nullptr, from, static_cast<int>(length), 0, &m_parse)), m_from(from) {}
    ~parse() {
        if (m_code == TCL_OK) {
            Tcl_FreeParse(&m_parse);
        }
    }
    parse(const parse&) = delete;
    parse& operator=(const parse&) = delete;

    bool ok() const { return m_code == TCL_OK; }
    bool lacks(int what) const { return !ok() && m_parse.errorType == what; }
    int error() const { return m_parse.errorType; }
    /// Where the construct begins that is not closed.
    size_t opened() const { return static_cast<size_t>(m_parse.term - m_from); }
    /// Where the next command begins; none if this one ended with the text.
    std::optional<size_t> next() const {
        const char* end = m_parse.commandStart + m_parse.commandSize;
        return m_parse.term < m_parse.end ? std::optional(static_cast<size_t>(end - m_from)) : std::nullopt;
    }
    int words() const { return m_parse.numWords; }
    const Tcl_Token* tokens() const { return m_parse.tokenPtr; }
    const char* from() const { return m_from; }

private:
    Tcl_Parse m_parse;
    int m_code;
    const char* m_from;
};

// What closes a construct that is not closed; 0 if nothing does.
char closer_of(int error) {
    switch (error) {
    case TCL_PARSE_MISSING_BRACE:
    case TCL_PARSE_MISSING_VAR_BRACE:
        return '}';
    case TCL_PARSE_MISSING_QUOTE:
        return '"';
    case TCL_PARSE_MISSING_PAREN:
        return ')';
    default:
        return 0;
    }
}

// The word of a token; `length` is how much of the text was really typed.
typed_command::word word_of(const char* from, const Tcl_Token* token, size_t length) {
    typed_command::word word;
    word.begin = static_cast<size_t>(token->start - from);
    word.end = std::min(word.begin + static_cast<size_t>(token->size), length);
    std::string value;
    bool literal = token->type != TCL_TOKEN_EXPAND_WORD;
    for (int i = 1; i <= token->numComponents; ++i) {
        const Tcl_Token& part = token[i];
        const size_t begin = static_cast<size_t>(part.start - from);
        const size_t end = std::min(begin + static_cast<size_t>(part.size), length);
        switch (part.type) {
        case TCL_TOKEN_TEXT:
            if (begin < end) {
                value.append(part.start, end - begin);
            }
            break;
        case TCL_TOKEN_BS:
            if (begin < end) {
                char utf[TCL_UTF_MAX + 4];
                value.append(utf, static_cast<size_t>(Tcl_UtfBackslash(part.start, nullptr, utf)));
            }
            break;
        case TCL_TOKEN_COMMAND:
            word.runs_command = true;
            literal = false;
            break;
        default:
            literal = false;
        }
    }
    if (literal) {
        word.value = std::move(value);
    }
    return word;
}

// Reads the last command of `text`, which is closed where `length` ends what was typed.
void read_words(typed_command& command, const std::string& text, size_t length, size_t offset) {
    size_t at = 0;
    for (;;) {
        const parse parsed(text.data() + at, text.size() - at);
        const auto next = parsed.next();
        if (next && at + *next <= length) {
            at += *next;
            continue;
        }
        const Tcl_Token* token = parsed.tokens();
        for (int i = 0; i < parsed.words(); ++i, token += token->numComponents + 1) {
            typed_command::word word = word_of(text.data(), token, length);
            word.begin += offset;
            word.end += offset;
            command.words.push_back(std::move(word));
        }
        break;
    }
    if (!command.words.empty() && command.words.back().end == offset + length) {
        command.current = std::move(command.words.back());
        command.words.pop_back();
    } else {
        command.current.begin = command.current.end = offset + length;
        command.current.value.emplace();
    }
}

bool is_name_char(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == ':';
}

bool is_name(std::string_view text) {
    return std::all_of(text.begin(), text.end(), is_name_char);
}

std::string with_backslashes(std::string_view text, std::string_view special) {
    std::string result;
    for (const char c : text) {
        if (special.find(c) != std::string_view::npos) {
            result += '\\';
        }
        result += c;
    }
    return result;
}

} // namespace

bool typed_command::runs_command() const {
    return !readable || current.runs_command ||
           std::any_of(words.begin(), words.end(), [](const word& w) { return w.runs_command; });
}

typed_command read_typed_command(std::string_view text) {
    typed_command command;
    const auto unreadable = [&](size_t from) {
        command.readable = text.find('[', from) == std::string_view::npos;
        command.current.begin = command.current.end = text.size();
        return command;
    };
    if (text.size() > longest_typed_command) {
        return unreadable(0); // Tcl's parser needs stack for each bracket that is open
    }
    size_t offset = 0;
    std::string closed(text);
    size_t length = closed.size();
    const auto descend = [&](size_t into) {
        offset += into;
        closed = text.substr(offset);
        length = closed.size();
        command.open = 0;
    };
    for (;;) {
        size_t at = 0; // of the command that cannot be read
        std::optional<size_t> next = 0;
        while (next) {
            at += *next;
            const parse parsed(closed.data() + at, closed.size() - at);
            if (parsed.ok()) {
                next = parsed.next();
                if (!next) {
                    read_words(command, closed, length, offset);
                    return command;
                }
                continue;
            }
            const size_t opened = at + parsed.opened();
            if (parsed.lacks(TCL_PARSE_MISSING_BRACKET)) {
                descend(opened + 1);
                break;
            }
            // A quote or brace may stand in a command that began behind an open bracket.
            const parse before(closed.data() + at, opened - at);
            if (before.lacks(TCL_PARSE_MISSING_BRACKET)) {
                descend(at + before.opened() + 1);
                break;
            }
            const char closer = closer_of(parsed.error());
            if (!closer || closed.size() > length + 8) {
                return unreadable(offset);
            }
            if (closer == '"' || parsed.lacks(TCL_PARSE_MISSING_BRACE)) {
                command.open = closed[opened];
            }
            closed += closer;
            break;
        }
    }
}

std::optional<typed_variable> read_typed_variable(std::string_view text) {
    const size_t dollar = text.rfind('$');
    if (dollar == std::string_view::npos) {
        return std::nullopt;
    }
    size_t backslashes = 0;
    while (backslashes < dollar && text[dollar - 1 - backslashes] == '\\') {
        ++backslashes;
    }
    if (backslashes % 2 == 1) {
        return std::nullopt;
    }
    const std::string_view rest = text.substr(dollar + 1);
    typed_variable variable;
    if (rest.starts_with('{')) {
        variable.begin = dollar + 2;
        variable.braced = true;
        variable.name = rest.substr(1);
        const bool closed = variable.name.find('}') != std::string::npos;
        return closed ? std::nullopt : std::optional(variable);
    }
    const size_t paren = rest.find('(');
    if (paren == std::string_view::npos) {
        variable.begin = dollar + 1;
        variable.name = rest;
        return is_name(rest) ? std::optional(variable) : std::nullopt;
    }
    variable.begin = dollar + 1 + paren + 1;
    variable.array = rest.substr(0, paren);
    variable.name = rest.substr(paren + 1);
    // An index that substitutes something has no elements to offer.
    const bool plain = variable.name.find_first_of(")[$\\") == std::string::npos;
    return plain && is_name(variable.array) ? std::optional(variable) : std::nullopt;
}

std::string quoted(std::string_view text, char open) {
    switch (open) {
    case '{':
        return std::string(text);
    case '"':
        return with_backslashes(text, "\\\"$[");
    default:
        return with_backslashes(text, " \t\n\"$[]{};\\");
    }
}

std::string glob_quoted(std::string_view text) {
    return with_backslashes(text, "*?[]{}\\");
}

} // namespace HTCLibEdit::detail
