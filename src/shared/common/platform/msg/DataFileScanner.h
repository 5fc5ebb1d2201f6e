#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

/// Cuts the text of a data file (messages, parameters) into words and quoted strings. A "#" begins a comment
/// up to the end of its line. A quoted string knows \" \\ \n \t, and may run over several lines: a line break
/// with the white space around it counts as one blank.
class DataFileScanner {
public:
    struct Token {
        enum Kind { word, string, end } kind = end;
        std::string text;
        unsigned line = 1;
        unsigned column = 1; ///< in characters, from 1
        bool firstOfLine = false;
    };
    /// A string that is not closed or holds an unknown escape. The scanner stands behind it.
    struct Error : std::runtime_error {
        Error(unsigned line, unsigned column, const std::string& what)
            : std::runtime_error(what), line(line), column(column) {}
        unsigned line;
        unsigned column;
    };

    /// What stands in a data file. Throws std::system_error if it cannot be read, as a pipe, which could make
    /// the reader wait for ever.
    static std::string textOf(const std::string& path);

    /// \param text must live as long as the scanner.
    explicit DataFileScanner(std::string_view text) : m_text(text) {}

    /// Takes the next token; behind the last one, a token of the kind `end`. Throws Error.
    Token next();
    /// Passes over everything up to the next line that begins with a word, which next() then gives.
    void skipToWordAtLineStart();

private:
    bool atEnd() const { return m_pos >= m_text.size(); }
    char peek() const { return m_text[m_pos]; }
    void advance();
    void skipBlanks();
    std::string quoted();
    void foldLineBreak(std::string& out);

    std::string_view m_text;
    std::size_t m_pos = 0;
    unsigned m_line = 1;
    unsigned m_column = 1;
    bool m_lineStart = true;
};
