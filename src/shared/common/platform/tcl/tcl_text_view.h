#pragma once

#include <string>
#include <string_view>
#include <tcl.h>

#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/detail/plain_ascii.h"

/// A value's text in the system encoding, for reading it in places where a copy would be felt: there is none
/// where the value has the text already, as with plain ASCII. Good as long as the value stays as it is. Any
/// thread that may touch the value.
class tcl_text_view {
public:
    explicit tcl_text_view(Tcl_Obj* obj) {
        int length = 0;
        const char* const bytes = Tcl_GetStringFromObj(obj, &length);
        m_text = {bytes, static_cast<size_t>(length)};
        if (!tcl_detail::is_plain_ascii(m_text)) {
            m_converted = HTCTclEncoding::fromTcl(m_text);
            m_text = m_converted;
        }
    }
    tcl_text_view(const tcl_text_view&) = delete;
    tcl_text_view& operator=(const tcl_text_view&) = delete;

    std::string_view get() const { return m_text; }

private:
    std::string m_converted;
    std::string_view m_text;
};
