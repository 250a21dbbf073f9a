#include <frontpanel_menu/shown_value.h>
#include "unit/menu/items_fixture.h"

namespace frontpanel {
namespace {

TEST(RangeItems, ARangeTakesItsBoundsFromTheParameter) {
    Simulated_menu loaded = simulated_text(with_range(R"("description": "d")"));
    auto* const range = dynamic_cast<Range_entry*>(loaded.menu->root().Get_child());
    ASSERT_NE(range, nullptr);
    EXPECT_EQ(range->Get_min(), 0);
    EXPECT_EQ(range->Get_max(), 100);
    EXPECT_STREQ(range->Get_description(), "d");
    EXPECT_EQ(range->Get_access_type(), Data_entry::READ_WRITE);
    EXPECT_EQ(loaded.menu->entry_count(), 2U);
}

TEST(RangeItems, ABoundRangeHasAllowedValuesBeforeItsFirstRefresh) {
    Simulated_menu loaded =
        simulated_text(with_range(R"("min": 5, "max": 60, "binding": "range 10..20 if [5] == 7")"));
    auto* const range = dynamic_cast<Range_entry*>(loaded.menu->root().Get_child());
    ASSERT_NE(range, nullptr);
    EXPECT_EQ(range->Get_min(), 5);
    EXPECT_EQ(range->Get_max(), 60);
    range->Refresh(&loaded.menu->access(), true);
    EXPECT_EQ(range->Get_min(), 10);
    EXPECT_EQ(range->Get_max(), 20);
    range->Refresh(&loaded.menu->access(), true);
    EXPECT_EQ(range->Get_max(), 60);
}

// A limit would show, and write, another value than the one that the device measured.
TEST(RangeItems, AReadingShowsEveryValueOfItsParameter) {
    Simulated_menu loaded = simulated_text(with_range(
        R"("access": "read-only", "min": 5, "max": 60, "ranges": [{"min": 5, "max": 9}])"));
    EXPECT_EQ(loaded.warnings.size(), 3U);
    for (const std::string& warning : loaded.warnings) {
        EXPECT_NE(
            warning.find("ignored: the item is only shown, and shows every value of the device"),
            std::string::npos)
            << warning;
    }
    auto& range = static_cast<Range_entry&>(*loaded.menu->root().Get_child());
    loaded.device().set_integer(5, 0, 77);
    EXPECT_EQ(range.Refresh(&loaded.menu->access(), true), 0);
    EXPECT_EQ(shown_value(range), "77");
    EXPECT_TRUE(loaded.device().writes().empty());
}

TEST(RangeItems, AnItemThatARuleMakesEditableKeepsItsLimits) {
    Simulated_menu loaded =
        simulated_text(with_range(R"("access": "read-only", "min": 5, "max": 60, )"
                                  R"("binding": "access read-write if [5] < 50")"));
    EXPECT_EQ(loaded.warnings, std::vector<std::string>());
    auto& range = static_cast<Range_entry&>(*loaded.menu->root().Get_child());
    EXPECT_EQ(range.Get_min(), 5);
    EXPECT_EQ(range.Get_max(), 60);
}

TEST(RangeItems, ARangeRuleOfAReadingIsWarnedOf) {
    Simulated_menu loaded =
        simulated_text(with_range(R"("access": "read-only", "binding": "range 0..10")"));
    ASSERT_EQ(loaded.warnings.size(), 1U);
    EXPECT_NE(loaded.warnings[0].find("the item is only shown, but a value beyond the range would "
                                      "be written, and shown, as its end"),
              std::string::npos);
}

}  // namespace
}  // namespace frontpanel
