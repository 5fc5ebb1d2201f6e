#include "design/JsonReader.h"

#include "netlists.h"

#include <cstring>

using namespace design;

namespace {

/// Hands out a text a few bytes at a time, so that every token meets the end of a block.
class DripSource : public ByteSource {
public:
    DripSource(std::string_view text, size_t step) : text_(text), step_(step) {}
    size_t read(char* buffer, size_t size) override {
        const size_t n = std::min({size, step_, text_.size()});
        std::memcpy(buffer, text_.data(), n);
        text_.remove_prefix(n);
        return n;
    }

private:
    std::string_view text_;
    size_t step_;
};

std::string one_string(std::string_view json) {
    MemorySource source(json);
    JsonReader reader(source, "test");
    std::string text(reader.string("a text"));
    reader.finish();
    return text;
}

int64_t one_integer(std::string_view json) {
    MemorySource source(json);
    JsonReader reader(source, "test");
    const int64_t value = reader.integer("a value");
    reader.finish();
    return value;
}

void skip_all(std::string_view json) {
    MemorySource source(json);
    JsonReader reader(source, "test");
    reader.skip();
    reader.finish();
}

} // namespace

TEST(JsonReader, UnescapesEveryEscape) {
    EXPECT_EQ(one_string(R"("a\"b\\c\/d\be\ff\ng\rh\ti")"), "a\"b\\c/d\be\ff\ng\rh\ti");
    EXPECT_EQ(one_string(R"("\u0041\u00e9\u20ac")"), "A\u00e9\u20ac");
    EXPECT_EQ(one_string(R"("\ud83d\ude00")"), "\U0001F600");
}

TEST(JsonReader, ReplacesHalfASurrogatePair) {
    EXPECT_EQ(one_string(R"("\ud83dx")"), "\uFFFDx");
    EXPECT_EQ(one_string(R"("\ude00")"), "\uFFFD");
    EXPECT_EQ(one_string(R"("\ud83d\u0041")"), "\uFFFD"
                                               "A");
}

TEST(JsonReader, KeepsANulCharacter) {
    EXPECT_EQ(one_string(R"("a\u0000b")"), std::string("a\0b", 3));
}

TEST(JsonReader, TakesBytesThatAreNotUtf8AsLatin1) {
    EXPECT_EQ(one_string("\"caf\xe9\""), "caf\u00e9");
    EXPECT_EQ(one_string("\"caf\xc3\xa9\""), "caf\u00e9");
    EXPECT_EQ(one_string("\"\xed\xa0\x80\""), "\u00ed\u00a0\u0080");
    EXPECT_EQ(one_string("\"\xff\\n\""), "\u00ff\n");
}

TEST(JsonReader, RefusesAnUnknownEscape) {
    EXPECT_NE(error_of([] { one_string(R"("a\qb")"); }).find("'\\q' is no escape"), std::string::npos);
    EXPECT_NE(error_of([] { one_string(R"("\u12g4")"); }).find("hexadecimal"), std::string::npos);
    EXPECT_NE(error_of([] { one_string(R"("\u12")"); }).find("hexadecimal"), std::string::npos);
}

TEST(JsonReader, ReadsWholeNumbersOfAllSizes) {
    EXPECT_EQ(one_integer("0"), 0);
    EXPECT_EQ(one_integer("  -17 "), -17);
    EXPECT_EQ(one_integer("123456789012345678"), 123456789012345678);
    EXPECT_EQ(one_integer("9223372036854775807"), INT64_MAX);
    EXPECT_EQ(one_integer("-9223372036854775808"), INT64_MIN);
}

TEST(JsonReader, RefusesNumbersThatAreNotWhole) {
    for (const char* text :
         {"1.5", "1e3", "9223372036854775808", "1.5                  ", "7e1                    "})
        EXPECT_NE(error_of([&] { one_integer(text); }).find("whole number"), std::string::npos) << text;
    for (const char* text : {"-", "1.", "1e", "1e+"})
        EXPECT_NE(error_of([&] { one_integer(text); }).find("digit was expected"), std::string::npos) << text;
}

TEST(JsonReader, SkipsEveryKindOfValue) {
    skip_all(R"( {"a":[1,-2.5e+3,true,false,null,"x\"",{}],"b":{"c":[[]]}} )");
    EXPECT_THROW(skip_all("[1 2]"), NetlistError);
    EXPECT_THROW(skip_all("[1,]"), NetlistError);
    EXPECT_THROW(skip_all("{\"a\" 1}"), NetlistError);
    EXPECT_THROW(skip_all("{a:1}"), NetlistError);
    EXPECT_THROW(skip_all("[1}"), NetlistError);
    EXPECT_THROW(skip_all("tru"), NetlistError);
    EXPECT_THROW(skip_all("1 2"), NetlistError);
    EXPECT_THROW(skip_all(""), NetlistError);
}

TEST(JsonReader, RefusesEndlessNesting) {
    EXPECT_NO_THROW(skip_all(std::string(999, '[') + std::string(999, ']')));
    EXPECT_NE(error_of([] { skip_all(std::string(1000000, '[')); }).find("nested more than 1000"),
              std::string::npos);
}

TEST(JsonReader, TellsOffsetAndLine) {
    try {
        skip_all("{\n \"a\": 1,\n \"b\": ?}");
        FAIL();
    } catch (const NetlistError& error) {
        EXPECT_EQ(error.offset(), 17u);
        EXPECT_EQ(error.line(), 3u);
        EXPECT_EQ(error.text(), "The netlist 'test' is refused at line 3, byte offset 17: this is not JSON: "
                                "a value was expected here.");
    }
}

TEST(JsonReader, CountsLinesOverManyBlocks) {
    std::string text = "[";
    for (int i = 0; i < 500000; ++i)
        text += "\n 1234567,";
    text += "\n ?]";
    try {
        skip_all(text);
        FAIL();
    } catch (const NetlistError& error) {
        EXPECT_EQ(error.offset(), text.size() - 2);
        EXPECT_EQ(error.line(), 500002u);
    }
}

TEST(JsonReader, ReadsTheSameInBlocksOfAnySize) {
    const std::string text =
        "{ \"first\" : \"a long enough \\u20ac text\\\\\" , \"n\":-12.5e1,\"list\":[ 1,22,333 ,true]}";
    for (const size_t step : {1, 2, 3, 7, 64}) {
        DripSource source(text, step);
        JsonReader reader(source, "test");
        std::string_view key;
        reader.begin_object("it");
        ASSERT_TRUE(reader.next_member(key));
        EXPECT_EQ(key, "first");
        EXPECT_EQ(reader.string("it"), "a long enough \u20ac text\\");
        ASSERT_TRUE(reader.next_member(key));
        EXPECT_EQ(key, "n");
        EXPECT_EQ(reader.scalar_text("it"), "-12.5e1");
        ASSERT_TRUE(reader.next_member(key));
        reader.begin_array("it");
        for (const int64_t expected : {1, 22, 333}) {
            ASSERT_TRUE(reader.next_element());
            EXPECT_EQ(reader.integer("it"), expected);
        }
        ASSERT_TRUE(reader.next_element());
        EXPECT_EQ(reader.scalar_text("it"), "true");
        EXPECT_FALSE(reader.next_element());
        EXPECT_FALSE(reader.next_member(key));
        reader.finish();
    }
}
