#include <frontpanel_menu/list_line.h>

#include "unit/menu/kinds_fixture.h"

namespace frontpanel {
namespace {

TEST(ListLine, ANameLeavesRoomForAValueOrTheMarkOfAMenu) {
    Simulated_menu loaded = simulated_text(with_item_of("range", R"("pid": 5)"));
    EXPECT_EQ(name_columns(*loaded.menu->root().Get_child(), 20), 10);
    EXPECT_EQ(name_columns(loaded.menu->root(), 20), 15);
}

}  // namespace
}  // namespace frontpanel
