#include "tcltasks/help/detail/HelpResolver.h"

#include <algorithm>
#include <array>
#include <set>
#include <system_error>
#include <tuple>

#include "platform/env/HSTStringUtils.h"
#include "platform/env/HUTEnv.h"
#include "platform/env/HUTFile.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/taskcore/options_description.h"
#include "platform/taskcore/task_manager.h"
#include "platform/tcl/HTCTclPatternMatch.h"
#include "platform/tcl/HTCTclUtils.h"
#include "tcltasks/help/detail/HelpState.h"
#include "tcltasks/help/detail/features.h"

using vek::tcltasks::itask;
using vek::tcltasks::task_manager;

namespace HTCHelp::detail {

namespace {

std::string tail(const std::string& name) {
    return name.substr(name.rfind(':') + 1);
}

// A command that is looked at: the name under which users know it, its name, and whether it can be called by
// its plain name.
using candidate = std::tuple<std::string, std::string, bool>;

// All commands, sorted by the names under which users know them.
std::vector<candidate> candidates() {
    std::vector<std::string> names;
    task_manager::getTaskNames(names);
    features::appendCommands(names);
    std::vector<candidate> all;
    all.reserve(names.size());
    for (std::string& name : names) {
        const bool global = HTCTclUtils::tclIsCmdInGlobalNamespace(g_interp, name);
        std::string helpName = global ? tail(name) : name.substr(name.starts_with("::") ? 2 : 0);
        all.emplace_back(std::move(helpName), std::move(name), global);
    }
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

// The name that a pattern is compared with.
std::string matched_name(const std::string& name) {
    if (name == "omu::source" || name == "omu::synth_design") {
        return name.substr(5);
    }
    return name.starts_with("::") ? name.substr(2) : name;
}

bool is_internal(const std::string& name) {
    return name.starts_with("omu::") || name.starts_with("vek::") || name.starts_with("test::");
}

bool in_visible_namespace(const std::string& name) {
    const size_t start = name.find_first_not_of(':');
    const size_t end = name.rfind("::");
    if (end == std::string::npos || start == std::string::npos || end <= start) {
        return true;
    }
    const auto& visible = g_visibleNamespaces();
    return std::binary_search(visible.begin(), visible.end(), name.substr(start, end - start));
}

std::shared_ptr<itask> make_task(const std::string& name) {
    std::string reason;
    try {
        return task_manager::createTask(g_interp, name);
    } catch (const std::exception& failure) {
        reason = failure.what();
    } catch (...) {
        // Nothing is known of it.
    }
    if (reason.empty()) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_CRITICAL_WARNING, "@17-21@%s\n", name);
    } else {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_CRITICAL_WARNING, "@17-22@%s%s\n", name, reason);
    }
    return nullptr;
}

bool in_category(const std::shared_ptr<itask>& task, const std::string& category) {
    std::vector<std::string> names;
    getTaskCategories(task, names);
    if (names.empty()) {
        names.emplace_back("Unknown");
    }
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& name) { return HSTStringUtils::istarts_with(name, category); });
}

std::string page_help_name(const std::string& name) {
    if (name == "platform_shell") {
        return "platform::shell";
    }
    return name == "pkg_create" ? "pkg::create" : HTCTclUtils::getCmdHelpName(g_interp, name);
}

