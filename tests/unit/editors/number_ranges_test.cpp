#include <frontpanel_data/range_entry.h>
#include <frontpanel_editors/number_ranges.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <utility>
#include <vector>

#include "support/indexes.h"

namespace frontpanel {
namespace {

struct Ranged {
    explicit Ranged(std::vector<range_s> ranges, const char* name = "Delay") : Ranged(name) {
        entry.setValidRangeAndValues(std::move(ranges));
    }
    explicit Ranged(const char* name, std::string no_format = "")
        : entry(name, "A delay", 100, support::any_index(), 0, 240, 0, no_format.data(),
                no_format.data(), nullptr, Data_entry::READ_WRITE, Data_entry::VISIBLE_ALL, true,
                Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr) {}
    Range_entry entry;
};

TEST(NumberRanges, AreThoseOfTheEntrySortedAndJoined) {
    Ranged gapped({{120, 241, {}}, {0, 81, {}}, {60, 100, {}}});
    EXPECT_EQ(allowed_ranges(gapped.entry), (Number_ranges{{0, 99}, {120, 240}}));
}

TEST(NumberRanges, OfAnEntryWithoutRangesAreItsBounds) {
    Ranged plain("Delay");
    EXPECT_EQ(allowed_ranges(plain.entry), (Number_ranges{{0, 240}}));
}

TEST(NumberRanges, AreNoneWhileNothingIsAllowed) {
    Ranged none(std::vector<range_s>{{0, 10, {"missing"}}});
    EXPECT_GT(none.entry.Get_min(), none.entry.Get_max());
    EXPECT_TRUE(allowed_ranges(none.entry).empty());
}

TEST(NumberRanges, ANameThatLooksLikeARangeIsNone) {
    Ranged named({{0, 11, {}}}, "range={  [5, 6]  [7, 8] ");
    EXPECT_EQ(allowed_ranges(named.entry), (Number_ranges{{0, 10}}));
}

TEST(NumberRanges, PassOverTheOptionsOfARange) {
    Ranged optional("Delay");
    optional.entry.setProductOptions({{"gps", 1}, {"a [b", 1}});
    optional.entry.setValidRangeAndValues({{0, 11, {"gps", "a [b"}}, {20, 31, {"gps"}}});
    EXPECT_EQ(allowed_ranges(optional.entry), (Number_ranges{{0, 10}, {20, 30}}));
}

TEST(NumberRanges, JoinUpToTheLimitsOfNumbers) {
    EXPECT_EQ(normalized({{5, INT_MAX}, {INT_MIN, 4}, {9, 3}}),
              (Number_ranges{{INT_MIN, INT_MAX}}));
    EXPECT_EQ(common_ranges({{0, 80}, {120, 240}}, {{70, 130}, {200, 300}}),
              (Number_ranges{{70, 80}, {120, 130}, {200, 240}}));
    EXPECT_TRUE(common_ranges({{0, 80}}, {}).empty());
}

TEST(NumberRanges, FindTheNearestAndTheNextValue) {
    const Number_ranges ranges{{0, 80}, {120, 240}};
    struct Case {
        int value;
        int nearest;
        int up;
        int down;
    };
    for (const Case& expected :
         {Case{-7, 0, 0, 0}, Case{0, 0, 0, 0}, Case{80, 80, 80, 80}, Case{81, 80, 120, 80},
          Case{100, 80, 120, 80}, Case{101, 120, 120, 80}, Case{120, 120, 120, 120},
          Case{241, 240, 240, 240}, Case{INT_MAX, 240, 240, 240}, Case{INT_MIN, 0, 0, 0}}) {
        SCOPED_TRACE(expected.value);
        EXPECT_EQ(nearest_allowed(ranges, expected.value), expected.nearest);
        EXPECT_EQ(next_allowed(ranges, expected.value, true), expected.up);
        EXPECT_EQ(next_allowed(ranges, expected.value, false), expected.down);
        EXPECT_EQ(allows(ranges, expected.value), expected.nearest == expected.value);
    }
    EXPECT_EQ(next_allowed(ranges, int64_t{INT_MAX} + 10, true), 240);
    EXPECT_EQ(nearest_allowed({{INT_MIN, INT_MIN}, {INT_MAX, INT_MAX}}, 0), INT_MAX);
}

}  // namespace
}  // namespace frontpanel
