#pragma once

#include <histedit.h>

namespace HTCLibEdit::detail {

/// What the Tab key does at the prompt: finishes the word left of the cursor, or lists what it could become
/// below the line. Evaluates the listing commands in the interpreter of the line editor, and nothing that was
/// typed; the interpreter's result and error state stay as they are. Returns one of libedit's CC_ codes.
/// Interpreter's thread, from within el_gets.
unsigned char tcl_completion(EditLine* el, int key);

} // namespace HTCLibEdit::detail
