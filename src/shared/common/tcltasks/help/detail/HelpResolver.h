#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tcltasks/help/detail/HelpInfo.h"

namespace HTCHelp::detail {

/// Finds the topics of help: the tasks, the commands of features, and the manual pages of the application
/// roots, in this order. Looks at the commands of g_interp. Interpreter's thread.
class HelpResolver {
public:
    /// Replaces `results` by the topics that match a glob pattern; all for an empty one. Manual pages are
    /// only looked for when g_helpType is "long". \param category the beginning of a category's name in any
    /// case; empty, or "PaTopics" for all topics but manual pages \param hidden also what is hidden,
    /// deprecated or in a namespace
    void getMatchingHelp(std::string pattern, const std::string& category, bool hidden,
                         std::vector<HelpInfo>& results);

    /// Appends the tasks and the commands of features that match. A task that cannot be made is warned of.
    void findTasks(bool hidden, const std::string& pattern, const std::string& category,
                   std::vector<HelpInfo>& results);

    /// Appends the manual pages whose file names match, except those whose name a topic in `results` has. A
    /// directory that cannot be read is warned of.
    /// \param type man_page for all, or the kind that is wanted
    void findManPages(const std::string& pattern, HelpInfo::TopicType type, std::vector<HelpInfo>& results);

    /// Whether a name is that of one of the packages that Tcl brings along.
    static bool isTclPackage(const std::string& name);
};

/// Appends the names of the task's categories; nothing for null.
void getTaskCategories(const std::shared_ptr<vek::tcltasks::itask>& task, std::vector<std::string>& names);

} // namespace HTCHelp::detail
