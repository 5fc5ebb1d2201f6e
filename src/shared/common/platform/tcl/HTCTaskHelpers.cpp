#include "platform/tcl/HTCTaskHelpers.h"

#include "platform/tcl/HTCTclEncoding.h"

std::string HTCTaskHelpers::brace(const std::string& text) {
    const std::string utf = HTCTclEncoding::toTcl(text);
    int flags = 0;
    std::string word(
        static_cast<size_t>(Tcl_ScanCountedElement(utf.data(), static_cast<int>(utf.size()), &flags)) + 1,
        '\0');
    word.resize(static_cast<size_t>(Tcl_ConvertCountedElement(utf.data(), static_cast<int>(utf.size()),
                                                              word.data(), flags | TCL_DONT_QUOTE_HASH)));
    return HTCTclEncoding::fromTcl(word);
}
