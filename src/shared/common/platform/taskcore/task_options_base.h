#pragma once

#include <boost/any.hpp>
#include <memory>
#include <optional>
#include <string>
#include <tcl.h>
#include <vector>

#include "platform/taskcore/options_description.h"

namespace vek::tcltasks {

/// The option values of one call, and the engine that fills them from its words:
///
/// - `-name value`, `-flag`, `-name` by any unambiguous prefix; `--` ends the options;
/// - words without a switch go to the positional options in their order, those that a switch has filled left
/// out;
///   the last one takes the rest when its count allows;
/// - where a value is due, the next word is the value whatever it looks like; a negative number is also a
/// value
///   where a word without a switch is due;
/// - a native object or a collection is a value and is never turned into text to find out.
class task_options_base {
public:
    task_options_base() = default;
    task_options_base(const task_options_base&) = delete;
    task_options_base& operator=(const task_options_base&) = delete;

    virtual ~task_options_base() = default;
    virtual const options_description& get_options_description() const = 0;
    virtual const positional_options_description& get_positional_options() const = 0;
    virtual std::string categories() const = 0;
    virtual std::string task_help_name(const std::string& name) const { return name; }
    /// The name of the page with the long help.
    virtual std::string long_help_name(const std::string& name) const { return task_help_name(name); }
    /// Where that page lies in the installation; empty if there is none.
    virtual std::string long_help_path(Tcl_Interp* interp, const std::string& name) const;
    virtual std::string owner() const { return "unknown"; }

    /// Parses a call against the declaration. A call that does not fit leaves a message that names command,
    /// option and value as the result and returns TCL_ERROR.
    int parse_options(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv);

    /// The value of an option, given or by default; null if it has none.
    const boost::any* get_option_value(const std::string& name) const { return find_value(name); }
    /// True when the user gave it, not merely defaulted.
    bool specified_option(const std::string& name) const;

    /// The value of an option as a V; a default-constructed V when there is none. Reading an option as
    /// another type than it was declared with throws HEXAlgException.
    template <class V>
    V get_option(std::string_view name) const {
        const boost::any* value = find_value(name);
        if (const V* held = boost::any_cast<V>(value)) {
            return *held;
        }
        bad_cast(std::string(name), value ? *value : boost::any(), typeid(V).name(), this);
        return V();
    }

    /// The value of an option that the user gave; nothing for one that is not given.
    template <class V>
    std::optional<V> get_given(std::string_view name) const {
        return specified_option(std::string(name)) ? std::optional<V>(get_option<V>(name)) : std::nullopt;
    }

    /// The declared switches that are listed, in order of declaration, each with its dash and a blank between
    /// two of them.
    std::string supported_options() const;

    /// Help on the command `name`: `form` is "syntax", "args" or "long".
    std::string help(Tcl_Interp* interp, const std::string& name, const std::string& form) const;

    /// True for the options that the framework gives every task.
    bool is_infra_option(const std::string& name) const;

    /// The words of the call as one line of text, for reports. Empty outside a call.
    std::string cmdline(Tcl_Interp* interp) const;

    /// Reports that an option was read as another type than it was declared with. An empty value, of an
    /// option that was not given, is no fault.
    static void bad_cast(const std::string& name, const boost::any& value, const char* type,
                         const task_options_base* options);
    /// Reports that a task was declared twice.
    static void errorDoubleInit(const std::string& taskName);

protected:
    /// True if the call only asked for help or for the owner, and has been answered.
    bool answered() const { return m_answered; }

private:
    struct slot {
        boost::any value;
        bool specified = false;
    };
    class parser;

    const boost::any* find_value(std::string_view name) const;

    const options_description* m_description = nullptr; // once a call is parsed
    std::unique_ptr<slot[]> m_slots;                    // one for each declared option, once a call is parsed
    Tcl_Obj* const* m_objv = nullptr;                   // valid during the call
    int m_objc = 0;
    bool m_quiet = false;
    bool m_verbose = false;
    bool m_answered = false;
};

} // namespace vek::tcltasks
