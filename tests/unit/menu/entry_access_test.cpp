#include <frontpanel_menu/entry_access.h>

#include "unit/menu/items_fixture.h"

namespace frontpanel {
namespace {

class Entry_access_test : public testing::Test {
protected:
    Data_entry& item(int number) { return top_item(*m_loaded.menu, number); }
    Caching_device& device() { return m_loaded.menu->access(); }

    Simulated_menu m_loaded = simulated_text(with_item(
        R"({"type": "node", "name": "Audio", "items": [
                {"type": "range", "name": "Level", "pid": 5, "format": "%d dB"}]},
            {"type": "text", "name": "Note", "pid": 6},
            {"type": "link", "target": "Audio/Level"}, {"type": "link", "target": "Audio"})"));
    Data_entry& m_level = *item(0).Get_child();
};

TEST_F(Entry_access_test, LinksAndSubmenusAreRecognised) {
    const struct {
        int item;
        bool is_link, is_submenu, is_menu;
    } cases[] = {{0, false, true, true},
                 {1, false, false, false},
                 {2, true, false, false},
                 {3, true, false, true}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.item);
        EXPECT_EQ(is_link(item(each.item)), each.is_link);
        EXPECT_EQ(is_submenu(item(each.item)), each.is_submenu);
        EXPECT_EQ(is_menu(item(each.item)), each.is_menu);
    }
}

TEST_F(Entry_access_test, ALinkHousesItsTargetAndAnyOtherEntryItself) {
    EXPECT_EQ(&housed(item(2)), &m_level);
    EXPECT_EQ(&housed(m_level), &m_level);
    EXPECT_NE(link_of(item(2)), nullptr);
    EXPECT_EQ(link_of(m_level), nullptr);
}

TEST_F(Entry_access_test, ACommitWritesTheValue) {
    refresh(m_level, device());
    int value = 42;
    ASSERT_EQ(m_level.Set_value(&value, sizeof value), 0);
    EXPECT_EQ(commit(m_level, device()), 0);
    EXPECT_EQ(m_loaded.device().integer(5, 0), 42);
    m_loaded.device().set_fault([](const Memory_device::Operation&) { return 100; });
    EXPECT_NE(commit(m_level, device()), 0);
}

TEST_F(Entry_access_test, TheMenuAroundAnEntryIsItsOwnEvenBehindALink) {
    EXPECT_EQ(menu_of(m_level), &item(0));
    EXPECT_EQ(menu_of(item(2)), &m_loaded.menu->root());
    EXPECT_EQ(menu_of(m_loaded.menu->root()), nullptr);
}

TEST(EntryAccess, LiveParametersHaveTheirRangeOfIds) {
    EXPECT_FALSE(is_live_pid(8999));
    EXPECT_TRUE(is_live_pid(9000));
    EXPECT_TRUE(is_live_pid(9100));
    EXPECT_FALSE(is_live_pid(9101));
}

}  // namespace
}  // namespace frontpanel
