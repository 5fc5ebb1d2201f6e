#pragma once

#include <histedit.h>

namespace HTCLibEdit::detail {

/// The functions of libedit that take any number of arguments. The library is loaded when the first prompt
/// needs it, so that sessions without a prompt do not pay for it; after that the other functions are called
/// by their own names.
struct libedit_functions {
    decltype(&::el_set) el_set;
    decltype(&::el_get) el_get;
    decltype(&::history) history;
};

/// Loads the library. Throws HTCErrors::command_failed if there is none. Interpreter's thread only.
const libedit_functions& libedit();

} // namespace HTCLibEdit::detail
