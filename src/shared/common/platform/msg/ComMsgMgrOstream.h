#pragma once

#include <ostream>
#include <sstream>
#include <string>

#include "platform/msg/ComMsgMgr.h"

/// A stream onto console and log. What is written goes out as plain output, in one piece, at flush() or when
/// the stream dies.
///
///     ComMsgMgrOstream out;
///     out << table.getAsString() << '\n';
class ComMsgMgrOstream : public std::ostream {
public:
    explicit ComMsgMgrOstream(std::string subsystem = "common")
        : std::ostream(nullptr), m_buffer(std::move(subsystem)) {
        rdbuf(&m_buffer);
    }
    ~ComMsgMgrOstream() override { m_buffer.pubsync(); }

private:
    class buffer : public std::stringbuf {
    public:
        explicit buffer(std::string subsystem) : m_subsystem(std::move(subsystem)) {}

    protected:
        int sync() override {
            const std::string text = str();
            str({});
            ComMsgMgr::sendMsgString(m_subsystem, ComMsgMgr::MSGTYPE_OUTPUT, text);
            return 0;
        }

    private:
        std::string m_subsystem;
    };

    buffer m_buffer;
};
