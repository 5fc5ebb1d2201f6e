#include "design/JsonReader.h"

#include "design/Error.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace design {

namespace {

constexpr size_t block_size = 1024 * 1024;
constexpr size_t longest_token = size_t(1) << 30;
// The buffer ends with this many NULs, which stop every scan and let scans read whole words.
constexpr size_t padding = 16;
constexpr uint64_t ones = 0x0101010101010101ull;
constexpr uint64_t highs = 0x8080808080808080ull;

uint64_t load(const char* p) {
    uint64_t word;
    std::memcpy(&word, p, 8);
    return word;
}

// Non-zero where a byte of the word is a quote, a backslash or below 0x20. May mark bytes after the first
// such one wrongly, which does no harm as the caller looks at single bytes from there on.
uint64_t special_bytes(uint64_t word) {
    const uint64_t quote = word ^ (ones * '"');
    const uint64_t slash = word ^ (ones * '\\');
    return ((quote - ones) | (slash - ones) | (word - ones * 0x20)) & ~word & highs;
}

bool is_special(char c) {
    return c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20;
}

void append_utf8(std::string& out, uint32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xc0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3f));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xe0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3f));
        out += static_cast<char>(0x80 | (c & 0x3f));
    } else {
        out += static_cast<char>(0xf0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3f));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3f));
        out += static_cast<char>(0x80 | (c & 0x3f));
    }
}

// Length of the well-formed UTF-8 character at p, or 0.
size_t utf8_length(const unsigned char* p, size_t left) {
    const unsigned char c = p[0];
    if (c < 0x80)
        return 1;
    const size_t n = c >= 0xc2 && c < 0xe0 ? 2 : (c & 0xf0) == 0xe0 ? 3 : c >= 0xf0 && c < 0xf5 ? 4 : 0;
    if (n == 0 || left < n)
        return 0;
    for (size_t i = 1; i < n; ++i)
        if ((p[i] & 0xc0) != 0x80)
            return 0;
    if ((c == 0xe0 && p[1] < 0xa0) || (c == 0xed && p[1] > 0x9f) || (c == 0xf0 && p[1] < 0x90) ||
        (c == 0xf4 && p[1] > 0x8f))
        return 0;
    return n;
}

void append_as_utf8(std::string& out, std::string_view raw) {
    const auto* p = reinterpret_cast<const unsigned char*>(raw.data());
    for (size_t i = 0; i < raw.size();) {
        const size_t n = utf8_length(p + i, raw.size() - i);
        if (n == 0)
            append_utf8(out, p[i]);
        else
            out.append(raw, i, n);
        i += n == 0 ? 1 : n;
    }
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

const char* kind_name(JsonReader::Kind kind) {
    static constexpr const char* names[] = {"an object", "an array", "a string", "a number",
                                            "a boolean", "null",     "the end"};
    return names[static_cast<size_t>(kind)];
}

} // namespace

JsonReader::JsonReader(ByteSource& source, std::string name)
    : source_(source), name_(std::move(name)), buffer_(block_size / 16 + padding), cur_(buffer_.data()),
      end_(cur_) {
    *end_ = '\0';
}

bool JsonReader::refill() {
    if (at_end_)
        return false;
    char* keep = token_ ? token_ : cur_;
    const size_t kept = static_cast<size_t>(end_ - keep);
    const size_t at = static_cast<size_t>(cur_ - keep);
    if (kept >= longest_token)
        fail_here("a single value is longer than 1 GiB");
    lines_ += static_cast<uint64_t>(std::count(buffer_.data(), keep, '\n'));
    base_ += static_cast<uint64_t>(keep - buffer_.data());
    std::memmove(buffer_.data(), keep, kept);
    const size_t wanted = std::max(block_size, kept * 2) + padding;
    if (buffer_.size() < wanted && base_ + kept > 0)
        buffer_.resize(wanted);
    const size_t n = source_.read(buffer_.data() + kept, buffer_.size() - padding - kept);
    cur_ = buffer_.data() + at;
    if (token_)
        token_ = buffer_.data();
    end_ = buffer_.data() + kept + n;
    std::memset(end_, 0, padding);
    at_end_ = n == 0;
    return n > 0;
}

void JsonReader::skip_blanks() {
    for (;;) {
        while (load(cur_) == ones * ' ')
            cur_ += 8;
        const char c = *cur_;
        if (static_cast<unsigned char>(c) > ' ')
            return;
        if (c == ' ' || c == '\n' || c == '\r' || c == '\t')
            ++cur_;
        else if (cur_ == end_) {
            if (!refill())
                return;
        } else
            return;
    }
}

