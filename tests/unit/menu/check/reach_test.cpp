#include "unit/menu/items_fixture.h"

namespace frontpanel {
namespace {

TEST(Reach, ItemsThatNoWayLeadsToAreWarnedOf) {
    const std::string text = with_item(
        R"({"type": "range", "name": "Spare", "pid": 5, "visible": false},
           {"type": "range", "name": "Button", "pid": 5, "visible": false, "shortcut": 3},
           {"type": "range", "name": "Modem", "pid": 5, "options": ["modem", "fax"]},
           {"type": "node", "name": "Lost", "items": [
               {"type": "node", "name": "Deeper", "items": [
                   {"type": "range", "name": "Level", "pid": 5, "visible": false}]}]},
           {"type": "node", "name": "Store", "visible": false, "items": [
               {"type": "range", "name": "Level", "pid": 5}]},
           {"type": "node", "name": "Shut", "visible": false, "items": [
               {"type": "range", "name": "Level", "pid": 5}]},
           {"type": "link", "target": "Store/Level"}, {"type": "link", "target": "Spare"})");
    const auto warning = [&text](const std::string& path, const std::string& message) {
        return placed(text, "menu.json: /menu/items/" + path + ": warning: " + message);
    };
    const char* const EMPTY = "this menu is never shown, since none of its items is";
    EXPECT_EQ(
        simulated_text(text).warnings,
        (Lines{warning("1/shortcut", "this button leads to an item that is never shown"),
               warning("2/options/0", "no product option \"modem\" is declared"),
               warning("2/options/1", "no product option \"fax\" is declared"), warning("3", EMPTY),
               warning("3/items/0", EMPTY),
               warning("5", "this menu is never shown, and no link leads into it"),
               warning("7/target", "this item is never shown, and neither is a link to it")}));
}

}  // namespace
}  // namespace frontpanel
