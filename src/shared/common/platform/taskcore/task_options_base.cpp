#include "platform/taskcore/task_options_base.h"

#include <boost/program_options/value_semantic.hpp>

#include "platform/env/HUTEnv.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/taskcore/option_messages.h"
#include "platform/taskcore/task_manager.h"
#include "platform/taskcore/tcl_globals.h"
#include "platform/taskcore/tcltypeinfo.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/tclobj_ref.h"

namespace vek::tcltasks {

namespace {

// Puts the words of a call into tcl_globals. The keys are made once for the longest call so far and only
// their values change from call to call; a call of very many words gives its keys back.
class argument_table {
public:
    argument_table(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) : m_objc(objc) {
        detail::tcl_globals::interp = interp;
        auto& keys = slots();
        while (keys.size() < static_cast<size_t>(objc)) {
            keys.push_back(
                detail::tcl_globals::objv.emplace("#" + std::to_string(keys.size()), nullptr).first);
        }
        for (int i = 1; i < objc; ++i) {
            keys[static_cast<size_t>(i)]->second = objv[i];
        }
    }
    ~argument_table() {
        auto& keys = slots();
        for (int i = 1; i < m_objc; ++i) {
            keys[static_cast<size_t>(i)]->second = nullptr;
        }
        constexpr size_t most = 4096;
        while (keys.size() > most) {
            detail::tcl_globals::objv.erase(keys.back());
            keys.pop_back();
        }
    }
    argument_table(const argument_table&) = delete;
    argument_table& operator=(const argument_table&) = delete;

    const std::string& key(int i) const { return slots()[static_cast<size_t>(i)]->first; }

private:
    using slot_list = std::vector<std::map<std::string, Tcl_Obj*>::iterator>;
    static slot_list& slots() {
        static thread_local slot_list instance;
        return instance;
    }

    int m_objc;
};

// The text of a word that could be a switch: it begins with a dash and is no native object. A list that never
// had a text is not given one: no switch has a blank in it.
bool may_be_switch(Tcl_Obj* word) {
    if (!word->bytes) {
        static const Tcl_ObjType* const listType = Tcl_GetObjType("list");
        if (detail::GetTclTypeInfo(word)) {
            return false;
        }
        int count = 0;
        if (word->typePtr == listType && Tcl_ListObjLength(nullptr, word, &count) == TCL_OK && count != 1) {
            return false;
        }
    } else if (*word->bytes != '-' || detail::GetTclTypeInfo(word)) {
        return false;
    }
    const char* text = Tcl_GetString(word);
    return text[0] == '-' && text[1] != '\0';
}

bool is_number(Tcl_Obj* word) {
    const char* text = Tcl_GetString(word);
    double value = 0;
    const bool digit = (text[1] >= '0' && text[1] <= '9') || text[1] == '.';
    return digit && Tcl_GetDoubleFromObj(nullptr, word, &value) == TCL_OK;
}

const boost::any& truth(bool value) {
    static const boost::any yes(true), no(false);
    return value ? yes : no;
}

int infra_index(std::string_view name) {
    for (int i = 0; i < infra_option::count; ++i) {
        if (name == infra_option::all[i].name) {
            return i;
        }
    }
    return -1;
}

} // namespace

class task_options_base::parser {
public:
    parser(task_options_base& owner, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv)
        : m_owner(owner), m_interp(interp), m_objc(objc), m_objv(objv),
          m_options(owner.get_options_description()), m_positional(owner.get_positional_options()),
          m_arguments(interp, objc, objv) {
        owner.m_description = &m_options;
        owner.m_objv = objv;
        owner.m_objc = objc;
        if (!m_options.options().empty()) {
            owner.m_slots = std::make_unique<slot[]>(m_options.options().size());
        }
    }

    void run() {
        while (m_at < m_objc) {
            Tcl_Obj* word = m_objv[m_at];
            if (m_optionsEnded || !may_be_switch(word)) {
                take_positional();
            } else {
                take_switch(Tcl_GetString(word) + 1);
            }
        }
        if (!m_owner.m_answered) {
            check_combination();
        }
    }