void JsonReader::fail(const std::string& text) const {
    uint64_t line = lines_ + 1;
    const uint64_t here = std::max(mark_, base_);
    line += static_cast<uint64_t>(
        std::count(buffer_.data(), buffer_.data() + static_cast<ptrdiff_t>(here - base_), '\n'));
    throw NetlistError("The netlist '" + name_ + "' is refused at line " + std::to_string(line) +
                           ", byte offset " + std::to_string(mark_) + ": " + text + ".",
                       mark_, line);
}

void JsonReader::fail_here(const std::string& text) {
    token_ = nullptr;
    mark_ = offset_of(cur_);
    if (cur_ == end_ && at_end_)
        fail("the text ends early; " + text);
    fail(text);
}

JsonReader::Kind JsonReader::peek() {
    skip_blanks();
    mark_ = offset_of(cur_);
    switch (*cur_) {
    case '{':
        return Kind::object;
    case '[':
        return Kind::array;
    case '"':
        return Kind::string;
    case 't':
    case 'f':
        return Kind::boolean;
    case 'n':
        return Kind::null;
    default:
        if (*cur_ == '-' || is_digit(*cur_))
            return Kind::number;
        if (cur_ == end_)
            return Kind::end;
        fail_here("this is not JSON: a value was expected here");
    }
}

void JsonReader::wrong_type(std::string_view what, const char* expected) {
    const Kind kind = peek();
    if (kind == Kind::end)
        fail_here(std::string(what) + " was expected here");
    fail(std::string(what) + " must be " + expected + ", not " + kind_name(kind));
}

void JsonReader::begin_object(std::string_view what) {
    if (peek() != Kind::object)
        wrong_type(what, "an object");
    ++cur_;
    first_ = true;
}

void JsonReader::begin_array(std::string_view what) {
    if (peek() != Kind::array)
        wrong_type(what, "an array");
    ++cur_;
    first_ = true;
}

// Takes the separator before the next item of a container, or its closing bracket.
bool JsonReader::separator(char close, const char* container) {
    skip_blanks();
    if (*cur_ == close) {
        ++cur_;
        first_ = false;
        return false;
    }
    if (first_) {
        first_ = false;
        return true;
    }
    if (*cur_ != ',')
        fail_here(std::string("a ',' or '") + close + "' was expected in the " + container);
    ++cur_;
    skip_blanks();
    return true;
}

bool JsonReader::next_member(std::string_view& key) {
    if (!separator('}', "object"))
        return false;
    mark_ = offset_of(cur_);
    if (*cur_ != '"')
        fail_here("the name of a member was expected, in double quotes");
    key = raw_string();
    // The colon is nearly always in the same block; otherwise the key has to survive the next refill.
    if (*cur_ == ':') {
        ++cur_;
        return true;
    }
    if (key.data() != scratch_.data())
        scratch_.assign(key);
    key = scratch_;
    skip_blanks();
    expect(':', "a ':' was expected after the name of a member");
    return true;
}

bool JsonReader::next_element() {
    return separator(']', "array");
}

void JsonReader::expect(char c, const char* text) {
    if (*cur_ != c)
        fail_here(text);
    ++cur_;
}

std::string_view JsonReader::string(std::string_view what) {
    if (peek() != Kind::string)
        wrong_type(what, "a string");
    return raw_string();
}

// The string at the cursor, which stands on its opening quote.
std::string_view JsonReader::raw_string() {
    ++cur_;
    token_ = cur_;
    uint64_t seen = 0;
    bool escaped = false;
    for (;;) {
        uint64_t word = load(cur_);
        while (!special_bytes(word)) {
            seen |= word;
            cur_ += 8;
            word = load(cur_);
        }
        seen |= word;
        while (!is_special(*cur_))
            ++cur_;
        if (*cur_ == '"')
            break;
        if (cur_ == end_) {
            if (!refill())
                fail_here("a string is not closed");
        } else if (*cur_ == '\\') {
            escaped = true;
            // The character after the backslash is passed over with it, so that \" does not end the string.
            if (cur_ + 1 == end_ && !refill()) {
                ++cur_;
                fail_here("a string is not closed");
            }
            cur_ += 2;
        } else
            ++cur_;
    }
    const std::string_view raw(token_, static_cast<size_t>(cur_ - token_));
    ++cur_;
    token_ = nullptr;
    if (escaped)
        return unescaped(raw);
    if ((seen & highs) == 0)
        return raw;
    scratch_.clear();
    append_as_utf8(scratch_, raw);
    return scratch_;
}

