#include "design/Pattern.h"

#include "design/Error.h"

#include <re2/re2.h>

namespace design {

struct Pattern::Regexp {
    Regexp(std::string_view text, const RE2::Options& options)
        : re(re2::StringPiece(text.data(), text.size()), options) {}
    RE2 re;
};

namespace {

char fold(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// One character of UTF-8 further on.
size_t next_character(std::string_view text, size_t at) {
    ++at;
    while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xc0) == 0x80)
        ++at;
    return at;
}

} // namespace

bool glob_matches(std::string_view pattern, std::string_view text, bool nocase) {
    // On a mismatch the last star takes one more character; earlier stars never need to be tried again.
    size_t p = 0, t = 0, star = std::string_view::npos, star_text = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = ++p;
            star_text = t;
            continue;
        }
        if (p < pattern.size()) {
            if (pattern[p] == '?') {
                ++p;
                t = next_character(text, t);
                continue;
            }
            const size_t at = pattern[p] == '\\' && p + 1 < pattern.size() ? p + 1 : p;
            if (pattern[at] == text[t] || (nocase && fold(pattern[at]) == fold(text[t]))) {
                p = at + 1;
                ++t;
                continue;
            }
        }
        if (star == std::string_view::npos)
            return false;
        p = star;
        t = star_text = next_character(text, star_text);
    }
    while (p < pattern.size() && pattern[p] == '*')
        ++p;
    return p == pattern.size();
}

Pattern Pattern::glob(std::string_view text, bool nocase) {
    Pattern pattern;
    pattern.text_ = text;
    pattern.nocase_ = nocase;
    pattern.match_all_ = text == "*";
    std::string plain;
    bool wild = nocase;
    for (size_t i = 0; i < text.size() && !wild; ++i) {
        wild = text[i] == '*' || text[i] == '?';
        if (text[i] == '\\' && i + 1 < text.size())
            ++i;
        plain += text[i];
    }
    if (!wild)
        pattern.literal_ = std::move(plain);
    return pattern;
}

Pattern Pattern::regexp(std::string_view text, bool nocase) {
    RE2::Options options;
    options.set_case_sensitive(!nocase);
    options.set_log_errors(false);
    options.set_never_capture(true);
    options.set_dot_nl(true);
    Pattern pattern;
    pattern.text_ = text;
    pattern.nocase_ = nocase;
    auto compiled = std::make_shared<Regexp>(text, options);
    if (!compiled->re.ok())
        throw Error(Fault::bad_pattern, "The regular expression '" + std::string(text.substr(0, 200)) +
                                            "' cannot be used: " + compiled->re.error() + ".");
    pattern.regexp_ = std::move(compiled);
    return pattern;
}

bool Pattern::matches(std::string_view name) const {
    if (match_all_)
        return true;
    if (literal_)
        return name == *literal_;
    if (regexp_)
        return RE2::FullMatch(re2::StringPiece(name.data(), name.size()), regexp_->re);
    return glob_matches(text_, name, nocase_);
}

} // namespace design