    std::string command() const { return called_as(m_objv[0]); }
    const options_description& options() const { return m_options; }

private:
    const options_description::option& option(int index) const {
        return m_options.options()[static_cast<size_t>(index)];
    }
    slot& slot_of(int index) const { return m_owner.m_slots[static_cast<size_t>(index)]; }

    void take_switch(const char* name) {
        if (name[0] == '-' && name[1] == '\0') {
            m_optionsEnded = true;
            ++m_at;
            return;
        }
        const auto match = m_options.resolve(name);
        using match_kind = decltype(match);
        switch (match.kind) {
        case match_kind::option:
            ++m_at;
            take_option(match.index);
            break;
        case match_kind::infra:
            ++m_at;
            take_infra(match.index);
            break;
        case match_kind::ambiguous:
            throw option_messages::ambiguous_option(command(), Tcl_GetString(m_objv[m_at]), m_options);
        case match_kind::none:
            if (!is_number(m_objv[m_at])) {
                throw option_messages::unknown_option(command(), HTCTclEncoding::tclGetString(m_objv[m_at]),
                                                      m_options);
            }
            take_positional();
        }
    }

    void take_option(int index) {
        const auto& declared = option(index);
        slot& target = slot_of(index);
        if (declared.semantic->is_deprecated() && !target.specified) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-5014@%s%s%s\n", declared.name,
                               command(), declared.semantic->deprecation_message());
        }
        if (declared.is_flag() || (declared.boost->min_tokens() == 0 && !value_follows())) {
            m_tokens.clear();
            declared.boost->parse(target.value, m_tokens, true);
            target.specified = true;
            return;
        }
        if (m_at == m_objc) {
            throw option_messages::missing_value(command(), declared);
        }
        do {
            store_word(index);
        } while (declared.boost->max_tokens() > 1 && m_at < m_objc && !may_be_switch(m_objv[m_at]));
    }

    // Whether an option whose value may be left out has one. An object is none: it stands for itself.
    bool value_follows() const {
        return m_at < m_objc && !may_be_switch(m_objv[m_at]) && !detail::GetTclTypeInfo(m_objv[m_at]);
    }

    // Gives the word at m_at to an option as its value.
    void store_word(int index) {
        const auto& declared = option(index);
        if (!declared.choices.empty()) {
            require_choice(declared);
        }
        slot& target = slot_of(index);
        m_tokens.resize(1);
        m_tokens[0] = m_arguments.key(m_at);
        declared.boost->parse(target.value, m_tokens, true);
        target.specified = true;
        ++m_at;
    }

    void require_choice(const options_description::option& declared) const {
        const std::string value = HTCTclEncoding::tclGetString(m_objv[m_at]);
        for (const std::string& choice : declared.choices) {
            if (value == choice) {
                return;
            }
        }
        throw HTCErrors::invalid_option_value(declared.name, value);
    }

    void take_positional() {
        const auto& positions = m_positional.positions();
        for (; m_position < positions.size(); ++m_position, m_taken = 0) {
            const auto& position = positions[m_position];
            const int index = m_options.find(position.name);
            const bool filled = m_taken == 0 && slot_of(index).specified && position.maxCount == 1;
            if (!filled && (position.maxCount < 0 || m_taken < position.maxCount)) {
                ++m_taken;
                store_word(index);
                return;
            }
        }
        throw option_messages::unexpected_argument(command(), HTCTclEncoding::tclGetString(m_objv[m_at]),
                                                   m_owner.help(m_interp, command(), "usage"));
    }

    void take_infra(int which) {
        switch (which) {
        case infra_option::quiet:
            if (!m_owner.m_quiet) {
                m_owner.m_quiet = true;
                task_manager::enterQuietMode();
            }
            break;
        case infra_option::verbose:
            if (!m_owner.m_verbose) {
                m_owner.m_verbose = true;
                task_manager::enterVerboseMode();
            }
            break;
        case infra_option::help:
            answer(m_owner.help(m_interp, command(), "long"));
            break;
        case infra_option::owner:
            answer(m_owner.owner() + "\n");
            break;
        }
    }

    void answer(const std::string& text) {
        ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_OUTPUT, text);
        Tcl_ResetResult(m_interp);
        m_owner.m_answered = true;
    }

    void check_combination() const {
        const auto& options = m_options.options();
        for (size_t i = 0; i < options.size(); ++i) {
            if (options[i].required && !m_owner.m_slots[i].specified) {
                throw option_messages::missing_option(command(), options[i].name,
                                                      m_owner.help(m_interp, command(), "usage"));
            }
            if (options[i].excludes.empty() || !m_owner.m_slots[i].specified) {
                continue;
            }
            for (const std::string& other : options[i].excludes) {
                if (m_owner.specified_option(other)) {
                    throw option_messages::excluded_option(command(), options[i].name, other);
                }
            }
        }
    }

    task_options_base& m_owner;
    Tcl_Interp* m_interp;
    int m_objc;
    Tcl_Obj* const* m_objv;
    const options_description& m_options;
    const positional_options_description& m_positional;
    argument_table m_arguments;
    std::vector<std::string> m_tokens;
    int m_at = 1;
    size_t m_position = 0;
    int m_taken = 0; // words that the current position has taken
    bool m_optionsEnded = false;
};