std::string_view JsonReader::unescaped(std::string_view raw) {
    const uint64_t start = offset_of(raw.data());
    scratch_.clear();
    const auto hex = [&](size_t at) {
        uint32_t value = 0;
        const char* first = raw.data() + at;
        if (at + 4 > raw.size() || std::from_chars(first, first + 4, value, 16).ptr != first + 4) {
            mark_ = start + at;
            fail("four hexadecimal digits were expected after '\\u'");
        }
        return value;
    };
    for (size_t i = 0; i < raw.size();) {
        const size_t slash = std::min(raw.find('\\', i), raw.size());
        append_as_utf8(scratch_, raw.substr(i, slash - i));
        i = slash;
        if (i == raw.size())
            break;
        const char c = raw[i + 1];
        static constexpr std::string_view from = "\"\\/bfnrt", to = "\"\\/\b\f\n\r\t";
        if (c == 'u') {
            uint32_t value = hex(i + 2);
            i += 6;
            if (value >= 0xd800 && value < 0xdc00 && raw.substr(i, 2) == "\\u") {
                const uint32_t low = hex(i + 2);
                if (low >= 0xdc00 && low < 0xe000) {
                    value = 0x10000 + ((value - 0xd800) << 10) + (low - 0xdc00);
                    i += 6;
                }
            }
            // Half of a surrogate pair alone is no character.
            append_utf8(scratch_, value >= 0xd800 && value < 0xe000 ? 0xfffd : value);
        } else if (const size_t k = from.find(c); k != std::string_view::npos) {
            scratch_ += to[k];
            i += 2;
        } else {
            mark_ = start + i;
            fail("'\\" + std::string(1, c) + "' is no escape that JSON knows");
        }
    }
    return scratch_;
}

// A number, checked against JSON's grammar.
std::string_view JsonReader::number_text() {
    token_ = cur_;
    const auto digits = [&] {
        uint64_t n = 0;
        for (;; ++cur_, ++n) {
            if (cur_ == end_ && !refill())
                break;
            if (!is_digit(*cur_))
                break;
        }
        return n;
    };
    const auto at = [&](char c) { return (cur_ != end_ || refill()) && *cur_ == c; };
    if (at('-'))
        ++cur_;
    if (digits() == 0)
        fail_here("a digit was expected in a number");
    if (at('.')) {
        ++cur_;
        if (digits() == 0)
            fail_here("a digit was expected after the decimal point");
    }
    if (at('e') || at('E')) {
        ++cur_;
        if (at('+') || at('-'))
            ++cur_;
        if (digits() == 0)
            fail_here("a digit was expected in an exponent");
    }
    const std::string_view text(token_, static_cast<size_t>(cur_ - token_));
    token_ = nullptr;
    return text;
}

int64_t JsonReader::integer(std::string_view what) {
    if (peek() != Kind::number)
        wrong_type(what, "a whole number");
    // Short numbers within the block, which nearly all are, need no second look.
    if (end_ - cur_ > 16 && *cur_ != '-') {
        int64_t value = 0;
        char* p = cur_;
        for (; is_digit(*p) && p < cur_ + 15; ++p)
            value = value * 10 + (*p - '0');
        if (!is_digit(*p) && *p != '.' && *p != 'e' && *p != 'E') {
            cur_ = p;
            return value;
        }
    }
    const std::string_view text = number_text();
    int64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        fail(std::string(what) + " must be a whole number, not '" + std::string(text.substr(0, 40)) + "'");
    return value;
}

std::string_view JsonReader::scalar_text(std::string_view what) {
    const Kind kind = peek();
    if (kind == Kind::number)
        return number_text();
    if (kind != Kind::boolean && kind != Kind::null)
        wrong_type(what, "a number");
    const std::string_view word = *cur_ == 't' ? "true" : *cur_ == 'f' ? "false" : "null";
    for (const char c : word) {
        if (cur_ == end_)
            refill();
        expect(c, "this is not JSON: 'true', 'false' or 'null' was expected");
    }
    return word;
}

void JsonReader::skip() {
    nesting_.clear();
    std::string_view key;
    bool more = true;
    do {
        if (more) {
            const Kind kind = peek();
            if (kind == Kind::object || kind == Kind::array) {
                if (nesting_.size() >= max_depth)
                    fail("values are nested more than " + std::to_string(max_depth) + " deep");
                nesting_ += *cur_ == '{' ? '{' : '[';
                ++cur_;
                first_ = true;
            } else if (kind == Kind::string)
                raw_string();
            else if (kind == Kind::end)
                fail_here("a value was expected here");
            else
                scalar_text("a value");
        }
        if (nesting_.empty())
            return;
        more = nesting_.back() == '{' ? next_member(key) : next_element();
        if (!more)
            nesting_.pop_back();
    } while (more || !nesting_.empty());
}

void JsonReader::finish() {
    skip_blanks();
    if (cur_ != end_)
        fail_here("the text goes on after the end of the netlist");
}

} // namespace design
