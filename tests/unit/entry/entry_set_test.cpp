#include "entry/entry_set.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <set>

namespace {

// Sets never read their entries.
const Data_entry* entry_at(std::uintptr_t address) {
    return reinterpret_cast<const Data_entry*>(address);
}

TEST(Entry_set, HoldsNothingAtFirst) {
    Entry_set set;
    EXPECT_FALSE(set.holds(entry_at(64)));
    set.erase(entry_at(64));
    EXPECT_TRUE(set.insert(entry_at(64)));
}

TEST(Entry_set, TakesAnEntryOnce) {
    Entry_set set;
    EXPECT_TRUE(set.insert(entry_at(64)));
    EXPECT_FALSE(set.insert(entry_at(64)));
    EXPECT_TRUE(set.holds(entry_at(64)));
    set.erase(entry_at(64));
    EXPECT_FALSE(set.holds(entry_at(64)));
    EXPECT_TRUE(set.insert(entry_at(64)));
}

class Entry_set_at_distances : public testing::TestWithParam<std::uintptr_t> {};

TEST_P(Entry_set_at_distances, HoldsWhatIsInsertedAndNotErased) {
    constexpr unsigned int ENTRIES = 700;
    std::mt19937 random(static_cast<unsigned int>(GetParam()));
    Entry_set set;
    std::set<const Data_entry*> expected;
    for (int step = 0; step < 20000; ++step) {
        // Grows first, then shrinks and grows around few entries.
        const unsigned int some = step < 10000 ? ENTRIES : 12;
        const Data_entry* const entry = entry_at((random() % some + 1) * GetParam());
        if (random() % 2 == 0) {
            ASSERT_EQ(set.insert(entry), expected.insert(entry).second) << step;
        } else {
            set.erase(entry);
            expected.erase(entry);
        }
        const Data_entry* const other = entry_at((random() % ENTRIES + 1) * GetParam());
        ASSERT_EQ(set.holds(other), expected.count(other) == 1) << step;
    }
    for (unsigned int i = 1; i <= ENTRIES; ++i) {
        const Data_entry* const entry = entry_at(i * GetParam());
        EXPECT_EQ(set.holds(entry), expected.count(entry) == 1) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Bytes, Entry_set_at_distances,
                         testing::Values(std::uintptr_t{8}, std::uintptr_t{496},
                                         std::uintptr_t{512}, std::uintptr_t{4096},
                                         std::uintptr_t{1} << 20));

}  // namespace
