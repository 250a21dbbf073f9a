#include "unit/menu/items_fixture.h"
#include "unit/menu/links_fixture.h"

namespace frontpanel {
namespace {

TEST(NameWidths, ANameThatTheDisplayHasNoRoomForIsWarnedOf) {
    const std::string text = with_item(
        R"({"type": "range", "name": "Temperature", "pid": 5},
           {"type": "node", "name": "Sixteen letters:x", "items": [
               {"type": "range", "name": "Ten lettrs", "pid": 5}]},
           {"type": "node", "name": "Sixteen letters.:x", "items": [
               {"type": "range", "name": "Level", "pid": 5}]})");
    EXPECT_EQ(simulated_text(text, 20).warnings,
              (Lines{placed(text,
                            "menu.json: /menu/items/0/name: warning: a display of 20 columns "
                            "shows this name as \"Temperatur\""),
                     placed(text,
                            "menu.json: /menu/items/2/name: warning: a display of 20 columns "
                            "shows this name as \"Sixteen letters\"")}));
    EXPECT_TRUE(simulated_text(text, 40).warnings.empty());
}

TEST(NameWidths, ALinkWhoseNameIsLostIsWarnedOf) {
    const std::string text = with_items(R"({"type": "node", "name": "Audio processing", "items": [
                       {"type": "range", "name": "Gain of 1", "parameter": "gain 1"}]},
                      {"type": "link", "target": "Audio processing/Gain of 1"})");
    EXPECT_EQ(simulated_text(text, 40).warnings,
              (Lines{placed(text,
                            "menu.json: /menu/items/1/target: warning: this link is named \"Audio "
                            "processing.(null)\": with those of the menus around it, the name of "
                            "its target is too long")}));
}

}  // namespace
}  // namespace frontpanel
