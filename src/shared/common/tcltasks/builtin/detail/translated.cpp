#include "tcltasks/builtin/detail/translated.h"

#include <set>
#include <string_view>

#include "platform/env/HSTStringUtils.h"

namespace HTCBuiltin::detail {

namespace {

std::set<std::string, std::less<>>& translated() {
    static auto& s_translated = *new std::set<std::string, std::less<>>;
    return s_translated;
}

} // namespace

void record_translated_command(const std::string& name) {
    translated().insert(name);
}

bool command_has_translation(const std::string& commandText) {
    if (translated().empty()) {
        return false;
    }
    const std::string_view text = HSTStringUtils::trim(commandText);
    return translated().find(text.substr(0, text.find_first_of(" \t\n"))) != translated().end();
}

} // namespace HTCBuiltin::detail
