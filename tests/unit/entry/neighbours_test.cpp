#include "entry/neighbours.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <vector>

#include "support/indexes.h"

namespace {

class Sibling : public Node_entry {
public:
    Sibling()
        : Node_entry("Sibling", "", support::any_index(), nullptr, VISIBLE_ALL, SHORTCUT_NONE,
                     nullptr, nullptr, nullptr) {}
};

using neighbours::Met;

TEST(Met_siblings, AreNewOnce) {
    std::array<Sibling, 100> siblings;
    Met met;
    Met::Level level = met.enter();
    std::set<const Data_entry*> expected;
    for (std::size_t i = 0; i < 300; ++i) {
        const Sibling* const sibling = &siblings[i * 37 % (i % 90 + 10)];
        EXPECT_EQ(met.is_new(level, sibling), expected.insert(sibling).second) << i;
    }
}

TEST(Met_siblings, OfAnotherLevelAreNewAgain) {
    std::array<Sibling, 40> siblings;
    Met met;
    Met::Level outer = met.enter();
    for (std::size_t count : {3u, 30u}) {
        for (std::size_t i = 0; i < count; ++i) {
            met.is_new(outer, &siblings[i]);
        }
        Met::Level inner = met.enter();
        EXPECT_TRUE(met.is_new(inner, &siblings[0]));
        EXPECT_FALSE(met.is_new(inner, &siblings[0]));
        met.leave(inner);
        EXPECT_FALSE(met.is_new(outer, &siblings[0]));
        EXPECT_FALSE(met.is_new(outer, &siblings[2]));
        EXPECT_TRUE(met.is_new(outer, &siblings[count + 5]));
    }
}

TEST(Met_siblings, AreNotComparedWithMoreThanAFew) {
    std::vector<Sibling> siblings(2000);
    Met met;
    Met::Level level = met.enter();
    const std::size_t before = step_counter::siblings_compared;
    for (const Sibling& sibling : siblings) {
        EXPECT_TRUE(met.is_new(level, &sibling));
    }
    EXPECT_LE(step_counter::siblings_compared - before, 200u);
}

}  // namespace
