#include "platform/env/HUTMemWatcher.h"

#include "platform/env/HUTEnv.h"
#include "platform/env/HUTMemUtils.h"
#include "platform/env/HUTTextTable.h"

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <vector>

namespace {

struct scope_total {
    std::string name;
    uint64_t calls = 0;
    double seconds = 0;
    int64_t added = 0; // bytes; less than nothing when the scope gave memory back
    uint64_t peak = 0; // bytes
};

struct totals {
    std::mutex mutex; // guards scopes
    std::vector<scope_total> scopes;
};

totals& all_totals() {
    static totals& the_totals = *new totals;
    return the_totals;
}

scope_total& total_of(totals& all, std::string_view name) {
    auto it =
        std::find_if(all.scopes.begin(), all.scopes.end(), [&](const auto& s) { return s.name == name; });
    if (it == all.scopes.end())
        it = all.scopes.insert(it, scope_total{std::string(name)});
    return *it;
}

std::string fixed(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.3f", value);
    return text;
}

} // namespace

HUTMemWatcher::HUTMemWatcher(std::string_view scope) {
    if (!HUTMemUtils::isMemLogMode())
        return;
    scope_ = scope;
    {
        totals& all = all_totals();
        const std::lock_guard lock(all.mutex);
        total_of(all, scope);
    }
    rss_ = HUTMemUtils::getCurrentRss();
    start_ = std::chrono::steady_clock::now();
}

HUTMemWatcher::~HUTMemWatcher() {
    if (scope_.empty())
        return;
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
    const auto rss = static_cast<int64_t>(HUTMemUtils::getCurrentRss());
    const uint64_t peak = HUTMemUtils::getPeakRss();
    totals& all = all_totals();
    const std::lock_guard lock(all.mutex);
    scope_total& total = total_of(all, scope_);
    total.calls += 1;
    total.seconds += elapsed.count();
    total.added += rss - static_cast<int64_t>(rss_);
    total.peak = std::max(total.peak, peak);
}

std::string HUTMemWatcher::getTotals() {
    using Align = HUTTextTable::Align;
    HUTTextTable table;
    table.setHeaders({"Scope", "Calls", "Elapsed (s)", "Added (MB)", "Peak (MB)"});
    for (size_t column = 1; column < 5; ++column)
        table.setAlign(column, Align::right);
    totals& all = all_totals();
    const std::lock_guard lock(all.mutex);
    for (const scope_total& scope : all.scopes) {
        table.addRow({scope.name, std::to_string(scope.calls), fixed(scope.seconds),
                      fixed(static_cast<double>(scope.added) / 1e6),
                      fixed(static_cast<double>(scope.peak) / 1e6)});
    }
    return table.numRows() > 0 ? table.getAsString() : std::string();
}

void HUTMemWatcher::genLogTotals() {
    std::string text = getTotals();
    if (!text.empty())
        HUTEnv::post({0x20000, {}, {}, std::move(text)});
}