// The names of the files of a directory that match, sorted.
std::vector<std::string> page_names(const std::string& directory, const HTCTclPatternMatch& matcher) {
    std::vector<std::string> names;
    try {
        for (const HUTFile& entry : HUTFile(directory).createFileIter()) {
            std::string name = entry.getName();
            if (!name.starts_with(".") && matcher.match(name) && entry.isFile()) {
                names.push_back(std::move(name));
            }
        }
    } catch (const std::system_error& failure) {
        if (failure.code() != std::errc::no_such_file_or_directory) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-5440@%s%s\n", directory,
                               failure.code().message());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

void HelpResolver::getMatchingHelp(std::string pattern, const std::string& category, bool hidden,
                                   std::vector<HelpInfo>& results) {
    results.clear();
    findTasks(hidden, pattern, category, results);
    if (g_helpType() != "long") {
        return;
    }
    if (pattern == "platform::shell") {
        pattern = "platform_shell";
    } else if (pattern == "pkg::create") {
        pattern = "pkg_create";
    }
    if (category.empty()) {
        findManPages(pattern, HelpInfo::man_page, results);
    } else if (HSTStringUtils::iequals(category, "TclBuiltIn")) {
        findManPages(pattern, HelpInfo::tcl_builtin, results);
    } else if (HSTStringUtils::iequals(category, "TclPackage")) {
        findManPages(pattern, HelpInfo::tcl_package, results);
    }
}

void HelpResolver::findTasks(bool hidden, const std::string& pattern, const std::string& givenCategory,
                             std::vector<HelpInfo>& results) {
    const std::string category = HSTStringUtils::iequals(givenCategory, "PaTopics") ? "" : givenCategory;
    const HTCTclPatternMatch matcher(pattern);
    const bool everywhere = hidden || pattern.find("::") != std::string::npos;
    const bool broad = pattern.empty() || matcher.hasWildcards();
    for (auto& [knownAs, name, global] : candidates()) {
        std::string helpName = matched_name(name);
        if (is_internal(helpName)) {
            continue;
        }
        if (!everywhere && !global && !in_visible_namespace(name)) {
            continue;
        }
        if (!pattern.empty() && !matcher.match(helpName) && !(global && matcher.match(tail(helpName)))) {
            continue;
        }
        const std::shared_ptr<itask> task = make_task(name);
        std::string advice;
        if (task && task->task_description() == vek::tcltasks::options_description::undeclared) {
            continue;
        }
        if (task && broad && !hidden && (task->is_hidden() || task->is_deprecated(advice))) {
            continue;
        }
        if (!category.empty() && !in_category(task, category)) {
            continue;
        }
        if (task) {
            if (!broad) {
                task_manager::warnIfDeprecated(g_interp, task.get());
            }
            results.push_back({name, knownAs, {}, HelpInfo::task_topic, task});
        } else if (category.empty() && features::isCommand(name)) {
            results.push_back({name, helpName, {}, HelpInfo::auto_loaded, nullptr});
        }
    }
}

void HelpResolver::findManPages(const std::string& pattern, HelpInfo::TopicType wanted,
                                std::vector<HelpInfo>& results) {
    std::set<std::string> taken;
    for (const HelpInfo& topic : results) {
        taken.insert(topic.name);
    }
    const HTCTclPatternMatch matcher(pattern.empty() ? "*" : pattern);
    for (const std::string& root : HUTEnv::getOMUAppRootList()) {
        std::string directory = root;
        for (const char* component : {"doc", "eng", "tcl"}) {
            directory.append(HUTFile::getDirSeparator()).append(component);
        }
        for (const std::string& name : page_names(directory, matcher)) {
            const std::string helpName = page_help_name(name);
            const HelpInfo::TopicType type =
                isTclPackage(helpName) ? HelpInfo::tcl_package : HelpInfo::tcl_builtin;
            if ((wanted == HelpInfo::man_page || wanted == type) && taken.insert(name).second) {
                std::string path = directory;
                path.append(HUTFile::getDirSeparator()).append(name);
                results.push_back({name, helpName, std::move(path), type, nullptr});
            }
        }
    }
}

bool HelpResolver::isTclPackage(const std::string& name) {
    static constexpr std::array<std::string_view, 8> packages = {
        "http", "msgcat", "platform", "platform_shell", "platform::shell", "tcltest", "mathop", "mathfunc"};
    return std::find(packages.begin(), packages.end(), name) != packages.end();
}

void getTaskCategories(const std::shared_ptr<itask>& task, std::vector<std::string>& names) {
    if (!task) {
        return;
    }
    for (std::string& name : HSTStringUtils::split(task->task_categories(), ':')) {
        if (!name.empty()) {
            names.push_back(std::move(name));
        }
    }
}

} // namespace HTCHelp::detail
