#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/msg/ComMsgMgrSink.h"

/// Keeps what it is given, each call apart. May be used on any thread.
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
    std::vector<std::string> m_texts; // guarded by m_mutex
};
