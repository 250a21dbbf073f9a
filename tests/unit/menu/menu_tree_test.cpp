#include "menu_tree.h"

#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

TEST(Menu_tree, APathOfSeveralEntriesIsNone) {
    Simulated_menu loaded = simulated_text(
        menu_text(R"({"pid": 100, "type": "integer", "min": 0, "max": 9, "value": 3})",
                  R"({"type": "range", "name": "Gain", "pid": 100},
                                  {"type": "range", "name": "Gain", "pid": 100, "id": "two"})"));
    EXPECT_EQ(find_entry(*loaded.menu, "two").entry, loaded.menu->root().Get_child()->Get_next());
    try {
        find_entry(*loaded.menu, "Gain");
        FAIL();
    } catch (const Input_error& error) {
        EXPECT_STREQ(error.what(), "several entries are \"Gain\": name it by its id");
    }
}

}  // namespace
}  // namespace frontpanel
