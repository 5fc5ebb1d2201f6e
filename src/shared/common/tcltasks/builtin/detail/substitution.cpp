#include "tcltasks/builtin/detail/substitution.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/tcl/tcl_guard.h"
#include "platform/tcl/tclobj_ref.h"

namespace HTCBuiltin::detail {

using vek::tcltasks::tcl_guard;
using vek::tcltasks::tclobj_ref;

namespace {

// What is done one after the other. An index is gathered in a text of its own until its element is read.
struct step {
    enum kind { text, command, variable, index, element };

    kind what;
    tclobj_ref value; // the text, the script, or the name of the variable
    size_t next = 0;  // the step behind the whole substitution that this one is part of
};

using program = std::vector<step>;

Tcl_Obj* new_text(std::string_view text) {
    return Tcl_NewStringObj(text.data(), static_cast<int>(text.size()));
}

// Takes a text apart.
class parser {
public:
    parser(Tcl_Interp* interp, std::string_view text, int kinds)
        : m_interp(interp), m_at(text.data()), m_end(m_at + text.size()) {
        m_special += kinds & TCL_SUBST_BACKSLASHES ? "\\" : "";
        m_special += kinds & TCL_SUBST_COMMANDS ? "[" : "";
        m_special += kinds & TCL_SUBST_VARIABLES ? "$" : "";
    }

    // Null if the text is well-formed. Otherwise the error that is due once what stands before it is done.
    Tcl_InterpState run() {
        while (m_at < m_end) {
            const std::string_view rest(m_at, static_cast<size_t>(m_end - m_at));
            const size_t plain = std::min(rest.find_first_of(m_special), rest.size());
            m_text += rest.substr(0, plain);
            m_at += plain;
            if (m_at < m_end && !substitution()) {
                Tcl_InterpState error = Tcl_SaveInterpState(m_interp, TCL_ERROR);
                if (*m_at == '[') {
                    whole_commands();
                }
                return error;
            }
        }
        end_text();
        return nullptr;
    }

    program steps;

private:
    bool substitution() {
        switch (*m_at) {
        case '\\':
            m_at += backslash(m_at);
            return true;
        case '[':
            return command();
        default:
            return variable();
        }
    }

    int backslash(const char* at) {
        char bytes[TCL_UTF_MAX + 1];
        int read = 0;
        m_text.append(bytes, static_cast<size_t>(Tcl_UtfBackslash(at, &read, bytes)));
        return read;
    }

    bool command() {
        const char* at = m_at + 1;
        for (;;) {
            Tcl_Parse parse;
            if (Tcl_ParseCommand(m_interp, at, static_cast<int>(m_end - at), 1, &parse) != TCL_OK) {
                return false;
            }
            at = parse.commandStart + parse.commandSize;
            const char* const term = parse.term;
            const bool closed = term < m_end && *term == ']' && !parse.incomplete;
            Tcl_FreeParse(&parse);
            if (closed) {
                const size_t first = begin_substitution();
                add(step::command, std::string_view(m_at + 1, static_cast<size_t>(term - m_at - 1)));
                end_substitution(first);
                m_at = at;
                return true;
            }
            if (at == m_end) {
                Tcl_SetObjResult(m_interp, Tcl_NewStringObj("missing close-bracket", -1));
                return false;
            }
        }
    }

    bool variable() {
        Tcl_Parse parse;
        if (Tcl_ParseVarName(m_interp, m_at, static_cast<int>(m_end - m_at), &parse, 0) != TCL_OK) {
            return false;
        }
        const Tcl_Token* const token = parse.tokenPtr;
        if (token->type == TCL_TOKEN_VARIABLE) {
            const size_t first = begin_substitution();
            add_variable(token);
            end_substitution(first);
        } else {
            m_text.append(token->start, static_cast<size_t>(token->size));
        }
        m_at += token->size;
        Tcl_FreeParse(&parse);
        return true;
    }

    // A token of a variable, whose name and index follow it.
    void add_variable(const Tcl_Token* token) {
        const std::string_view name(token[1].start, static_cast<size_t>(token[1].size));
        if (token->numComponents == 1) {
            add(step::variable, name);
            return;
        }
        add(step::index, {});
        for (int i = 2; i <= token->numComponents; ++i) {
            const Tcl_Token& part = token[i];
            switch (part.type) {
            case TCL_TOKEN_BS:
                backslash(part.start);
                break;
            case TCL_TOKEN_COMMAND:
                end_text();
                add(step::command, std::string_view(part.start + 1, static_cast<size_t>(part.size - 2)));
                break;
            case TCL_TOKEN_VARIABLE:
                end_text();
                add_variable(&part);
                i += part.numComponents;
                break;
            default:
                m_text.append(part.start, static_cast<size_t>(part.size));
            }
        }
        end_text();
        add(step::element, name);
    }

    // Of the commands of an unclosed bracket, those that are surely complete are run.
    void whole_commands() {
        const char* at = m_at + 1;
        const char* last = nullptr;
        Tcl_Parse parse;
        while (Tcl_ParseCommand(nullptr, at, static_cast<int>(m_end - at), 0, &parse) == TCL_OK) {
            Tcl_FreeParse(&parse);
            at = parse.term + (parse.term < parse.end);
            if (at == parse.end && parse.term == parse.end) {
                break;
            }
            last = parse.term;
        }
        if (last) {
            const size_t first = begin_substitution();
            add(step::command, std::string_view(m_at + 1, static_cast<size_t>(last - m_at - 1)));
            end_substitution(first);
        }
    }

