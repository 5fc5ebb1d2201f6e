#pragma once

#include "design/ByteSource.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace design {

/// Pulls JSON values out of a byte stream, one token at a time, holding one block of it in memory.
///
/// The caller asks for what it expects:
///
///     json.begin_object();
///     while (json.next_member(key))       // key is valid until the next call
///         if (key == "width") width = json.integer("width");
///         else json.skip();
///
/// Every departure from the expectation is a NetlistError with the place of the token. Lenient where writers
/// of netlists are: control characters may stand in strings as they are, and a byte that is not UTF-8 is
/// taken as the Latin-1 character of that code, so all strings come out as UTF-8.
class JsonReader {
public:
    enum class Kind : uint8_t { object, array, string, number, boolean, null, end };

    /// `name` is how messages call the text. The source must outlive the reader.
    JsonReader(ByteSource& source, std::string name);

    /// The kind of the value that comes next.
    Kind peek();

    /// Enter an object, and step to its next member; false once at its end, which is then behind.
    /// `what` names the value for messages.
    void begin_object(std::string_view what);
    bool next_member(std::string_view& key);

    /// The same for an array.
    void begin_array(std::string_view what);
    bool next_element();

    /// A string; valid until the next call of any operation.
    std::string_view string(std::string_view what);

    /// A whole number from -2^63 to 2^63-1.
    int64_t integer(std::string_view what);

    /// A number, true, false or null as it is written; valid until the next call.
    std::string_view scalar_text(std::string_view what);

    /// Passes over one value of any kind, nested at most max_depth deep.
    void skip();

    /// Makes sure that nothing but blanks follows.
    void finish();

    /// Throws a NetlistError for the token read last.
    [[noreturn]] void fail(const std::string& text) const;

    static constexpr size_t max_depth = 1000;

private:
    void skip_blanks();
    bool refill();
    bool separator(char close, const char* container);
    void expect(char c, const char* text);
    [[noreturn]] void fail_here(const std::string& text);
    [[noreturn]] void wrong_type(std::string_view what, const char* expected);
    std::string_view raw_string();
    std::string_view unescaped(std::string_view raw);
    std::string_view number_text();
    uint64_t offset_of(const char* p) const { return base_ + static_cast<uint64_t>(p - buffer_.data()); }

    ByteSource& source_;
    std::string name_;
    std::vector<char> buffer_;
    char* cur_;
    char* end_;
    char* token_ = nullptr;
    uint64_t base_ = 0;
    uint64_t lines_ = 0;
    uint64_t mark_ = 0;
    bool first_ = true;
    bool at_end_ = false;
    std::string scratch_;
    std::string nesting_;
};

} // namespace design
