#include "platform/xp/xp.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/env/HUTFile.h"
#include "platform/msg/HEX.h"
#include "platform/param/HPAParamMgr.h"
#include "platform/xp/script_key.h"

namespace {

using isl::iostreams::filtering_stream;
using isl::iostreams::xp_version60;
using testing::HasSubstr;
namespace xp = isl::iostreams::xp;
namespace fs = std::filesystem;

class XpTest : public testing::Test {
protected:
    XpTest() {
        fs::create_directories(m_directory);
        xp::create_key_file(path("key"));
        HPAParamMgr::getParamMgr().setValue("source.keyFile", path("key"));
    }
    ~XpTest() override {
        HPAParamMgr::getParamMgr().setValue("source.keyFile", "");
        fs::remove_all(m_directory);
    }

    std::string path(const std::string& name) const { return m_directory + "/" + name; }

    std::string write(const std::string& name, const std::string& bytes) const {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }
    std::string encrypt(const std::string& text) const {
        xp::encrypt(write("plain", text), path("encrypted"), path("key"));
        return path("encrypted");
    }

    // All that a stream delivers, read in pieces of a size.
    static std::string decrypt(const std::string& file, size_t piece = 4096) {
        filtering_stream stream(file);
        xp_version60(file, stream);
        std::string text, buffer(piece, '\0');
        while (const size_t count = stream.read(buffer.data(), piece)) {
            text.append(buffer, 0, count);
        }
        return text;
    }

