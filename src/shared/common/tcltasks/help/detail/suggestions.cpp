#include "tcltasks/help/detail/suggestions.h"

#include <algorithm>
#include <set>

#include "platform/env/HSTStringUtils.h"
#include "tcltasks/help/detail/format.h"
#include "tcltasks/help/detail/topic_text.h"

namespace HTCHelp::detail::suggestions {

namespace {

constexpr size_t most_near = 4;
constexpr size_t most_mentions = 10;
constexpr size_t shortest_word = 3; // anything shorter is mentioned everywhere

bool contains(std::string_view text, std::string_view word) {
    return std::search(text.begin(), text.end(), word.begin(), word.end()) != text.end();
}

// The names that begin with or contain the word, then the likeliest misspellings.
std::vector<std::string> near_names(const std::string& word, std::vector<std::string> all) {
    std::vector<std::string> found;
    const auto take = [&](const std::string& name) {
        found.push_back(name);
        std::erase(all, name);
    };
    while (found.size() < most_near) {
        const std::string name = HSTStringUtils::nearest(word, all);
        if (name.empty()) {
            break;
        }
        take(name);
    }
    const std::string lower = HSTStringUtils::to_lower(word);
    for (const std::string& name : std::vector<std::string>(all)) {
        if (found.size() < most_near && word.size() >= shortest_word &&
            contains(HSTStringUtils::to_lower(name), lower)) {
            take(name);
        }
    }
    return found;
}

std::string line(const std::string& label, const std::vector<std::string>& names, size_t most) {
    std::string text = "\n" + label + ": ";
    for (size_t i = 0; i < std::min(names.size(), most); ++i) {
        text += (i > 0 ? ", " : "") + names[i];
    }
    if (names.size() > most) {
        text += " and " + std::to_string(names.size() - most) + " more";
    }
    return format::formatText(text + ".", 80);
}

} // namespace

std::string forTopic(Tcl_Interp* interp, const std::string& word, const std::vector<HelpInfo>& topics) {
    std::vector<std::string> names;
    names.reserve(topics.size());
    for (const HelpInfo& topic : topics) {
        names.push_back(topic.helpName);
    }
    const std::vector<std::string> near = near_names(word, names);
    std::set<std::string> taken(near.begin(), near.end());
    std::vector<std::string> mentions;
    const std::string lower = HSTStringUtils::to_lower(word);
    for (const HelpInfo& topic : topics) {
        if (word.size() >= shortest_word && !taken.contains(topic.helpName) &&
            contains(HSTStringUtils::to_lower(topic_text(interp, topic, "long")), lower)) {
            taken.insert(topic.helpName);
            mentions.push_back(topic.helpName);
        }
    }
    return (near.empty() ? std::string() : line("Similar topics", near, most_near)) +
           (mentions.empty() ? std::string() : line("Topics that mention it", mentions, most_mentions));
}

std::string forName(const std::string& what, const std::string& word, const std::vector<std::string>& all) {
    const std::vector<std::string> near = near_names(word, all);
    return all.empty()    ? std::string()
           : near.empty() ? line(what, all, all.size())
                          : line("Similar names", near, most_near);
}

} // namespace HTCHelp::detail::suggestions
