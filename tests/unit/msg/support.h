#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/msg/ComMsgMgr.h"

/// A directory that lives as long as the object.
class TempDir {
public:
    TempDir();
    ~TempDir();
    std::string path(const std::string& name) const { return (m_path / name).string(); }
    const std::filesystem::path& root() const { return m_path; }

private:
    std::filesystem::path m_path;
};

void write_file(const std::string& path, const std::string& content);
std::string read_file(const std::string& path);

/// Keeps what it is given, each call apart.
class RecordingSink : public ComMsgMgrSink {
public:
    void write(std::string_view text) override {
        std::lock_guard lock(m_mutex);
        m_texts.emplace_back(text);
    }
    std::vector<std::string> texts() const {
        std::lock_guard lock(m_mutex);
        return m_texts;
    }
    std::string all() const {
        std::string result;
        for (const std::string& text : texts())
            result += text;
        return result;
    }
    void clear() {
        std::lock_guard lock(m_mutex);
        m_texts.clear();
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_texts;
};

/// A manager that nothing was sent to, with recording sinks. The subsystem "trial" (number 90, alias "Trial")
/// has the messages of support.cpp; "common" is the installed one.
class MsgTest : public ::testing::Test {
protected:
    MsgTest();
    ~MsgTest() override;

    static ComMsgMgrInstance trial(ComMsgMgr::MsgMask mask, std::string_view key,
                                   std::vector<ComMsgMgrArg> args) {
        return ComMsgMgrInstance::fromKey("trial", mask, key, std::move(args));
    }

    std::shared_ptr<RecordingSink> console = std::make_shared<RecordingSink>();
    std::shared_ptr<RecordingSink> log = std::make_shared<RecordingSink>();
    std::shared_ptr<RecordingSink> journal = std::make_shared<RecordingSink>();
};
