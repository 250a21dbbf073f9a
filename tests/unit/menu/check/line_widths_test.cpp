#include "unit/menu/items_fixture.h"
#include "unit/menu/links_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* ROOM_20 = ": warning: a list of 20 columns has room for ";

TEST(LineWidths, ANameThatIsNotWholeBesideTheWidestValueIsWarnedOf) {
    const std::string text = with_item(
        R"({"type": "range", "name": "Fifteen letters", "pid": 5},
           {"type": "range", "name": "Sixteen letters.", "pid": 5},
           {"type": "range", "name": "Temperature", "pid": 5, "format": "%d degrees"},
           {"type": "text", "name": "Eleven char", "pid": 6},
           {"type": "node", "name": "Sixteen letter_s:x", "items": [
               {"type": "range", "name": "Level", "pid": 5}]})");
    EXPECT_EQ(simulated_text(text, 20).warnings,
              (Lines{placed(text, std::string("menu.json: /menu/items/1/name") + ROOM_20 +
                                      "\"Sixteen letters\" of this name beside the value \"100\""),
                     placed(text, std::string("menu.json: /menu/items/2/name") + ROOM_20 +
                                      "\"Tempera\" of this name beside the value \"100 degrees\""),
                     placed(text, std::string("menu.json: /menu/items/3/name") + ROOM_20 +
                                      "\"Eleven cha\" of this name"),
                     placed(text, std::string("menu.json: /menu/items/4/name") + ROOM_20 +
                                      "\"Sixteen letter_\" of this name")}));
    EXPECT_TRUE(simulated_text(text, 40).warnings.empty());
}

TEST(LineWidths, ALinkWhoseNameIsLostIsWarnedOf) {
    const std::string text = with_items(R"({"type": "node", "name": "Audio processing", "items": [
                       {"type": "range", "name": "Gain of 1", "parameter": "gain 1"}]},
                      {"type": "link", "target": "Audio processing/Gain of 1"})");
    EXPECT_EQ(simulated_text(text, 40).warnings,
              (Lines{placed(text,
                            "menu.json: /menu/items/1/target: warning: this link is named \"Audio "
                            "processing.(null)\": with those of the menus around it, the name of "
                            "its target is too long")}));
}

TEST(LineWidths, AValueThatHasNoRoomAtOnceIsWarnedOf) {
    const std::string text = with_item(
        R"({"type": "range", "name": "F", "pid": 5, "format": "%d degrees warmer now"},
           {"type": "range", "name": "G", "pid": 5, "format": "0:off,1:as the reference is,%d"},
           {"type": "range", "name": "H", "pid": 5, "format": "%d degrees warm"})");
    EXPECT_EQ(
        simulated_text(text, 20).warnings,
        (Lines{placed(text,
                      "menu.json: /menu/items/0/format: warning: a list and an editor of 20 "
                      "columns have no room for this value at once: \"100 degrees warmer now\""),
               placed(text,
                      "menu.json: /menu/items/1/format: warning: a list of 20 columns has no "
                      "room for this value at once: \"as the reference is\"")}));
}

TEST(LineWidths, AChoiceThatHasNoRoomAtOnceIsWarnedOfThoughTheProductHidesIt) {
    const std::string text =
        menu_text(R"({"pid": 5, "type": "integer", "min": 0, "max": 1, "value": 0})",
                  R"({"type": "enum", "name": "F", "pid": 5, "choices": ["off",
            {"text": "as the reference is", "options": ["gps"]}]})",
                  R"({"gps": 0})");
    EXPECT_EQ(
        simulated_text(text, 20).warnings,
        (Lines{placed(text,
                      "menu.json: /menu/items/0/choices: warning: a list of 20 columns has no "
                      "room for this value at once: \"as the reference is\"")}));
}

TEST(LineWidths, AnItemThatIsRepeatedIsWarnedOfOnce) {
    const std::string text = with_item(
        R"({"type": "range", "name": "F{n}", "pid": 5, "format": "%d degrees warmer now",
            "repeat": {"counter": "n", "from": 1, "to": 5}})");
    EXPECT_EQ(simulated_text(text, 20).warnings.size(), 1U);
}

}  // namespace
}  // namespace frontpanel
