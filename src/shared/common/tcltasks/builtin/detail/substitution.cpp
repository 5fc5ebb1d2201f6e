#include "tcltasks/builtin/detail/substitution.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/tcl/tclobj_ref.h"

namespace HTCBuiltin::detail {

using vek::tcltasks::tclobj_ref;

namespace {

// What is done one after the other. Values are gathered in a stack of texts, words in a stack of commands.
struct step {
    enum kind {
        text,     // add the value
        script,   // add the result of the script
        variable, // add what the variable holds
        gather,   // begin a text of its own
        element,  // add what the array element holds whose index was gathered
        command,  // begin a command
        literal,  // add the value as a word
        word,     // add what was gathered as a word
        invoke,   // add the result of the command
    };

    kind what;
    tclobj_ref value;
    size_t next = 0; // the step behind the whole substitution that this one is part of
};

using program = std::vector<step>;

Tcl_Obj* new_text(std::string_view text) {
    return Tcl_NewStringObj(text.data(), static_cast<int>(text.size()));
}

std::string_view text_of(const Tcl_Token& token) {
    return {token.start, static_cast<size_t>(token.size)};
}

// The outcome of one of Tcl's parsers, freed with it.
struct parsed : Tcl_Parse {
    parsed() {
        numTokens = 0;
        tokenPtr = staticTokens;
    }
    ~parsed() { Tcl_FreeParse(this); }
    parsed(const parsed&) = delete;
    parsed& operator=(const parsed&) = delete;
};

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
            parsed parse;
            if (Tcl_ParseCommand(m_interp, at, static_cast<int>(m_end - at), 1, &parse) != TCL_OK) {
                return false;
            }
            const bool first = at == m_at + 1;
            at = parse.commandStart + parse.commandSize;
            if (parse.term < m_end && *parse.term == ']' && !parse.incomplete) {
                const size_t begin = begin_substitution();
                if (!first || !add_command(parse)) {
                    add(step::script, {m_at + 1, static_cast<size_t>(parse.term - m_at - 1)});
                }
                end_substitution(begin);
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
        parsed parse;
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
        return true;
    }

    // A token of a variable, whose name and index follow it.
    void add_variable(const Tcl_Token* token) {
        if (token->numComponents == 1) {
            add(step::variable, text_of(token[1]));
            return;
        }
        add(step::gather);
        add_parts(token + 2, token->numComponents - 1);
        add(step::element, text_of(token[1]));
    }

    // The tokens that an index or a word is made of.
    void add_parts(const Tcl_Token* token, int count) {
        for (const Tcl_Token* const end = token + count; token < end; ++token) {
            switch (token->type) {
            case TCL_TOKEN_BS:
                backslash(token->start);
                break;
            case TCL_TOKEN_COMMAND:
                end_text();
                add_nested(token->start + 1, static_cast<size_t>(token->size - 2));
                break;
            case TCL_TOKEN_VARIABLE:
                end_text();
                add_variable(token);
                token += token->numComponents;
                break;
            default:
                m_text += text_of(*token);
            }
        }
        end_text();
    }

    // What stands in a pair of brackets, which is known to be well-formed.
    void add_nested(const char* start, size_t size) {
        parsed parse;
        if (Tcl_ParseCommand(nullptr, start, static_cast<int>(size) + 1, 1, &parse) != TCL_OK ||
            parse.term != start + size || !add_command(parse)) {
            add(step::script, {start, size});
        }
    }

    // A command is called with its words, which saves Tcl from compiling it. False for what has none, and for
    // words that make several.
    bool add_command(const Tcl_Parse& parse) {
        const Tcl_Token* token = parse.tokenPtr;
        for (int i = 0; i < parse.numWords; ++i, token += token->numComponents + 1) {
            if (token->type == TCL_TOKEN_EXPAND_WORD) {
                return false;
            }
        }
        if (parse.numWords == 0) {
            return false;
        }
        add(step::command);
        token = parse.tokenPtr;
        for (int i = 0; i < parse.numWords; ++i, token += token->numComponents + 1) {
            if (token->type == TCL_TOKEN_SIMPLE_WORD) {
                add(step::literal, text_of(token[1]));
            } else {
                add(step::gather);
                add_parts(token + 1, token->numComponents);
                add(step::word);
            }
        }
        add(step::invoke);
        return true;
    }

    // Of the commands of an unclosed bracket, those that are surely complete are run.
    void whole_commands() {
        const char* at = m_at + 1;
        const char* last = nullptr;
        for (;;) {
            parsed parse;
            if (Tcl_ParseCommand(nullptr, at, static_cast<int>(m_end - at), 0, &parse) != TCL_OK) {
                break;
            }
            at = parse.term + (parse.term < parse.end);
            if (at == parse.end && parse.term == parse.end) {
                break;
            }
            last = parse.term;
        }
        if (last) {
            const size_t first = begin_substitution();
            add(step::script, {m_at + 1, static_cast<size_t>(last - m_at - 1)});
            end_substitution(first);
        }
    }

