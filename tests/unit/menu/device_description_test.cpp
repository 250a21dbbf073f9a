#include "file/device_description.h"

#include <cstring>

#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* ITEM = R"({"type": "range", "name": "Level", "pid": 5})";

// A menu file whose device has one parameter and these further members.
std::string with_device(const std::string& members, const std::string& item = ITEM) {
    return R"({"device": {"parameters": [
        {"pid": 5, "type": "integer", "min": 0, "max": 9, "value": 7}], )" +
           members + R"(}, "menu": {"name": "Main", "items": [)" + item + "]}}";
}

std::string with_product(const std::string& members) {
    return with_device(R"("products": [{"slot": 2, )" + members + "}]");
}

std::string with_card(const std::string& members) {
    return with_device(R"("cards": [{"slot": 3, )" + members + "}]");
}

std::string deep_tree(int depth) {
    std::string tree = R"({"label": "leaf"})";
    for (int i = 1; i < depth; ++i) {
        tree = R"({"label": "n", "children": [)" + tree + "]}";
    }
    return with_card(R"("trees": [{"pid": 9002, "tree": )" + tree + "}]");
}

TEST(DeviceDescription, AnErrorNamesPlaceAndExpectation) {
    const std::string product = R"("id": 7, "name": "DEC", "family": "Decoder")";
    const Error_case CASES[] = {
        {with_device(R"("slots": [])"), "menu.json: /device/slots@: unknown member \"slots\""},
        {with_device(R"("products": {})"),
         "menu.json: /device/products: expected a list, found an object"},
        {with_device(R"("products": [{"slot": 16}])"),
         "menu.json: /device/products/0/slot: expected a whole number from 1 to 15, found 16"},
        {with_device(R"("products": [{"slot": 0}])"),
         "menu.json: /device/products/0/slot: expected a whole number from 1 to 15, found 0"},
        {with_product(R"("id": 0)"),
         "menu.json: /device/products/0/id: expected a whole number from 1 to 65535, found 0"},
        {with_product(R"("id": 7)"), "menu.json: /device/products/0: expected a member \"name\""},
        {with_product(R"("id": 7, "name": "1234567890123456")"),
         "menu.json: /device/products/0/name: expected a text of 1 to 15 characters, found 16"},
        {with_product(R"("id": 7, "name": "DEC", "family": "")"),
         "menu.json: /device/products/0/family: expected a text of 1 to 15 characters, found 0"},
        {with_product(product + R"(, "alias": 3)"),
         "menu.json: /device/products/0/alias: expected a text, found a whole number"},
        {with_product(product + R"(, "colour": 3)"),
         "menu.json: /device/products/0/colour@: unknown member \"colour\""},
        {with_product(product + R"(, "options": {"audio": -1})"),
         "menu.json: /device/products/0/options/audio: expected a whole number from 0 to "
         "2147483647, found -1"},
        {with_device(R"("products": [{"slot": 2, )" + product + R"(}, {"slot": 2, )" + product +
                     "}]"),
         "menu.json: /device/products/1/slot: slot 2 has a product already"},
        {with_device(R"("products": [{"slot": 2, "alias": "A", )" + product +
                     R"(}, {"slot": 3, "alias": "B", )" + product + "}]"),
         "menu.json: /device/products/1/alias: product 7 has another alias already"},
        {with_device(R"("products": [{"slot": 2, "alias": "A", )" + product +
                     R"(}, {"slot": 3, "alias": "A", )" + product + "}]"),
         ""},
        {with_device(R"("cards": [{}])"), "menu.json: /device/cards/0: expected a member \"slot\""},
        {with_card(R"("boxes": [])"),
         "menu.json: /device/cards/0/boxes@: unknown member \"boxes\""},
        {with_card(R"("combo-boxes": [{"pid": 8999}])"),
         "menu.json: /device/cards/0/combo-boxes/0/pid: expected a whole number from 9000 to 9100, "
         "found 8999"},
        {with_card(R"("combo-boxes": [{"pid": 9001, "options": []}])"),
         "menu.json: /device/cards/0/combo-boxes/0/options: expected at least one option"},
        {with_card(R"("combo-boxes": [{"pid": 9001, "options": ["A", ""]}])"),
         "menu.json: /device/cards/0/combo-boxes/0/options/1: expected a text of 1 to 256 "
         "characters, found 0"},
        {with_card(R"("combo-boxes": [{"pid": 9001, "options": ["A", "B"], "selected": 2}])"),
         "menu.json: /device/cards/0/combo-boxes/0/selected: expected a whole number from 0 to 1, "
         "found 2"},
        {with_card(R"("combo-boxes": [{"pid": 9001, "options": ["A"]}],
                      "trees": [{"pid": 9001, "tree": {"label": "T"}}])"),
         "menu.json: /device/cards/0/trees/0/pid: the card in slot 3 has a document 9001 already"},
        {with_card(R"("trees": [{"pid": 9002}])"),
         "menu.json: /device/cards/0/trees/0: expected a member \"tree\""},
        {with_card(R"("trees": [{"pid": 9002, "tree": []}])"),
         "menu.json: /device/cards/0/trees/0/tree: expected an object, found a list"},
        {with_card(R"("trees": [{"pid": 9002, "tree": {"label": "T", "children": [{}]}}])"),
         "menu.json: /device/cards/0/trees/0/tree/children/0: expected a member \"label\""},
        {with_card(R"("trees": [{"pid": 9002, "tree": {"label": "T", "type": "x"}}])"),
         "menu.json: /device/cards/0/trees/0/tree/type@: unknown member \"type\""},
        {deep_tree(16), ""},
    };
    for (const Error_case& expected : CASES) {
        EXPECT_EQ(error_of(expected.text), placed(expected.text, expected.error))
            << expected.text.substr(0, 300);
    }
}

