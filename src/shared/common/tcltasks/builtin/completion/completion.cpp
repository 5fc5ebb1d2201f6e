#include "tcltasks/builtin/completion/completion.h"

#include <exception>
#include <string>

#include "platform/tcl/HTCTclEncoding.h"
#include "tcltasks/builtin/completion/complete.h"
#include "tcltasks/builtin/editline/libedit.h"

namespace HTCLibEdit::detail {

namespace {

// libedit has one unit for each character, Tcl's text is UTF-8.
std::string to_utf(const wchar_t* from, const wchar_t* end) {
    std::string text;
    for (; from < end; ++from) {
        const auto c = static_cast<char32_t>(*from);
        const auto tail = [&](int shift) { text += static_cast<char>(0x80 | (c >> shift & 0x3F)); };
        if (c < 0x80) {
            text += static_cast<char>(c);
        } else if (c < 0x800) {
            text += static_cast<char>(0xC0 | c >> 6);
            tail(0);
        } else if (c < 0x10000) {
            text += static_cast<char>(0xE0 | c >> 12);
            tail(6);
            tail(0);
        } else {
            text += static_cast<char>(0xF0 | (c >> 18 & 0x07));
            tail(12);
            tail(6);
            tail(0);
        }
    }
    return text;
}

std::wstring to_wide(std::string_view text) {
    std::wstring wide;
    for (const char byte : text) {
        const auto c = static_cast<unsigned char>(byte);
        if ((c & 0xC0) == 0x80 && !wide.empty()) {
            wide.back() = static_cast<wchar_t>(wide.back() << 6 | (c & 0x3F));
        } else {
            wide += static_cast<wchar_t>(c < 0x80 ? c : c < 0xE0 ? c & 0x1F : c < 0xF0 ? c & 0x0F : c & 0x07);
        }
    }
    return wide;
}

unsigned char apply(EditLine* el, const completion& result, const std::string& line) {
    if (result.replacement) {
        const size_t typed = to_wide(std::string_view(line).substr(result.replace)).size();
        el_deletestr(el, static_cast<int>(typed));
        el_winsertstr(el, to_wide(*result.replacement).c_str());
    }
    if (!result.output.empty()) {
        show_below(HTCTclEncoding::fromTcl(result.output));
    }
    if (result.beep) {
        el_beep(el);
    }
    switch (result.then) {
    case completion::outcome::refresh:
        return CC_REFRESH;
    case completion::outcome::redisplay:
        return CC_REDISPLAY;
    default:
        return CC_ERROR;
    }
}

} // namespace

unsigned char tcl_completion(EditLine* el, int) {
    try {
        Tcl_Interp* in = interp();
        if (!in || Tcl_InterpDeleted(in)) {
            return CC_ERROR;
        }
        const LineInfoW* info = el_wline(el);
        const std::string line = to_utf(info->buffer, info->cursor);
        return apply(el, complete(in, line), line);
    } catch (const std::exception&) {
        return CC_ERROR;
    }
}

} // namespace HTCLibEdit::detail
