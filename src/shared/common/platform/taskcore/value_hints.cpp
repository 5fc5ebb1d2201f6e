#include "platform/taskcore/value_hints.h"

namespace vek::tcltasks {

namespace {

std::map<std::string, value_hints::source>& sources() {
    static auto& instance = *new std::map<std::string, value_hints::source>;
    return instance;
}

} // namespace

void value_hints::add(const std::string& kind, source values) {
    sources().emplace(kind, std::move(values));
}

const value_hints::source* value_hints::find(const std::string& kind) {
    const auto at = sources().find(kind);
    return at == sources().end() ? nullptr : &at->second;
}

} // namespace vek::tcltasks
