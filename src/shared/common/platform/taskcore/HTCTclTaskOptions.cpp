#include "platform/taskcore/HTCTclTaskOptions.h"

#include <set>

namespace HTCTclTaskOptions {

namespace {

std::set<std::string>& hidden() {
    static std::set<std::string>& instance = *new std::set<std::string>;
    return instance;
}

} // namespace

void hideCategory(const std::string& name) {
    hidden().insert(name);
}

bool isCategoryHidden(const std::string& name) {
    return hidden().contains(name);
}

} // namespace HTCTclTaskOptions