int task_options_base::parse_options(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    // A bad call says so in its result, unless it also says -quiet, which counts wherever it stands.
    const auto fail = [&](const HEXError& error) {
        for (int i = 1; i < objc && !m_quiet; ++i) {
            if (objv[i]->bytes && std::string_view(objv[i]->bytes) == "-quiet" &&
                get_options_description().find("quiet") < 0) {
                m_quiet = true;
                task_manager::enterQuietMode();
            }
        }
        return fail_with(interp, error);
    };
    try {
        parser(*this, interp, objc, objv).run();
        return TCL_OK;
    } catch (const HEXError& error) {
        return fail(error);
    } catch (const HTCErrors::error& error) {
        return fail(option_messages::of(error, called_as(objv[0]), &get_options_description()));
    }
}

const boost::any* task_options_base::find_value(std::string_view name) const {
    const options_description& options = m_description ? *m_description : get_options_description();
    const int index = options.find(name);
    if (index < 0) {
        switch (infra_index(name)) {
        case infra_option::quiet:
            return &truth(m_quiet);
        case infra_option::verbose:
            return &truth(m_verbose);
        case infra_option::help:
        case infra_option::owner:
            return &truth(m_answered);
        default:
            return nullptr;
        }
    }
    const auto& option = options.options()[static_cast<size_t>(index)];
    if (m_slots) {
        slot& given = m_slots[static_cast<size_t>(index)];
        if (given.specified) {
            return &given.value;
        }
        if (option.semantic->has_default_provider()) {
            return given.value.empty() && !option.boost->apply_default(given.value) ? nullptr : &given.value;
        }
    }
    const boost::any& byDefault = option.semantic->default_value();
    return byDefault.empty() ? nullptr : &byDefault;
}

bool task_options_base::specified_option(const std::string& name) const {
    const options_description& options = m_description ? *m_description : get_options_description();
    const int index = options.find(name);
    if (index >= 0) {
        return m_slots && m_slots[static_cast<size_t>(index)].specified;
    }
    const boost::any* infra = find_value(name);
    return infra && boost::any_cast<bool>(*infra);
}

std::string task_options_base::supported_options() const {
    std::string names;
    for (const auto& option : get_options_description().options()) {
        if (!option.semantic->is_hidden()) {
            names += (names.empty() ? "-" : " -") + option.name;
        }
    }
    return names;
}

bool task_options_base::is_infra_option(const std::string& name) const {
    return infra_index(name) >= 0 && get_options_description().find(name) < 0;
}

std::string task_options_base::cmdline(Tcl_Interp*) const {
    if (!m_objv) {
        return {};
    }
    const tclobj_ref words(Tcl_NewListObj(m_objc, m_objv));
    return HTCTclEncoding::tclGetString(words.get());
}

void task_options_base::bad_cast(const std::string& name, const boost::any& value, const char* type,
                                 const task_options_base*) {
    if (!value.empty()) {
        throw HEXAlgException("option '" + name + "' holds a " + value.type().name() + " and was read as a " +
                              type);
    }
}

void task_options_base::errorDoubleInit(const std::string& taskName) {
    ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5015@%s\n", taskName);
}

} // namespace vek::tcltasks
