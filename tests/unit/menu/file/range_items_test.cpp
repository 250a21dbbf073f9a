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

}  // namespace
}  // namespace frontpanel