TEST(DeviceDescription, ATreeThatIsTooDeepIsRefused) {
    const std::string text = deep_tree(17);
    std::string path = "/device/cards/0/trees/0/tree";
    for (int i = 1; i < 17; ++i) {
        path += "/children/0";
    }
    EXPECT_EQ(error_of(text),
              placed(text, "menu.json: " + path + ": trees are nested more than 16 deep"));
}

TEST(DeviceDescription, ProductsStandInTheirSlotsWithTheirAliases) {
    Menu_panel panel(
        with_product(R"("id": 7, "name": "DEC-4", "family": "Decoder", "alias": "Main")"));
    PROD_LIST_S list[Memory_device::SLOT_COUNT] = {};
    ASSERT_EQ(panel.device().Get_prod_list(list, false, true), 0);
    EXPECT_EQ(list[2].prod_id, 7);
    EXPECT_STREQ(list[2].prod_string, "DEC-4");
    EXPECT_STREQ(list[2].prod_family, "Decoder");
    EXPECT_EQ(list[1].prod_id, 0);
    char alias[100] = {};
    EXPECT_EQ(panel.device().Get_prod_alias_name(alias, 7), 0);
    EXPECT_STREQ(alias, "Main");
}

TEST(DeviceDescription, AProductsOptionsDecideWhichItemsAreShown) {
    const std::string items = R"(
        {"type": "range", "name": "Audio", "pid": 5, "options": ["audio"]},
        {"type": "range", "name": "Wide", "pid": 5, "options": ["wide"]})";
    const std::string product = R"("products": [
        {"slot": 2, "id": 7, "name": "DEC", "family": "Decoder", "options": {"audio": 1}},
        {"slot": 3, "id": 7, "name": "DEC", "family": "Decoder", "options": {"audio": 0, "wide": 0}}])";
    Menu_panel panel(with_device(product, items));
    EXPECT_EQ(panel.lines(), (Lines{">Audio             7", "                    "}));
}

TEST(DeviceDescription, AProductsOptionThatIsAPatternByAccidentIsWarnedOf) {
    const std::string text =
        with_product(R"("id": 7, "name": "DEC", "family": "Decoder", "options": {"unit": 1})");
    EXPECT_EQ(
        load_menu_text("menu.json", text).warnings,
        (std::vector<std::string>{placed(
            text,
            "menu.json: /device/products/0/options/unit@: warning: the letter 'n' makes this option a "
            "pattern in which 'n' stands for a number")}));
}

TEST(DeviceDescription, CardsRunOnlyWhenAskedFor) {
    const std::string text = with_card(R"("combo-boxes": [
        {"pid": 9001, "options": ["A", "B"], "selected": 1}])");
    EXPECT_EQ(load_menu_text("menu.json", text).menu->cards(), nullptr);
    const Loaded_menu loaded = load_menu_text("menu.json", text, {Cards::ON});
    ASSERT_NE(loaded.menu->cards(), nullptr);
    EXPECT_EQ(loaded.menu->cards()->selected(3, 9001), 1);
    EXPECT_EQ(
        load_menu_text("menu.json", with_device("\"products\": []"), {Cards::ON}).menu->cards(),
        nullptr);
}

}  // namespace
}  // namespace frontpanel
