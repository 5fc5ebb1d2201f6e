#pragma once

#include <string>
#include <vector>

namespace HTCHelp::detail {

class HelpResolver;

/// The categories of help, sorted. The lists are built when they are first needed, and again after
/// g_dirtyCategories was set. Interpreter's thread.
class HelpCategoryMgr {
public:
    /// The categories of all topics; without `hidden`, of those topics that are shown, and without the
    /// categories that are hidden themselves.
    static const std::vector<std::string>& getCategories(bool hidden);

    /// What -category stands for.
    struct Choice {
        std::string category;             ///< the one that is meant
        std::vector<std::string> matches; ///< more than one: all that could be meant
    };
    /// A name in any case, the only category that begins with the text or matches it as a pattern, or all
    /// that do. Throws HEXError if there is none.
    static Choice resolve(const std::string& text);

    static void initCategories();
    static void initCategories(HelpResolver& resolver, bool hidden, std::vector<std::string>& categories);
};

} // namespace HTCHelp::detail
