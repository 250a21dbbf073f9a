#include "unit/menu/items_fixture.h"

namespace frontpanel {
namespace {

const std::string ITEM = R"({"type": "text", "name": "Note", "pid": 6})";

std::string items(int count) {
    std::string list;
    for (int i = 0; i < count; ++i) {
        list += (i == 0 ? "" : ",") + ITEM;
    }
    return list;
}

// Menus in each other, the top menu included.
std::string menus(int depth) {
    std::string item = ITEM;
    for (int i = 1; i < depth; ++i) {
        item = R"({"type": "node", "name": "N", "items": [)" + item + "]}";
    }
    return with_item(item);
}

TEST(NodeItems, AMenuHasOneToAThousandItems) {
    EXPECT_EQ(error_of(with_item(items(1000))), "");
    for (const int count : {0, 1001}) {
        const std::string text = with_item(items(count));
        EXPECT_EQ(error_of(text),
                  placed(text, "menu.json: /menu/items: expected 1 to 1000 items, found " +
                                   std::to_string(count)));
    }
}

TEST(NodeItems, SixteenMenusAreNested) {
    EXPECT_EQ(error_of(menus(16)), "");
    EXPECT_NE(error_of(menus(17)).find("menus are nested more than 16 deep"), std::string::npos);
}

TEST(NodeItems, ASubmenuHoldsItsItemsInTheirOrder) {
    Simulated_menu loaded =
        simulated_text(with_item(R"({"type": "node", "name": "Audio", "items": [)" + ITEM +
                                 R"(, {"type": "range", "name": "Level", "pid": 5}]})"));
    Data_entry* const menu = loaded.menu->root().Get_child();
    ASSERT_NE(menu, nullptr);
    ASSERT_NE(menu->Get_child(), nullptr);
    EXPECT_STREQ(menu->Get_child()->Get_name(), "Note");
    ASSERT_NE(menu->Get_child()->Get_next(), nullptr);
    EXPECT_STREQ(menu->Get_child()->Get_next()->Get_name(), "Level");
    EXPECT_EQ(menu->Get_child()->Get_next()->Get_next(), nullptr);
}

TEST(NodeItems, MistakesOfSeveralItemsAreReportedAtOnce) {
    const std::string text = with_item(
        R"({"type": "node", "name": "Audio", "items": [3]}, {"type": "node", "name": "Video"})");
    EXPECT_EQ(error_of(text),
              placed(text,
                     "menu.json: /menu/items/0/items/0: expected an object, found a whole number\n"
                     "menu.json: /menu/items/1: expected a member \"items\""));
}

}  // namespace
}  // namespace frontpanel
