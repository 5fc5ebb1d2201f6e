#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

/// Records how long a scope took and how much memory it added:
///
///     HUTMemWatcher watch("readNetlist");
///
/// Costs nothing but a test unless HUTMemUtils::setMemLogMode() was called before the scope was entered.
/// Scopes of one name are summed up. Safe from any thread.
class HUTMemWatcher {
public:
    explicit HUTMemWatcher(std::string_view scope);
    ~HUTMemWatcher();
    HUTMemWatcher(const HUTMemWatcher&) = delete;
    HUTMemWatcher& operator=(const HUTMemWatcher&) = delete;

    /// A table of all scopes in order of first entry, with calls, elapsed seconds, memory added in MB and the
    /// process's peak in MB. Empty when nothing was recorded.
    static std::string getTotals();

    /// Sends getTotals(), if not empty, to the session's output (HUTEnv::post).
    static void genLogTotals();

private:
    std::string scope_; ///< empty when nothing is recorded
    std::chrono::steady_clock::time_point start_;
    uint64_t rss_ = 0;
};
