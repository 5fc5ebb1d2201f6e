#include "tcltasks/builtin/editline/libedit_functions.h"

#include <dlfcn.h>
#include <string>

#include "platform/taskcore/HTCErrors.h"

namespace {

constexpr const char* libraryName = "libedit.so.2";

// The functions with a fixed number of arguments, which are forwarded below.
struct forwarded_functions {
    decltype(&::el_init) el_init;
    decltype(&::el_end) el_end;
    decltype(&::el_reset) el_reset;
    decltype(&::el_wgets) el_wgets;
    decltype(&::el_source) el_source;
    decltype(&::el_resize) el_resize;
    decltype(&::el_beep) el_beep;
    decltype(&::el_line) el_line;
    decltype(&::el_wline) el_wline;
    decltype(&::el_cursor) el_cursor;
    decltype(&::el_insertstr) el_insertstr;
    decltype(&::el_winsertstr) el_winsertstr;
    decltype(&::el_deletestr) el_deletestr;
    decltype(&::history_init) history_init;
    decltype(&::history_end) history_end;
};

struct loaded_library {
    HTCLibEdit::detail::libedit_functions variadic{};
    forwarded_functions fixed{};
};

template <class Function>
void find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(::dlsym(library, name));
    if (!function) {
        throw HTCErrors::command_failed(std::string(libraryName) + " has no function " + name);
    }
}

loaded_library load() {
    void* const library = ::dlopen(libraryName, RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        throw HTCErrors::command_failed(std::string("the library for line editing cannot be loaded: ") +
                                        ::dlerror());
    }
    loaded_library it;
    find(library, "el_set", it.variadic.el_set);
    find(library, "el_get", it.variadic.el_get);
    find(library, "history", it.variadic.history);
    find(library, "el_init", it.fixed.el_init);
    find(library, "el_end", it.fixed.el_end);
    find(library, "el_reset", it.fixed.el_reset);
    find(library, "el_wgets", it.fixed.el_wgets);
    find(library, "el_source", it.fixed.el_source);
    find(library, "el_resize", it.fixed.el_resize);
    find(library, "el_beep", it.fixed.el_beep);
    find(library, "el_line", it.fixed.el_line);
    find(library, "el_wline", it.fixed.el_wline);
    find(library, "el_cursor", it.fixed.el_cursor);
    find(library, "el_insertstr", it.fixed.el_insertstr);
    find(library, "el_winsertstr", it.fixed.el_winsertstr);
    find(library, "el_deletestr", it.fixed.el_deletestr);
    find(library, "history_init", it.fixed.history_init);
    find(library, "history_end", it.fixed.history_end);
    return it;
}

const loaded_library& loaded() {
    static const loaded_library it = load();
    return it;
}

} // namespace

const HTCLibEdit::detail::libedit_functions& HTCLibEdit::detail::libedit() {
    return loaded().variadic;
}

// Seen within this library only: libedit keeps calling its own.
#define FORWARDED extern "C" __attribute__((visibility("hidden")))

FORWARDED EditLine* el_init(const char* program, FILE* in, FILE* out, FILE* err) {
    return loaded().fixed.el_init(program, in, out, err);
}
FORWARDED void el_end(EditLine* el) {
    loaded().fixed.el_end(el);
}
FORWARDED void el_reset(EditLine* el) {
    loaded().fixed.el_reset(el);
}
FORWARDED const wchar_t* el_wgets(EditLine* el, int* count) {
    return loaded().fixed.el_wgets(el, count);
}
FORWARDED int el_source(EditLine* el, const char* file) {
    return loaded().fixed.el_source(el, file);
}
FORWARDED void el_resize(EditLine* el) {
    loaded().fixed.el_resize(el);
}
FORWARDED void el_beep(EditLine* el) {
    loaded().fixed.el_beep(el);
}
FORWARDED const LineInfo* el_line(EditLine* el) {
    return loaded().fixed.el_line(el);
}
FORWARDED const LineInfoW* el_wline(EditLine* el) {
    return loaded().fixed.el_wline(el);
}
FORWARDED int el_cursor(EditLine* el, int count) {
    return loaded().fixed.el_cursor(el, count);
}
FORWARDED int el_insertstr(EditLine* el, const char* text) {
    return loaded().fixed.el_insertstr(el, text);
}
FORWARDED int el_winsertstr(EditLine* el, const wchar_t* text) {
    return loaded().fixed.el_winsertstr(el, text);
}
FORWARDED void el_deletestr(EditLine* el, int count) {
    loaded().fixed.el_deletestr(el, count);
}
FORWARDED History* history_init() {
    return loaded().fixed.history_init();
}
FORWARDED void history_end(History* hist) {
    loaded().fixed.history_end(hist);
}
