// common::help ?PATTERN? ?-category NAME? ?-args|-syntax|-long? ?-list|-w|-all? ?-hidden? ?-class NAME?
// Tells of commands, classes of objects, properties, messages and Tcl itself. Fails when nothing matches.
#include <algorithm>
#include <span>

#include "platform/env/HSTStringUtils.h"
#include "platform/env/HUTEnv.h"
#include "platform/env/HUTPathUtils.h"
#include "platform/env/HUTTextTable.h"
#include "platform/msg/ComMsgMgrOstream.h"
#include "platform/taskcore/option_messages.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/HTCTclPatternMatch.h"
#include "platform/tcl/HTCTclUtils.h"
#include "platform/tcl/tclcmdobj.h"
#include "platform/tcl/tclobj_ref.h"
#include "tcltasks/core/task.h"
#include "tcltasks/help/detail/HelpCategoryMgr.h"
#include "tcltasks/help/detail/HelpResolver.h"
#include "tcltasks/help/detail/HelpState.h"
#include "tcltasks/help/detail/features.h"
#include "tcltasks/help/detail/format.h"
#include "tcltasks/help/detail/property.h"
#include "tcltasks/help/detail/suggestions.h"
#include "tcltasks/help/detail/topic_text.h"

using namespace vek::tcltasks;
using namespace HTCHelp::detail;

namespace help {

namespace {

enum class form { list, source, full, summary };

const std::string category_hint =
    "To list help topics by category, type 'help -category <category>'. For example:\n"
    "% help -category Project\n";

template <class... Args>
HEXError error(com_msg_mgr::Key<std::type_identity_t<Args>...> key, const Args&... args) {
    return HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, key, args...));
}

HEXError nothing_found(const std::string& pattern, const std::string& category) {
    if (category.empty()) {
        return error("@17-25@%s\n", pattern);
    }
    return pattern == "*" ? error("@17-24@%s\n", category) : error("@17-26@%s%s\n", category, pattern);
}

