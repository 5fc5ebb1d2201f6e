#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/taskcore/itcl_value_semantic.h"

namespace HTCTclTaskOptions {

/// The help sentence of an option.
struct OptionDescription {
    OptionDescription(const char* help) : text(help) {}
    OptionDescription(const std::string& help) : text(help) {}
    std::string text;
    int kind = 0;
};

/// Words for a default that no value can express, such as "Global namespace.".
struct DefaultValueDescription {
    explicit DefaultValueDescription(const char* words) : text(words) {}
    std::string text;
    int kind = 2;
};

} // namespace HTCTclTaskOptions

namespace vek::tcltasks {

/// The declaration of one task: its description and its options. Everything that is known of an option stands
/// here once; parsing, error texts, usage line, help and completion derive from it. Built at registration,
/// then only read.
class options_description {
public:
    /// The description by which a task is asked for its declaration without making one.
    static const std::string undeclared;

    struct option {
        std::string name; ///< without the dash
        std::unique_ptr<itcl_value_semantic> semantic;
        boost::program_options::value_semantic* boost = nullptr; ///< the same object
        std::string help;
        std::string defaultWords;          ///< for a default that no value can express
        std::vector<std::string> choices;  ///< all values accepted; empty for any
        std::vector<std::string> excludes; ///< options that this one does not go with
        std::string hint;                  ///< what completion offers for the value: "file", "param", ...
        bool required = false;

        bool is_flag() const;
    };

    /// Adds options; what follows add_option refines the option added last.
    class adder {
    public:
        explicit adder(options_description& owner) : m_owner(owner) {}

        /// Takes over `semantic`. The name has no leading dash.
        adder& add_option(const char* name, itcl_value_semantic* semantic,
                          const HTCTclTaskOptions::OptionDescription& help);
        adder& add_option(const char* name, itcl_value_semantic* semantic,
                          const HTCTclTaskOptions::OptionDescription& help,
                          const HTCTclTaskOptions::DefaultValueDescription& byDefault);
        /// Only these values are accepted.
        adder& choices(std::initializer_list<const char*> values);
        /// Giving the option together with any of these is refused.
        adder& excludes(std::initializer_list<const char*> names);
        /// What completion offers for the value.
        adder& hint(const char* kind);
        /// A call without the option is refused.
        adder& required();

    private:
        options_description& m_owner;
    };

    options_description(const std::string& description, const std::string& returns);

    adder add_options() { return adder(*this); }
    const std::string& description() const { return m_description; }
    /// The words for the command's result; empty when it has none to speak of.
    const std::string& returns() const { return m_returns; }
    /// The command that was declared here; empty before.
    const std::string& command() const { return m_command; }
    /// Fills a description that stood in for the declaration, and marks the command as declared.
    void declare(const char* command, const std::string& description, const std::string& returns);

    const std::vector<option>& options() const { return m_options; }
    /// The index of the option of exactly this name, or -1.
    int find(std::string_view name) const;

    /// What a word behind a dash stands for.
    struct match {
        enum { none, option, infra, ambiguous } kind = none;
        int index = -1; ///< of the option, or of the infra option
    };
    /// Full names first; then a prefix that only one listed option has, then only one hidden option, then
    /// only one option of the framework. What is hidden never makes a listed option ambiguous.
    match resolve(std::string_view word) const;

    /// The names that a word could stand for, with their dash; all listed ones when none fits.
    std::vector<std::string> candidates(std::string_view word) const;

private:
    std::string m_description;
    std::string m_returns;
    std::string m_command;
    std::vector<option> m_options;
};

/// The options of the framework that every task has.
struct infra_option {
    enum index { help, quiet, verbose, owner, count };
    const char* name;
    const char* text;
    static const infra_option all[count];
};

/// Which options take the words of a call that stand without a switch, in order.
class positional_options_description {
public:
    struct position {
        std::string name;
        int maxCount; ///< -1 for any number
    };

    positional_options_description& add(const char* name, int maxCount) {
        m_positions.push_back({name, maxCount});
        return *this;
    }
    const std::vector<position>& positions() const { return m_positions; }

private:
    std::vector<position> m_positions;
};

namespace detail {

/// Appends names to a task's categories, with ":" between them.
class categories_init {
public:
    explicit categories_init(std::string& categories) : m_categories(categories) {}
    categories_init& operator()(const std::string& name) {
        m_categories += m_categories.empty() ? name : ":" + name;
        return *this;
    }

private:
    std::string& m_categories;
};

} // namespace detail
} // namespace vek::tcltasks
