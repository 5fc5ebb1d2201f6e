#include "platform/tcl/HTCTclEncoding.h"

#include <algorithm>

#include "platform/tcl/detail/plain_ascii.h"

using tcl_detail::is_plain_ascii;

namespace {

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
