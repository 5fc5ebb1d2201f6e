#include "platform/env/HSTStringUtils.h"

#include "platform/env/detail/utf8.h"

#include <algorithm>
#include <optional>

using env_detail::utf8_at;

namespace {

constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char32_t lower(char32_t c) {
    return c >= U'A' && c <= U'Z' ? c - U'A' + U'a' : c;
}

constexpr bool is_space(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

struct matcher {
    std::string_view pattern, text;
    bool nocase;

    bool same(char32_t a, char32_t b) const { return a == b || (nocase && lower(a) == lower(b)); }

    bool within(char32_t first, char32_t last, char32_t c) const {
        if (first > last)
            std::swap(first, last);
        return (c >= first && c <= last) ||
               (nocase && lower(c) >= lower(first) && lower(c) <= lower(last) && lower(first) <= lower(last));
    }

    char32_t take(size_t& p) const {
        if (pattern[p] == '\\' && p + 1 < pattern.size())
            ++p;
        const auto c = utf8_at(pattern, p);
        p += c.size;
        return c.code;
    }

    // Whether `c` is in the set that begins at `p`; `p` moves behind it. Nothing when the set is not closed.
    std::optional<bool> match_set(size_t& p, char32_t c) const {
        size_t at = p + 1;
        const bool inverted = at < pattern.size() && (pattern[at] == '^' || pattern[at] == '!');
        at += inverted;
        bool found = false;
        for (bool first = true; at < pattern.size(); first = false) {
            if (pattern[at] == ']' && !first) {
                p = at + 1;
                return found != inverted;
            }
            const char32_t low = take(at);
            char32_t high = low;
            if (at + 1 < pattern.size() && pattern[at] == '-' && pattern[at + 1] != ']') {
                ++at;
                high = take(at);
            }
            found = found || within(low, high, c);
        }
        return std::nullopt;
    }

    // Matches one pattern element other than "*" with the character at `t`; both move behind it on success.
    bool match_one(size_t& p, size_t& t) const {
        const auto c = utf8_at(text, t);
        size_t behind = p;
        bool matches;
        if (pattern[p] == '?') {
            matches = true;
            ++behind;
        } else if (pattern[p] == '[') {
            if (auto set = match_set(behind, c.code)) {
                matches = *set;
            } else {
                matches = c.code == U'[';
                ++behind;
            }
        } else {
            const size_t at = pattern[p] == '\\' && p + 1 < pattern.size() ? p + 1 : p;
            const auto wanted = utf8_at(pattern, at);
            behind = at + wanted.size;
            // Bytes that are not UTF-8 are compared as they are.
            matches = wanted.code == 0xFFFD && c.code == 0xFFFD
                          ? pattern.substr(at, wanted.size) == text.substr(t, c.size)
                          : same(wanted.code, c.code);
        }
        if (matches) {
            p = behind;
            t += c.size;
        }
        return matches;
    }

    // Going back only to the last "*" is enough, so the work is at most pattern times text.
    bool match() const {
        size_t p = 0, t = 0, star = std::string_view::npos, resume = 0;
        while (t < text.size()) {
            if (p < pattern.size() && pattern[p] == '*') {
                star = ++p;
                resume = t;
            } else if (p < pattern.size() && match_one(p, t)) {
                continue;
            } else if (star != std::string_view::npos) {
                p = star;
                resume += utf8_at(text, resume).size;
                t = resume;
            } else {
                return false;
            }
        }
        while (p < pattern.size() && pattern[p] == '*')
            ++p;
        return p == pattern.size();
    }
};

// The number of single changes that make `b` of `a`, or `limit` + 1 when there are more than `limit`.
size_t edit_distance(std::string_view a, std::string_view b, size_t limit) {
    const size_t difference = a.size() > b.size() ? a.size() - b.size() : b.size() - a.size();
    if (difference > limit)
        return limit + 1;
    std::vector<size_t> before(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j)
        last[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        size_t least = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const bool same = lower(a[i - 1]) == lower(b[j - 1]);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + !same});
            if (i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) && lower(a[i - 2]) == lower(b[j - 1]))
                row[j] = std::min(row[j], before[j - 2] + 1);
            least = std::min(least, row[j]);
        }
        if (least > limit)
            return limit + 1;
        before.swap(last);
        last.swap(row);
    }
    return last[b.size()];
}

} // namespace

bool HSTStringUtils::istarts_with(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && iequals(text.substr(0, prefix.size()), prefix);
}

bool HSTStringUtils::iequals(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

std::string HSTStringUtils::to_lower(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        c = lower(c);
    return result;
}

std::string_view HSTStringUtils::trim(std::string_view text) {
    while (!text.empty() && is_space(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_space(text.back()))
        text.remove_suffix(1);
    return text;
}

std::vector<std::string> HSTStringUtils::split(std::string_view text, char separator) {
    std::vector<std::string> pieces;
    for (size_t from = 0;;) {
        const size_t to = text.find(separator, from);
        pieces.emplace_back(text.substr(from, to - from));
        if (to == std::string_view::npos)
            return pieces;
        from = to + 1;
    }
}

bool HSTStringUtils::glob_match(std::string_view pattern, std::string_view text, bool nocase) {
    return matcher{pattern, text, nocase}.match();
}

std::string HSTStringUtils::nearest(std::string_view word, const std::vector<std::string>& candidates) {
    // Names are short; a long word is not a misspelling of one, and comparing it would cost its square.
    constexpr size_t longest = 128;
    if (word.empty() || word.size() > longest)
        return {};
    size_t limit = std::max<size_t>(1, word.size() / 3);
    const std::string* best = nullptr;
    for (const std::string& candidate : candidates) {
        const size_t distance = edit_distance(word, candidate, limit);
        // A word all of whose characters change has nothing in common with the candidate.
        if (distance > limit || distance >= std::max(word.size(), candidate.size()))
            continue;
        best = &candidate;
        if (distance == 0)
            break;
        limit = distance - 1;
    }
    return best ? *best : std::string();
}

size_t HSTStringUtils::display_width(std::string_view text) {
    size_t width = 0;
    for (size_t i = 0; i < text.size();) {
        const auto c = utf8_at(text, i);
        width += env_detail::columns_of(c.code);
        i += c.size;
    }
    return width;
}
