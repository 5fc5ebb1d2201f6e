#include "platform/msg/DataFileScanner.h"

#include <system_error>

#include "platform/env/HUTFile.h"
#include "platform/env/HUTPathUtils.h"

namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

} // namespace

std::string DataFileScanner::textOf(const std::string& path) {
    if (HUTPathUtils::exists(path) && !HUTPathUtils::isRegularFile(path) && !HUTPathUtils::isDirectory(path))
        throw std::system_error(std::make_error_code(std::errc::operation_not_supported),
                                "cannot read \"" + path + '"');
    return HUTFile::read(path);
}

void DataFileScanner::advance() {
    const char c = m_text[m_pos++];
    if (c == '\n') {
        ++m_line;
        m_column = 1;
        m_lineStart = true;
    } else if ((c & 0xC0) != 0x80) {
        ++m_column;
    }
}

void DataFileScanner::skipBlanks() {
    while (!atEnd() && (is_blank(peek()) || peek() == '#')) {
        if (peek() == '#')
            while (!atEnd() && peek() != '\n')
                advance();
        else
            advance();
    }
}

void DataFileScanner::skipToWordAtLineStart() {
    for (skipBlanks(); !atEnd() && (!m_lineStart || peek() == '"'); skipBlanks()) {
        m_lineStart = false;
        while (!atEnd() && peek() != '\n')
            advance();
    }
}

void DataFileScanner::foldLineBreak(std::string& out) {
    while (!out.empty() && (out.back() == ' ' || out.back() == '\t' || out.back() == '\r'))
        out.pop_back();
    while (!atEnd() && is_blank(peek()))
        advance();
    out += ' ';
}

std::string DataFileScanner::quoted() {
    const unsigned line = m_line, column = m_column;
    std::string out;
    for (advance(); !atEnd() && peek() != '"';) {
        if (peek() == '\n') {
            foldLineBreak(out);
            continue;
        }
        if (peek() != '\\') {
            out += peek();
            advance();
            continue;
        }
        const unsigned escapeLine = m_line, escapeColumn = m_column;
        advance();
        const char c = atEnd() ? 0 : peek();
        if (c != '"' && c != '\\' && c != 'n' && c != 't')
            throw Error(escapeLine, escapeColumn, "the escapes of a string are \\\", \\\\, \\n and \\t");
        out += c == 'n' ? '\n' : c == 't' ? '\t' : c;
        advance();
    }
    if (atEnd())
        throw Error(line, column, "the string that begins here is not closed");
    advance();
    return out;
}

DataFileScanner::Token DataFileScanner::next() {
    skipBlanks();
    Token token;
    token.line = m_line;
    token.column = m_column;
    token.firstOfLine = m_lineStart;
    m_lineStart = false;
    if (atEnd())
        return token;
    if (peek() == '"') {
        token.kind = Token::string;
        token.text = quoted();
        m_lineStart = false;
        return token;
    }
    token.kind = Token::word;
    while (!atEnd() && !is_blank(peek()) && peek() != '"' && peek() != '#') {
        token.text += peek();
        advance();
    }
    return token;
}