    void add(step::kind what) { steps.push_back({what, {}}); }
    void add(step::kind what, std::string_view value) { steps.push_back({what, new_text(value)}); }
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

// What a value has besides its text may be dear, or the value itself. Only another form of the same text is
// given up.
void keep(Tcl_Obj* text, const std::shared_ptr<const program>& steps, int kinds) {
    static const Tcl_ObjType* const stringType = Tcl_GetObjType("string");
    if (text->typePtr == &keptType) {
        kept(text) = {steps, kinds};
        return;
    }
    if (text->typePtr && text->typePtr == stringType) {
        stringType->freeIntRepProc(text);
        text->typePtr = nullptr;
    }
    if (!text->typePtr) {
        text->internalRep.otherValuePtr = new kept_program{steps, kinds};
        text->typePtr = &keptType;
    }
}

// What is gathered of values. A single one stays the value that it is.
class gathered {
public:
    void append(Tcl_Obj* value) {
        if (!m_value) {
            m_value = value;
            return;
        }
        if (Tcl_IsShared(m_value.get())) {
            int length = 0;
            const char* const bytes = Tcl_GetStringFromObj(m_value.get(), &length);
            m_value = Tcl_NewStringObj(bytes, length);
        }
        Tcl_AppendObjToObj(m_value.get(), value);
    }
    Tcl_Obj* value() {
        if (!m_value) {
            m_value = Tcl_NewObj();
        }
        return m_value.get();
    }

private:
    tclobj_ref m_value;
};

// One substitution under way.
class run {
public:
    run(std::shared_ptr<const program> steps, Tcl_InterpState error)
        : m_steps(std::move(steps)), m_error(error) {}
    ~run() { drop_error(); }
    run(const run&) = delete;
    run& operator=(const run&) = delete;

    // Goes on until a script is due or all is done; deletes itself then.
    static int go_on(run* self, Tcl_Interp* interp) {
        while (self->m_at < self->m_steps->size()) {
            const step& due = (*self->m_steps)[self->m_at++];
            if (due.what == step::script || due.what == step::invoke) {
                Tcl_NRAddCallback(interp, after_evaluation, self, nullptr, nullptr, nullptr);
                return Tcl_NREvalObj(interp, self->evaluated(due), 0);
            }
            if (!self->perform(interp, due)) {
                delete self;
                return TCL_ERROR;
            }
        }
        return self->finish(interp);
    }

private:
    static int after_evaluation(ClientData data[], Tcl_Interp* interp, int code) {
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

    // The script, or the command as a list, by which Tcl calls it directly.
    Tcl_Obj* evaluated(const step& due) {
        if (due.what == step::script) {
            return due.value.get();
        }
        m_called = m_commands.back();
        m_commands.pop_back();
        return m_called.get();
    }

    bool perform(Tcl_Interp* interp, const step& due) {
        switch (due.what) {
        case step::gather:
            m_inner.emplace_back();
            return true;
        case step::variable:
            return read_variable(interp, due.value.get(), nullptr);
        case step::element: {
            gathered index = take_gathered();
            return read_variable(interp, due.value.get(), index.value());
        }
        case step::command:
            m_commands.emplace_back(Tcl_NewListObj(0, nullptr));
            return true;
        case step::literal:
            Tcl_ListObjAppendElement(nullptr, m_commands.back().get(), due.value.get());
            return true;
        case step::word: {
            gathered word = take_gathered();
            Tcl_ListObjAppendElement(nullptr, m_commands.back().get(), word.value());
            return true;
        }
        default:
            append(due.value.get());
            return true;
        }
    }

    bool read_variable(Tcl_Interp* interp, Tcl_Obj* name, Tcl_Obj* index) {
        Tcl_Obj* const value = Tcl_ObjGetVar2(interp, name, index, TCL_LEAVE_ERR_MSG);
        if (value) {
            append(value);
        }
        return value != nullptr;
    }

    void append(Tcl_Obj* value) { (m_inner.empty() ? m_outcome : m_inner.back()).append(value); }

    gathered take_gathered() {
        gathered taken = std::move(m_inner.back());
        m_inner.pop_back();
        return taken;
    }

    // Gives up the substitution that is being made.
    void leave(size_t next) {
        m_inner.clear();
        m_commands.clear();
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
            Tcl_SetObjResult(interp, m_outcome.value());
        }
        delete this;
        return code;
    }

    std::shared_ptr<const program> m_steps;
    Tcl_InterpState m_error; // null for a well-formed text
    gathered m_outcome;
    std::vector<gathered> m_inner; // of indices and words under way
    std::vector<tclobj_ref> m_commands;
    tclobj_ref m_called; // the command that runs
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
