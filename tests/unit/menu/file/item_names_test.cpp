#include "file/item_names.h"

#include <map>
#include <string>

#include "unit/menu/items_fixture.h"

namespace frontpanel {
namespace {

const std::string ITEM = R"({"type": "text", "name": "Note", "pid": 6})";

std::string with_link_to(const std::string& target, const std::string& items) {
    return with_item(items + R"(, {"type": "link", "target": ")" + target + "\"}");
}

std::string submenu(const std::string& name, const std::string& items) {
    return R"({"type": "node", "name": ")" + name + R"(", "items": [)" + items + "]}";
}

TEST(ItemNames, AnItemIsNamedByItsPathOrItsId) {
    const std::string items =
        submenu("Audio", R"({"type": "text", "name": "Note: a note", "id": "note", "pid": 6})");
    for (const char* const target : {"Audio", "Audio/Note", "note"}) {
        EXPECT_EQ(error_of(with_link_to(target, items)), "") << target;
    }
    const std::map<std::string, std::string> meant = {{"Note", "note"},
                                                      {"Audio/", "Audio"},
                                                      {"/Audio/Note", "Audio/Note"},
                                                      {"audio/note", "Audio/Note"}};
    for (const auto& [target, item] : meant) {
        const std::string text = with_link_to(target, items);
        EXPECT_EQ(error_of(text),
                  placed(text, "menu.json: /menu/items/1/target: there is no item \"" + target +
                                   "\"; did you mean \"" + item + "\"?"));
    }
}

TEST(ItemNames, APathOfSeveralItemsIsAmbiguousButAnIdIsNot) {
    const std::string items =
        submenu("Audio", ITEM) + "," +
        submenu("Audio", R"({"type": "text", "name": "Note", "id": "other", "pid": 6})");
    const std::string text = with_link_to("Audio/Note", items);
    EXPECT_EQ(error_of(text),
              placed(text,
                     "menu.json: /menu/items/2/target: several items are \"Audio/Note\": give the "
                     "item an \"id\" and refer to that"));
    EXPECT_EQ(error_of(with_link_to("other", items)), "");
}

TEST(ItemNames, AnIdHasPrecedenceOverAPath) {
    const std::string items =
        ITEM + "," + R"({"type": "range", "name": "Level", "id": "Note", "pid": 5})";
    const Simulated_menu loaded = simulated_text(with_link_to("Note", items));
    ASSERT_EQ(loaded.menu->links().size(), 1U);
    EXPECT_STREQ(loaded.menu->links()[0]->Get_housed_entry()->Get_name(), "Level");
}

TEST(ItemNames, AReferenceToAWrongItemIsNoFurtherMistake) {
    const std::string text = with_link_to("Note", R"({"type": "text", "name": "Note", "pid": 99})");
    EXPECT_EQ(
        error_of(text),
        placed(text,
               "menu.json: /menu/items/0/pid: the device has no parameter 99 with this index"));
}

}  // namespace
}  // namespace frontpanel
