#include "platform/tcl/HTCTclEncoding.h"

#include <algorithm>

namespace {

// Tcl spells NUL and, in some builds, characters beyond 16 bits in its own way; all else of ASCII is the same
// in every system encoding that Tcl runs under.
bool is_plain_ascii(std::string_view text) {
    // In pieces without an early end, which the compiler turns into wide operations.
    constexpr size_t piece = 64;
    for (; !text.empty(); text.remove_prefix(std::min(piece, text.size()))) {
        bool plain = true;
        for (const char c : text.substr(0, piece)) {
            plain &= static_cast<signed char>(c) > 0;
        }
        if (!plain) {
            return false;
        }
    }
    return true;
}

std::string take(Tcl_DString& ds) {
    std::string text(Tcl_DStringValue(&ds), static_cast<size_t>(Tcl_DStringLength(&ds)));
    Tcl_DStringFree(&ds);
    return text;
}

} // namespace

std::string HTCTclEncoding::fromTcl(std::string_view utf) {
    if (is_plain_ascii(utf)) {
        return std::string(utf);
    }
    Tcl_DString ds;
    Tcl_UtfToExternalDString(nullptr, utf.data(), static_cast<int>(utf.size()), &ds);
    return take(ds);
}

std::string HTCTclEncoding::toTcl(std::string_view text) {
    if (is_plain_ascii(text)) {
        return std::string(text);
    }
    Tcl_DString ds;
    Tcl_ExternalToUtfDString(nullptr, text.data(), static_cast<int>(text.size()), &ds);
    return take(ds);
}

std::string HTCTclEncoding::tclGetString(Tcl_Obj* obj) {
    int length = 0;
    const char* bytes = Tcl_GetStringFromObj(obj, &length);
    return fromTcl({bytes, static_cast<size_t>(length)});
}

Tcl_Obj* HTCTclEncoding::tclNewStringObj(const std::string& text, int length) {
    const size_t size = length < 0 ? text.size() : std::min(text.size(), static_cast<size_t>(length));
    const std::string_view part(text.data(), size);
    if (is_plain_ascii(part)) {
        return Tcl_NewStringObj(part.data(), static_cast<int>(size));
    }
    const std::string utf = toTcl(part);
    return Tcl_NewStringObj(utf.data(), static_cast<int>(utf.size()));
}
