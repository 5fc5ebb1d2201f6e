#include "platform/taskcore/options_description.h"

#include <algorithm>
#include <boost/program_options/value_semantic.hpp>

#include "platform/taskcore/task_manager.h"

namespace vek::tcltasks {

const std::string options_description::undeclared = "dummy";

const infra_option infra_option::all[infra_option::count] = {
    {"help", "Print the help of this command and do nothing else"},
    {"quiet", "Send no messages and end without an error whatever happens"},
    {"verbose", "Send all messages, also those beyond their limits"},
    {"owner", "Print the owner of this command and do nothing else"},
};

bool options_description::option::is_flag() const {
    return boost->max_tokens() == 0 && std::string_view(semantic->value_kind()).starts_with("a boolean");
}

options_description::options_description(const std::string& description, const std::string& returns)
    : m_description(description), m_returns(returns) {}

void options_description::declare(const char* command, const std::string& description,
                                  const std::string& returns) {
    m_command = command;
    m_description = description;
    m_returns = returns;
    taskmgr::markTaskDescriptionLoaded(command);
}

options_description::adder&
options_description::adder::add_option(const char* name, itcl_value_semantic* semantic,
                                       const HTCTclTaskOptions::OptionDescription& help) {
    option added;
    added.name = name;
    added.semantic.reset(semantic);
    added.boost = &semantic->boost_semantic();
    added.help = help.text;
    semantic->switch_name(name);
    m_owner.m_options.push_back(std::move(added));
    return *this;
}

options_description::adder&
options_description::adder::add_option(const char* name, itcl_value_semantic* semantic,
                                       const HTCTclTaskOptions::OptionDescription& help,
                                       const HTCTclTaskOptions::DefaultValueDescription& byDefault) {
    add_option(name, semantic, help);
    m_owner.m_options.back().defaultWords = byDefault.text;
    return *this;
}

options_description::adder& options_description::adder::choices(std::initializer_list<const char*> values) {
    m_owner.m_options.back().choices.assign(values.begin(), values.end());
    return *this;
}

options_description::adder& options_description::adder::excludes(std::initializer_list<const char*> names) {
    m_owner.m_options.back().excludes.assign(names.begin(), names.end());
    return *this;
}

options_description::adder& options_description::adder::hint(const char* kind) {
    m_owner.m_options.back().hint = kind;
    return *this;
}

options_description::adder& options_description::adder::required() {
    m_owner.m_options.back().required = true;
    return *this;
}

int options_description::find(std::string_view name) const {
    for (size_t i = 0; i < m_options.size(); ++i) {
        if (m_options[i].name == name) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

options_description::match options_description::resolve(std::string_view word) const {
    const int exact = find(word);
    if (exact >= 0) {
        return {match::option, exact};
    }
    match listed, hidden, infra;
    const auto note = [](match& found, decltype(match::kind) kind, int index) {
        found = found.kind == match::none ? match{kind, index} : match{match::ambiguous, -1};
    };
    for (size_t i = 0; i < m_options.size(); ++i) {
        if (m_options[i].name.starts_with(word)) {
            note(m_options[i].semantic->is_hidden() ? hidden : listed, match::option, static_cast<int>(i));
        }
    }
    for (int i = 0; i < infra_option::count; ++i) {
        if (word == infra_option::all[i].name) {
            return {match::infra, i};
        }
        if (std::string_view(infra_option::all[i].name).starts_with(word)) {
            note(infra, match::infra, i);
        }
    }
    if (word.empty()) {
        return {};
    }
    return listed.kind != match::none ? listed : hidden.kind != match::none ? hidden : infra;
}

std::vector<std::string> options_description::candidates(std::string_view word) const {
    std::vector<std::string> fitting, all;
    const auto offer = [&](std::string_view name) {
        all.push_back("-" + std::string(name));
        if (name.starts_with(word)) {
            fitting.push_back(all.back());
        }
    };
    for (const option& o : m_options) {
        if (!o.semantic->is_hidden()) {
            offer(o.name);
        }
    }
    for (const infra_option& o : infra_option::all) {
        if (find(o.name) < 0) {
            offer(o.name);
        }
    }
    return fitting.empty() ? all : fitting;
}

} // namespace vek::tcltasks