    static std::string failure(const std::function<void()>& body) {
        try {
            body();
        } catch (const std::exception& thrown) {
            return thrown.what();
        }
        return "";
    }

private:
    std::string m_directory = testing::TempDir() + "/xp_" + std::to_string(::getpid());
};

std::string some_text(size_t size) {
    std::string text(size, '\0');
    unsigned value = 12345;
    for (char& c : text) {
        value = value * 1103515245 + 12345;
        c = static_cast<char>(value >> 16);
    }
    return text;
}

TEST_F(XpTest, ReadsBackTextsOfAnySize) {
    for (const size_t size : {0, 1, 16, 65535, 65536, 65537, 131071, 131072, 131073, 1000000}) {
        const std::string text = some_text(size);
        EXPECT_TRUE(decrypt(encrypt(text)) == text) << size;
    }
}

TEST_F(XpTest, ReadsInPiecesOfAnySize) {
    const std::string text = some_text(200000);
    const std::string file = encrypt(text);
    for (const size_t piece : {1, 7, 65536, 65537, 300000}) {
        EXPECT_TRUE(decrypt(file, piece) == text) << piece;
    }
}

TEST_F(XpTest, TellsEncryptedFilesFromOthers) {
    EXPECT_TRUE(xp::is_encrypted(encrypt("text").c_str()));
    for (const char* plain :
         {"", "p", "puts hello\n", "CORVANE SCRIPT\r\n", "C", "CO", "COR", "\xEF\xBB\xBFputs hello",
          "\xE6\xBC\xA2\xE5\xAD\x97\xE6\xBC\xA2\xE5\xAD\x97\xE6\xBC\xA2\xE5\xAD\x97", "\xC3\x84nderung",
          "\x7F"
          "ELF\x02\x01\x01"}) {
        EXPECT_FALSE(xp::is_encrypted(write("other", plain).c_str())) << plain;
    }
}

TEST_F(XpTest, ADamagedMarkIsStillOne) {
    std::string bytes = HUTFile::read(encrypt("text"));
    for (const size_t at : {0, 5, 10, 15}) {
        bytes[at] = static_cast<char>(bytes[at] ^ 0x24);
    }
    EXPECT_TRUE(xp::is_encrypted(write("damaged", bytes).c_str()));
}

TEST_F(XpTest, WhatIsNoRegularFileIsNotEncryptedAndNotOpened) {
    EXPECT_FALSE(xp::is_encrypted(path("nosuch").c_str()));
    EXPECT_FALSE(xp::is_encrypted(path("").c_str()));
    EXPECT_FALSE(xp::is_encrypted("/dev/zero"));
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(xp::is_encrypted(path("pipe").c_str())); // would wait for a writer if it were opened
}

TEST_F(XpTest, NothingIsDeliveredOfAFileThatIsDamagedAtItsEnd) {
    std::string bytes = HUTFile::read(encrypt(some_text(300000)));
    bytes.back() = static_cast<char>(bytes.back() ^ 1);
    const std::string file = write("damaged", bytes);
    filtering_stream stream(file);
    EXPECT_THAT(failure([&] { xp_version60(file, stream); }), HasSubstr("17-5400"));
}

TEST_F(XpTest, AFileThatChangesAfterTheCheckIsNotDelivered) {
    const std::string file = encrypt(some_text(300000));
    filtering_stream stream(file);
    xp_version60(file, stream);
    {
        std::fstream change(file, std::ios::in | std::ios::out | std::ios::binary);
        change.seekp(200000);
        change << "changed";
    }
    std::string text, buffer(4096, '\0');
    EXPECT_THAT(failure([&] {
                    while (const size_t count = stream.read(buffer.data(), buffer.size())) {
                        text.append(buffer, 0, count);
                    }
                }),
                HasSubstr("17-5400"));
    EXPECT_LE(text.size(), 196608u);
}

TEST_F(XpTest, AStreamIsReadOnlyAndHasNoPositions) {
    filtering_stream stream(write("plain", "abc"));
    EXPECT_THAT(failure([&] { stream.write("x", 1); }), HasSubstr("no write access"));
    EXPECT_THAT(failure([&] { stream.seek(0); }), HasSubstr("no random access"));
}

TEST_F(XpTest, BytesPutBackAreReadFirst) {
    filtering_stream stream(write("plain", "abc"));
    char buffer[8] = {};
    ASSERT_EQ(stream.read(buffer, 2), 2u);
    stream.putback('y');
    stream.putback('x');
    EXPECT_EQ(stream.read(buffer, 1), 1u);
    EXPECT_EQ(buffer[0], 'x');
    for (int i = 0; i < 3; ++i) {
        stream.putback('z');
    }
    EXPECT_THAT(failure([&] { stream.putback('z'); }), HasSubstr("putback buffer full"));
    ASSERT_EQ(stream.read(buffer, sizeof buffer), 4u);
    EXPECT_EQ(std::string(buffer, 4), "zzzy");
    EXPECT_EQ(stream.read(buffer, sizeof buffer), 1u);
    EXPECT_EQ(buffer[0], 'c');
}

TEST_F(XpTest, AMissingFileIsToldByItsName) {
    EXPECT_THAT(failure([&] { filtering_stream stream(path("nosuch")); }), HasSubstr("nosuch"));
}

TEST_F(XpTest, TheIdOfAKeyIsItsOwnAndNotTheKey) {
    xp::create_key_file(path("other"));
    const xp::script_key one(path("key")), again(path("key")), other(path("other"));
    xp::script_key::id_type a, b, c;
    one.get_id(a);
    again.get_id(b);
    other.get_id(c);
    EXPECT_EQ(std::string(std::begin(a), std::end(a)), std::string(std::begin(b), std::end(b)));
    EXPECT_NE(std::string(std::begin(a), std::end(a)), std::string(std::begin(c), std::end(c)));
    EXPECT_NE(std::string(std::begin(a), std::end(a)), std::string(one.bytes(), one.bytes() + sizeof a));
}

TEST_F(XpTest, TheDocumentedLayoutIsTheOneWritten) {
    const std::string bytes = HUTFile::read(encrypt(some_text(65536 + 10)));
    EXPECT_EQ(bytes.size(), 60u + 4 + 65536 + 17 + 4 + 10 + 17);
    std::string mark = bytes.substr(0, 16);
    for (char& c : mark) {
        c = static_cast<char>(c & 0x7F);
    }
    EXPECT_EQ(mark, "CORVANE SCRIPT\r\n");
    EXPECT_EQ(bytes.substr(16, 4), std::string("\1\0\0\0", 4));
    EXPECT_EQ(bytes.substr(60, 4), std::string("\x11\0\1\0", 4));
    EXPECT_EQ(bytes.substr(60 + 4 + 65553, 4), std::string("\x1B\0\0\0", 4));
}

TEST_F(XpTest, AReplacedFileKeepsItsMode) {
    const std::string file = encrypt("one");
    ::chmod(file.c_str(), 0640);
    encrypt("two");
    struct stat status;
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    EXPECT_EQ(decrypt(file), "two");
}

} // namespace
