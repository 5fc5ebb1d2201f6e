#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "platform/msg/ComMsgMgrInstance.h"

/// An error that carries a message. The dispatcher turns it into a Tcl error whose text is what().
class HEXAll : public std::exception {
public:
    /// \param message what went wrong; its words are looked up at once.
    explicit HEXAll(const ComMsgMgrInstance& message);

    /// The message's whole line, "ERROR: [Common 17-153] ...".
    const char* what() const noexcept override { return m_body->line.c_str(); }
    /// Sends the message.
    virtual void print() const;
    const ComMsgMgrInstance& message() const { return m_body->message; }

private:
    struct Body {
        ComMsgMgrInstance message;
        std::string line;
    };
    // Shared, so that copying an exception in flight cannot throw.
    std::shared_ptr<const Body> m_body;
};

/// An operation failed; the session goes on.
class HEXError : public HEXAll {
public:
    using HEXAll::HEXAll;
};

/// Nothing sensible can follow; the session should end.
class HEXFatal : public HEXAll {
public:
    using HEXAll::HEXAll;
};

/// A fault of the program itself, built from a literal sentence.
class HEXAlgException : public HEXAll {
public:
    explicit HEXAlgException(std::string_view reason);
};

/// A fault inside one of the program's own interfaces, built from a literal sentence.
class HEXInternalException : public HEXAlgException {
public:
    using HEXAlgException::HEXAlgException;
};