// What a long description says first, on one line.
std::string first_paragraph(const std::string& description) {
    std::string text(HSTStringUtils::trim(description));
    text.erase(std::min(text.find("\n\n"), text.size()));
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

std::string summary_description(Tcl_Interp* interp, const HelpInfo& topic) {
    switch (topic.type) {
    case HelpInfo::task_topic:
        return first_paragraph(topic.task->task_description());
    case HelpInfo::auto_loaded:
        return "This command is auto loaded by Tcl. To explicitly load the command type '" +
               features::getLoadCommandForCommand(interp, topic.name) + "'.";
    case HelpInfo::tcl_builtin:
        return "Tcl Built-In";
    case HelpInfo::tcl_package:
        return "Tcl Package";
    default:
        return "Unknown";
    }
}

std::string class_table(const std::vector<std::string>& names) {
    const bool debug = HUTEnv::isTclDebug();
    size_t longest = 0;
    for (const std::string& name : names) {
        longest = std::max(longest, name.size());
    }
    const int width = std::max(80 - static_cast<int>(longest) - 3 - (debug ? 7 + 3 : 0), 0);
    HUTTextTable table(0);
    table.setHeaders(debug ? std::vector<std::string>{"Class Type", "Visible", "Description"}
                           : std::vector<std::string>{"Class Type", "Description"});
    for (const std::string& name : names) {
        const std::string description = property::getClassTypeDescription(name);
        std::vector<std::string> row{name};
        if (debug) {
            row.emplace_back(property::isVisible(name) ? "true" : "false");
        }
        row.push_back(
            format::formatText(description.empty() ? "no description available." : description, width));
        table.addRow(std::move(row));
    }
    return table.getAsString(true) +
           "\n\nTo list help on properties, type 'help -class <class> -prop <pattern>'. For example:\n"
           "% help -class cell -prop *\n";
}

std::vector<std::string> help_names(const std::vector<HelpInfo>& topics) {
    std::vector<std::string> names;
    names.reserve(topics.size());
    for (const HelpInfo& topic : topics) {
        names.push_back(topic.helpName);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string sources(const std::vector<HelpInfo>& topics) {
    std::string text;
    for (const HelpInfo& topic : topics) {
        text += (text.empty() ? "" : "\n") + (topic.path.empty() ? "tcl task: " + topic.name : topic.path);
    }
    return text;
}

// Sets the paragraphs on a message below their headings, indented.
std::string message_layout(const std::string& text) {
    const auto lines = HSTStringUtils::split(HSTStringUtils::trim(text), '\n');
    std::string out = format::formatText(lines[0], 80) + "\n";
    for (const std::string& line : std::span(lines).subspan(1)) {
        if (line.empty() || line.ends_with(":")) {
            out += line + "\n";
            continue;
        }
        for (const std::string& piece : HSTStringUtils::split(format::formatText(line, 78), '\n')) {
            out += "  " + piece + "\n";
        }
    }
    out.pop_back();
    return out;
}

// Fails with the message, and below it with what may help on.
int fail_with_hint(Tcl_Interp* interp, const HEXError& error, const std::string& hint) {
    const int code = fail_with(interp, error);
    Tcl_AppendResult(interp, hint.c_str(), nullptr);
    return code;
}

} // namespace

class task : public HTCITaskHelper<task, null_tag> {
public:
    static constexpr const char* command = "common::help";

    static void load_description();
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const auto cls = get_option<std::string>("class");
        checkCombination(cls);
        if (specified_option("prop")) {
            return propertyHelp(interp, cls);
        }
        if (specified_option("message")) {
            return messageHelp();
        }
        if (specified_option("class")) {
            return classHelp(interp);
        }
        return topicHelp(interp);
    }

private:
    void checkCombination(const std::string& cls) const;
    int propertyHelp(Tcl_Interp* interp, const std::string& cls) const;
    int messageHelp() const;
    int classHelp(Tcl_Interp* interp);
    int topicHelp(Tcl_Interp* interp);
    int showCategories(Tcl_Interp* interp, bool asList, bool hidden);
    int printSummary(Tcl_Interp* interp, bool wrap, const std::vector<HelpInfo>& topics);
    int printFullHelp(Tcl_Interp* interp, const std::string& helpType, const std::vector<HelpInfo>& topics);

    std::string pattern() const {
        const tclobj_ref word(get_option<tclany>("pattern_or_object").get_as_tcl_obj());
        return HTCTclEncoding::tclGetString(word.get());
    }
};

void task::load_description() {
    in_categories("Project");
    description_instance("Display help for one or more topics", "")
        .add_options()
        .add_option("pattern_or_object",
                    options::value<tclany>()->default_value(tclany(std::string("*")), "*"),
                    "Display help for topics that match the specified pattern")
        .hint("command")
        .add_option("category", options::text(), "Search for topics in the specified category")
        .add_option("args", options::flag(), "Display arguments description")
        .add_option("syntax", options::flag(), "Display syntax description")
        .add_option("long", options::flag(), "Display long help description")
        .add_option("prop", options::text("*")->implicit_value("*", "*"),
                    "Display property help for matching property names")
        .add_option("class", options::text(), "Display object type help")
        .add_option(
            "message", options::text(),
            "Display information about the message with the given message. Every message delivered by "
            "the tool has a unique global message ID that consists of an application sub-system code "
            "and a message identifier. Example: -message {Common 17-8}.")
        .add_option("short", options::flag(), "Deprecated, same as args")
        .add_option("list", options::flag(),
                    "Return matching tasks or categories as a list. The list will not contain man pages")
        .add_option("all", options::flag(),
                    "Display help for all matches. By default, help will print a summary when there are "
                    "multiple matches")
        .add_option("hidden", options::flag(),
                    "Display help for all commands, including those that are hidden or in namespaces")
        .add_option("w", options::flag(), "Print only the help source")
        .add_option("no_wrap", options::flag(), "Don't wrap help descriptions in summary mode");
    positional_instance().add("pattern_or_object", 1);
}

void task::checkCombination(const std::string& cls) const {
    if (specified_option("class") && specified_option("category")) {
        throw HTCErrors::command_failed("'-class' cannot be specified with '-category'.");
    }
    if (specified_option("class") && specified_option("pattern_or_object")) {
        throw HTCErrors::command_failed("'-class' cannot be specified with '<object>'.");
    }
    if (specified_option("prop") && specified_option("category")) {
        throw HTCErrors::command_failed("'-prop' cannot be specified with '-category'.");
    }
    const bool object = specified_option("pattern_or_object") &&
                        !get_option<tclany>("pattern_or_object").get_if<std::string>();
    if (specified_option("prop") && cls.empty() && !object) {
        throw HTCErrors::command_failed("'-prop' requires either '-class' or '<object>'.");
    }
}

int task::propertyHelp(Tcl_Interp* interp, const std::string& cls) const {
    tclcmdobj report(interp, "report_property");
    report.append("-return_string");
    if (cls.empty()) {
        report.append("-detail").append(get_option<tclany>("pattern_or_object").get_as_tcl_obj());
    } else {
        report.append("-class").append(cls);
    }
    return report.append(get_option<std::string>("prop")).eval();
}

int task::messageHelp() const {
    std::string text;
    if (!ComMsgMgr::getHelpOnMessage(get_option<std::string>("message"), text)) {
        throw HTCErrors::command_failed(text);
    }
    ComMsgMgr::sendMsg(ComMsgMgrInstance::createInstance("common", ComMsgMgr::MSGTYPE_STATUS, "%s\n",
                                                         {message_layout(text)}));
    return TCL_OK;
}

int task::classHelp(Tcl_Interp* interp) {
    const auto cls = get_option<std::string>("class");
    std::vector<std::string> names;
    property::getMatchingClassTypes(cls, names);
    if (names.empty()) {
        property::getMatchingClassTypes("*", names);
        return fail_with_hint(interp, error("@17-379@%s", cls),
                              suggestions::forName("The classes are", cls, names));
    }
    if (names.size() > 1 || HTCTclPatternMatch(cls).hasWildcards()) {
        return set_result(interp, class_table(names));
    }
    property::validClassOrError(names[0]);
    const std::string relative = "doc/eng/class/" + names[0];
    const std::string root = HUTEnv::getOMUAppRoot(relative);
    if (root.empty()) {
        return set_result(interp, "no extended help for class type '" + cls + "' is available.\n");
    }
    return set_result(interp, page_text(HUTPathUtils::join({root, relative})) +
                                  "\n\nTo list help on properties, type 'help -class " + cls + " -prop *'.");
}

int task::topicHelp(Tcl_Interp* interp) {
    g_interp = interp;
    features::init(interp);
    const bool all = get_option<bool>("all"), asList = get_option<bool>("list"),
               source = get_option<bool>("w");
    const bool hidden = get_option<bool>("hidden");
    g_helpType() = get_option<bool>("syntax") ? "syntax" : "";
    if (get_option<bool>("args") || get_option<bool>("short")) {
        g_helpType() = "args";
    }
    if (g_helpType().empty() || get_option<bool>("long")) {
        g_helpType() = "long";
    }
    const bool wrap = specified_option("no_wrap") ? !get_option<bool>("no_wrap") : !HTCTclUtils::isGuiMode();
    if (asList && all) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-13@\n");
    }
    if (source && all) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-18@\n");
    }
    if (source && asList) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-19@\n");
    }

    std::string wanted = pattern();
    wanted.erase(0, wanted.find_first_not_of(':'));
    const auto given = get_option<std::string>("category");
    const bool patternGiven = specified_option("pattern_or_object") && !wanted.empty();
    if (!patternGiven) {
        wanted = "*";
        if (given.empty()) {
            return showCategories(interp, asList, hidden);
        }
    }
    const bool wildcards = HTCTclPatternMatch(wanted).hasWildcards();
    form output = asList ? form::list : source ? form::source : all ? form::full : form::summary;
    const bool fallback = output == form::summary && given.empty() && !wildcards;
    if (fallback) {
        output = form::full;
    }

    HelpCategoryMgr::Choice choice;
    try {
        choice = HelpCategoryMgr::resolve(given);
    } catch (const HEXError& unknown) {
        return fail_with_hint(
            interp, unknown,
            suggestions::forName("The categories are", given, HelpCategoryMgr::getCategories(hidden)));
    }
    if (choice.matches.size() > 1) {
        std::string text = "Ambiguous category '" + given + "'. Possible matches:\n";
        for (const std::string& name : choice.matches) {
            text += name + "\n";
        }
        return set_result(interp, text + category_hint);
    }
    std::string category = choice.category.empty() && asList ? "PaTopics" : choice.category;

    HelpResolver resolver;
    std::vector<HelpInfo> results;
    resolver.getMatchingHelp(wanted, category, hidden, results);
    if (results.empty() && !wildcards) {
        resolver.getMatchingHelp(wanted + "*", category, hidden, results);
        if (!results.empty() && fallback) {
            output = form::summary;
        }
    }
    if (results.empty()) {
        const HEXError failure = nothing_found(wanted, category);
        if (wildcards) {
            throw failure;
        }
        resolver.getMatchingHelp("*", category, hidden, results);
        return fail_with_hint(interp, failure, suggestions::forTopic(interp, wanted, results));
    }
    switch (output) {
    case form::list:
        return set_result(interp, help_names(results));
    case form::source:
        return set_result(interp, sources(results));
    case form::summary:
        return printSummary(interp, wrap, results);
    case form::full:
        return printFullHelp(interp, g_helpType(), results);
    }
    return TCL_OK;
}