    void add(step::kind what, std::string_view value) {
        steps.push_back({what, value.data() ? new_text(value) : nullptr});
    }
    void end_text() {
        if (!m_text.empty()) {
            add(step::text, m_text);
            m_text.clear();
        }
    }
    size_t begin_substitution() {
        end_text();
        return steps.size();
    }
    void end_substitution(size_t first) {
        for (; first < steps.size(); ++first) {
            steps[first].next = steps.size();
        }
    }

    Tcl_Interp* m_interp;
    const char* m_at;
    const char* m_end;
    std::string m_special;
    std::string m_text; // plain so far
};

// A text that was taken apart before, kept in the value itself. The steps never change; a substitution under
// way and copies of the value share them.
struct kept_program {
    std::shared_ptr<const program> steps;
    int kinds;
};

kept_program& kept(Tcl_Obj* obj) {
    return *static_cast<kept_program*>(obj->internalRep.otherValuePtr);
}

extern const Tcl_ObjType keptType;

const Tcl_ObjType keptType = {"substitution", [](Tcl_Obj* obj) { delete &kept(obj); },
                              [](Tcl_Obj* from, Tcl_Obj* to) {
                                  to->internalRep.otherValuePtr = new kept_program(kept(from));
                                  to->typePtr = &keptType;
                              },
                              nullptr, nullptr};

// What a value has besides its text may be dear, or the value itself: it is never replaced.
void keep(Tcl_Obj* text, const std::shared_ptr<const program>& steps, int kinds) {
    if (text->typePtr == &keptType) {
        kept(text) = {steps, kinds};
    } else if (!text->typePtr) {
        text->internalRep.otherValuePtr = new kept_program{steps, kinds};
        text->typePtr = &keptType;
    }
}

// One substitution under way.
class run {
public:
    run(std::shared_ptr<const program> steps, Tcl_InterpState error)
        : m_steps(std::move(steps)), m_error(error), m_texts{Tcl_NewObj()} {}
    ~run() {
        if (m_error) {
            Tcl_DiscardInterpState(m_error);
        }
    }
    run(const run&) = delete;
    run& operator=(const run&) = delete;

    // Goes on until a script is due or all is done; deletes itself then.
    static int go_on(run* self, Tcl_Interp* interp) {
        while (self->m_at < self->m_steps->size()) {
            const step& due = (*self->m_steps)[self->m_at++];
            if (due.what == step::command) {
                Tcl_NRAddCallback(interp, after_command, self, nullptr, nullptr, nullptr);
                return Tcl_NREvalObj(interp, due.value.get(), 0);
            }
            if (!self->perform(interp, due)) {
                delete self;
                return TCL_ERROR;
            }
        }
        return self->finish(interp);
    }

private:
    static int after_command(ClientData data[], Tcl_Interp* interp, int code) {
        run* const self = static_cast<run*>(data[0]);
        switch (code) {
        case TCL_OK:
            self->append(Tcl_GetObjResult(interp));
            break;
        case TCL_ERROR:
            delete self;
            return TCL_ERROR;
        case TCL_BREAK:
            // What is malformed behind is not reached.
            self->drop_error();
            self->leave(self->m_steps->size());
            break;
        default:
            self->leave((*self->m_steps)[self->m_at - 1].next);
            if (code != TCL_CONTINUE) {
                self->append(Tcl_GetObjResult(interp));
            }
        }
        return go_on(self, interp);
    }

    bool perform(Tcl_Interp* interp, const step& due) {
        switch (due.what) {
        case step::text:
            append(due.value.get());
            return true;
        case step::index:
            m_texts.emplace_back(Tcl_NewObj());
            return true;
        default: {
            tclobj_ref index;
            if (due.what == step::element) {
                index = m_texts.back();
                m_texts.pop_back();
            }
            Tcl_Obj* const value = Tcl_ObjGetVar2(interp, due.value.get(), index.get(), TCL_LEAVE_ERR_MSG);
            if (value) {
                append(value);
            }
            return value != nullptr;
        }
        }
    }

    void append(Tcl_Obj* value) { Tcl_AppendObjToObj(m_texts.back().get(), value); }

    // Gives up the substitution that is being made.
    void leave(size_t next) {
        m_texts.resize(1);
        m_at = next;
    }

    void drop_error() {
        if (m_error) {
            Tcl_DiscardInterpState(std::exchange(m_error, nullptr));
        }
    }

    int finish(Tcl_Interp* interp) {
        int code = TCL_OK;
        if (m_error) {
            code = Tcl_RestoreInterpState(interp, std::exchange(m_error, nullptr));
        } else {
            Tcl_ResetResult(interp);
            Tcl_SetObjResult(interp, m_texts.front().get());
        }
        delete this;
        return code;
    }

    std::shared_ptr<const program> m_steps;
    Tcl_InterpState m_error; // null for a well-formed text
    std::vector<tclobj_ref> m_texts;
    size_t m_at = 0;
};

} // namespace

int substitute(Tcl_Interp* interp, Tcl_Obj* text, int kinds) {
    if (text->typePtr == &keptType && kept(text).kinds == kinds) {
        return run::go_on(new run(kept(text).steps, nullptr), interp);
    }
    int length = 0;
    const char* const bytes = Tcl_GetStringFromObj(text, &length);
    parser parts(interp, {bytes, static_cast<size_t>(length)}, kinds);
    const Tcl_InterpState error = parts.run();
    const auto steps = std::make_shared<const program>(std::move(parts.steps));
    if (!error) {
        keep(text, steps, kinds);
    }
    return run::go_on(new run(steps, error), interp);
}

} // namespace HTCBuiltin::detail
