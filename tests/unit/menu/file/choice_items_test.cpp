#include "unit/menu/kinds_fixture.h"

namespace frontpanel {
namespace {

TEST(ChoiceItems, AChoiceWithoutProductOptionsStaysBesideThoseThatHaveSome) {
    const std::string text = with_item_of("enum", R"("pid": 5,
        "choices": ["Off", {"text": "Modem", "options": ["modem"]},
                    {"text": "GPS", "options": ["gps"]}])");
    Simulated_menu loaded = simulated_text(text);
    auto* const entry = dynamic_cast<Enum_entry*>(loaded.menu->root().Get_child());
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->optionControls(), (ControlsT{0, 2}));
    EXPECT_TRUE(loaded.warnings.empty());
}

}  // namespace
}  // namespace frontpanel
