#include "tcltasks/help/detail/HelpCategoryMgr.h"

#include <algorithm>

#include "platform/env/HSTStringUtils.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "platform/taskcore/HTCTclTaskOptions.h"
#include "platform/tcl/HTCTclPatternMatch.h"
#include "tcltasks/help/detail/HelpResolver.h"
#include "tcltasks/help/detail/HelpState.h"

namespace HTCHelp::detail {

namespace {

bool initialized = false;

// What topics without a category are found under. It stands in no list.
const char* const uncategorized = "Unknown";

std::vector<std::string>& allCategoriesInstance() {
    static auto& instance = *new std::vector<std::string>;
    return instance;
}

std::vector<std::string>& categoriesInstance() {
    static auto& instance = *new std::vector<std::string>;
    return instance;
}

} // namespace

const std::vector<std::string>& HelpCategoryMgr::getCategories(bool hidden) {
    if (!initialized || g_dirtyCategories) {
        initCategories();
    }
    return hidden ? allCategoriesInstance() : categoriesInstance();
}

HelpCategoryMgr::Choice HelpCategoryMgr::resolve(const std::string& text) {
    if (text.empty() || HSTStringUtils::iequals(text, "PaTopics")) {
        return {text.empty() ? "" : "PaTopics", {}};
    }
    const HTCTclPatternMatch matcher(text);
    const bool pattern = matcher.hasWildcards();
    std::vector<std::string> matches;
    for (const std::string& name : getCategories(true)) {
        if (!pattern && HSTStringUtils::iequals(name, text)) {
            return {text, {}};
        }
        if (pattern ? matcher.matchNoCase(name) : HSTStringUtils::istarts_with(name, text)) {
            matches.push_back(name);
        }
    }
    if (HSTStringUtils::iequals(text, uncategorized)) {
        return {uncategorized, {}};
    }
    if (matches.empty()) {
        throw HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-28@%s\n", text));
    }
    return matches.size() == 1 ? Choice{matches[0], {}} : Choice{text, matches};
}

void HelpCategoryMgr::initCategories() {
    initialized = true;
    g_dirtyCategories = false;
    allCategoriesInstance().clear();
    categoriesInstance().clear();
    HelpResolver resolver;
    initCategories(resolver, true, allCategoriesInstance());
    initCategories(resolver, false, categoriesInstance());
}

void HelpCategoryMgr::initCategories(HelpResolver& resolver, bool hidden,
                                     std::vector<std::string>& categories) {
    categories = {"TclBuiltIn", "TclPackage"};
    std::vector<HelpInfo> topics;
    resolver.getMatchingHelp("", "PaTopics", hidden, topics);
    for (const HelpInfo& topic : topics) {
        const size_t before = categories.size();
        getTaskCategories(topic.task, categories);
        if (categories.size() == before && !hidden && topic.type != HelpInfo::auto_loaded) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-20@%s\n", topic.name);
        }
    }
    if (!hidden) {
        std::erase_if(categories, HTCTclTaskOptions::isCategoryHidden);
    }
    std::sort(categories.begin(), categories.end());
    categories.erase(std::unique(categories.begin(), categories.end()), categories.end());
}

} // namespace HTCHelp::detail
