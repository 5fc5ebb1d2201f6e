#pragma once

#include <string>
#include <string_view>
#include <tcl.h>

/// Text between Tcl's internal encoding and the system encoding. Any thread that may touch the value.
namespace HTCTclEncoding {

/// The value's text in the system encoding. Embedded NULs survive.
std::string tclGetString(Tcl_Obj* obj);

/// A new value, reference count zero, of `length` bytes of system-encoded text; a negative length takes it
/// all.
Tcl_Obj* tclNewStringObj(const std::string& text, int length = -1);

/// The same conversions on text that is not in a value.
std::string fromTcl(std::string_view utf);
std::string toTcl(std::string_view text);

} // namespace HTCTclEncoding