int task::showCategories(Tcl_Interp* interp, bool asList, bool hidden) {
    const auto& names = HelpCategoryMgr::getCategories(hidden);
    if (asList) {
        return set_result(interp, tcl_collection<HSTVector<std::string>>(HSTVector<std::string>(names)));
    }
    std::string text = "Topic Categories:\n";
    for (const std::string& name : names) {
        text += name + "\n";
    }
    return set_result(interp, text + "\n" + category_hint);
}

int task::printSummary(Tcl_Interp* interp, bool wrap, const std::vector<HelpInfo>& topics) {
    size_t longest = 0;
    for (const HelpInfo& topic : topics) {
        longest = std::max(longest, topic.helpName.size());
    }
    const int width = 77 - static_cast<int>(longest);
    HUTTextTable table(0);
    table.setHeaders({"Topic", "Description"});
    for (const HelpInfo& topic : topics) {
        const std::string description = summary_description(interp, topic);
        table.addRow({topic.helpName, wrap ? format::wrapDescription(description, width) : description});
    }
    if (table.numRows() == 0) {
        throw error("@17-27@\n");
    }
    const std::string text = "\n" + table.getAsString(true) +
                             "\n\nFor help on an individual topic, type 'help <topic>'. For example:\n"
                             "% help create_project\n";
    if (HTCTclUtils::isBatchMode()) {
        ComMsgMgrOstream() << text;
    }
    return set_result(interp, text);
}

int task::printFullHelp(Tcl_Interp* interp, const std::string& helpType,
                        const std::vector<HelpInfo>& topics) {
    std::string text;
    for (const HelpInfo& topic : topics) {
        text += (text.empty() ? "" : "\n") + topic_text(interp, topic, helpType);
    }
    return set_result(interp, text);
}

extern const task_entry entry = entry_of<task>;

} // namespace help
