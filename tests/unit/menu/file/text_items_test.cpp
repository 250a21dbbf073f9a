#include "unit/menu/kinds_fixture.h"

namespace frontpanel {
namespace {

TEST(TextItems, ATextIsAsLongAsItsParameter) {
    Simulated_menu loaded = simulated_text(with_item_of("text", R"("pid": 20)"));
    auto* const text = dynamic_cast<String_entry*>(loaded.menu->root().Get_child());
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->Get_max_length(), 8U);
}

}  // namespace
}  // namespace frontpanel
