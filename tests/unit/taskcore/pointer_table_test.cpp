// The table behind the identity of native objects and Tcl values, against the standard containers.
#include "platform/taskcore/pointer_table.h"

#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>
#include <vector>

using namespace vek::tcltasks;

namespace {

using table = pointer_table<char*, int*>;

char* key(size_t number, size_t stride = 8) {
    return reinterpret_cast<char*>(0x7f0000000000 + number * stride);
}

int* value(size_t number) {
    return reinterpret_cast<int*>(8 * (number + 1));
}

TEST(PointerTable, AnEmptyOneHasNothing) {
    table t;
    EXPECT_EQ(t.size(), 0u);
    EXPECT_TRUE(t.find(key(1)) == t.end());
    EXPECT_TRUE(t.begin() == t.end());
    t.prefetch(key(1));
}

TEST(PointerTable, AKeyMayStandTwiceUnlessItIsEmplaced) {
    table t;
    t.insert(key(1), value(1));
    t.insert(key(1), value(2));
    EXPECT_EQ(t.size(), 2u);
    const auto second = t.find_if(key(1), [](int* v) { return v == value(2); });
    ASSERT_FALSE(second == t.end());
    EXPECT_EQ(second->second, value(2));
    EXPECT_FALSE(t.emplace(key(1), value(3)));
    EXPECT_TRUE(t.emplace(key(2), value(3)));
    EXPECT_EQ(t.size(), 3u);
    t.erase(t.find_if(key(1), [](int* v) { return v == value(1); }));
    EXPECT_EQ(t.find(key(1))->second, value(2));
}

TEST(PointerTable, HoldsWhatTheStandardContainerHolds) {
    std::mt19937 random(7);
    for (const size_t stride : {8u, 48u, 64u, 4096u, 1u << 20}) {
        table t;
        std::map<char*, std::multiset<int*>> expected;
        size_t size = 0;
        for (int step = 0; step < 20000; ++step) {
            char* const k = key(random() % 500, stride);
            if (random() % 5 < 3) {
                int* const v = value(random() % 3);
                t.insert(k, v);
                expected[k].insert(v);
                ++size;
            } else if (const auto at = t.find(k); !(at == t.end())) {
                const auto known = expected[k].find(at->second);
                ASSERT_NE(known, expected[k].end());
                expected[k].erase(known);
                t.erase(at);
                --size;
            } else {
                ASSERT_TRUE(expected[k].empty());
            }
            ASSERT_EQ(t.size(), size);
        }
        std::map<char*, std::multiset<int*>> walked;
        for (const auto& [k, v] : t) {
            walked[k].insert(v);
        }
        std::erase_if(expected, [](const auto& entry) { return entry.second.empty(); });
        EXPECT_EQ(walked, expected) << "stride " << stride;
    }
}

} // namespace
