#include <frontpanel_menu/shown_value.h>

#include <frontpanel_menu/entry_access.h>

#include "unit/menu/items_fixture.h"

namespace frontpanel {
namespace {

class Shown_value_test : public testing::Test {
protected:
    Data_entry& item(int number) {
        Data_entry* entry = neighbour(m_loaded.menu->root(), Data_entry::OPERATION_CHILD);
        for (int i = 0; i < number; ++i) {
            entry = neighbour(*entry, Data_entry::OPERATION_NEXT);
        }
        return *entry;
    }
    Data_entry& refreshed(int number) {
        refresh(item(number), m_loaded.menu->access());
        return item(number);
    }

    Simulated_menu m_loaded = simulated_text(with_item(
        R"({"type": "range", "name": "Level", "pid": 5, "format": "%d dB of a very long line"},
           {"type": "text", "name": "Note", "pid": 6, "access": "read-only"},
           {"type": "node", "name": "More", "items": [
               {"type": "range", "name": "Again", "pid": 5, "binding": "access read-only if [5] > 50"}]},
           {"type": "link", "target": "Note"})"));
};

TEST_F(Shown_value_test, AValueIsWhole) {
    EXPECT_EQ(shown_value(refreshed(0)), "7 dB of a very long line");
    EXPECT_EQ(shown_value(refreshed(1)), "abc");
}

TEST_F(Shown_value_test, ALinkShowsWhatItHouses) {
    EXPECT_EQ(shown_value(refreshed(3)), "abc");
}

TEST_F(Shown_value_test, AMenuHasNoValue) {
    EXPECT_EQ(shown_value(refreshed(2)), "");
}

TEST_F(Shown_value_test, AMenuFileOrARuleMakesAValueReadOnly) {
    EXPECT_FALSE(is_read_only(refreshed(0)));
    EXPECT_TRUE(is_read_only(refreshed(1)));
    EXPECT_TRUE(is_read_only(refreshed(3)));
    Data_entry& again = *item(2).Get_child();
    refresh(again, m_loaded.menu->access());
    EXPECT_FALSE(is_read_only(again));
    m_loaded.device().set_integer(5, 0, 51);
    refresh(again, m_loaded.menu->access());
    EXPECT_TRUE(is_read_only(again));
}

}  // namespace
}  // namespace frontpanel
