#include "file/item_builder.h"

#include "unit/menu/kinds_fixture.h"

namespace frontpanel {
namespace {

TEST(ItemBuilder, AnErrorNamesPlaceAndExpectation) {
    const Error_case CASES[] = {
        {with_item_of("text", ""), "menu.json: /menu/items/0: expected a member \"pid\""},
        {with_item_of("text", R"("pid": 20)"), ""},
        {with_item_of("text", R"("pid": 5)"),
         "menu.json: /menu/items/0/pid: parameter 5 is of another type"},
        {with_item_of("text", R"("pid": 99)"),
         "menu.json: /menu/items/0/pid: the device has no parameter 99 with this index"},
        {with_item_of("text", R"("pid": 65549)"),
         "menu.json: /menu/items/0/pid: parameter 65549 is shown by items of type \"warning\""},
        {with_item_of("text", R"("pid": 20, "format": "%d")"),
         "menu.json: /menu/items/0/format@: unknown member \"format\""},
        {with_item_of("text", R"("pid": 20, "access": "none")"),
         "menu.json: /menu/items/0/access: expected one of \"read-only\", \"read-write\", \"write-only\", found \"none\""},
        {with_item_of("address", R"("pid": 21)"), ""},
        {with_item_of("address", R"("pid": 20)"),
         "menu.json: /menu/items/0/pid: expected a parameter of at least 15 characters for an address"},
        {with_item_of("address", R"("pid": 5)"),
         "menu.json: /menu/items/0/pid: parameter 5 is of another type"},
        {with_item_of("time", R"("pid": 20)"), ""},
        {with_item_of("time", R"("pid": 5)"),
         "menu.json: /menu/items/0/pid: parameter 5 is of another type"},
        {with_item_of("warning", ""), ""},
        {with_item_of("warning", R"("pid": 65549)"),
         "menu.json: /menu/items/0/pid@: unknown member \"pid\""},
        {with_item_of("warning", R"("index": [1])"),
         "menu.json: /menu/items/0: the device has no parameter 65549 with this index"},
        {with_item_of("enum", R"("pid": 5, "choices": ["A", "B", "C"])"), ""},
        {with_item_of("enum", R"("pid": 5)"),
         "menu.json: /menu/items/0: expected a member \"choices\""},
        {with_item_of("enum", R"("pid": 20, "choices": ["A"])"),
         "menu.json: /menu/items/0/pid: parameter 20 is of another type"},
        {with_item_of("enum", R"("pid": 5, "choices": "A")"),
         "menu.json: /menu/items/0/choices: expected a list, found a text"},
        {with_item_of("enum", R"("pid": 5, "choices": [])"),
         "menu.json: /menu/items/0/choices: expected a choice for each value of the parameter, 0 to "
         "2, counted from 0, found 0"},
        {with_item_of("enum", R"("pid": 5, "choices": ["A", "B"])"),
         "menu.json: /menu/items/0/choices: expected a choice for each value of the parameter, 0 to "
         "2, counted from 0, found 2"},
        {with_item_of("enum", R"("pid": 6, "choices": ["A", "B", "C"])"),
         "menu.json: /menu/items/0/choices: expected a choice for each value of the parameter, 1 to "
         "2, counted from 0, found 3"},
        {with_item_of("enum", R"("pid": 5, "choices": ["A", 3, "C"])"),
         "menu.json: /menu/items/0/choices/1: expected an object, found a whole number"},
        {with_item_of("enum", R"("pid": 5, "choices": ["A", "", "C"])"),
         "menu.json: /menu/items/0/choices/1: expected a text of 1 to 256 characters, found 0"},
        {with_item_of("enum", R"("pid": 5, "choices": ["A", {"text": "B"}, "C"])"),
         "menu.json: /menu/items/0/choices/1: expected a member \"options\""},
        {with_item_of("enum", R"("pid": 5, "choices": ["A", {"text": "B", "option": []}, "C"])"),
         "menu.json: /menu/items/0/choices/1: expected a member \"options\"\n"
         "menu.json: /menu/items/0/choices/1/option@: unknown member \"option\"; did you mean \"options\"?"},
        {with_item_of("enum", R"("pid": 5, "choices": ["A", {"text": "B", "options": [""]}, "C"])"),
         "menu.json: /menu/items/0/choices/1/options/0: expected a text of 1 to 256 characters, "
         "found 0"},
        {with_item_of("enum", R"("pid": 5, "choices": [{"text": "A", "options": ["modem"]},
             {"text": "B", "options": ["modem"]}, {"text": "C", "options": ["absent"]}])"),
         "menu.json: /menu/items/0/choices: expected at least one choice that is allowed with these "
         "product options"},
        {with_item_of("enum", R"("pid": 9001, "choices": ["A", "B"])"),
         "menu.json: /menu/items/0/pid: parameters 9000 to 9100 require \"live\""},
        {with_item_of("enum", R"("pid": 9001, "live": {"slot": 3, "web-type": "combobox"})"), ""},
        {with_item_of("enum", R"("pid": 9002, "live": {"slot": 3, "web-type": "tree"})"), ""},
        {with_item_of("enum", R"("pid": 5, "live": {"slot": 3, "web-type": "tree"})"),
         "menu.json: /menu/items/0/pid: expected a whole number from 9000 to 9100, found 5"},
        {with_item_of("enum", R"("pid": 9001, "choices": [], "live": {"slot": 3})"),
         "menu.json: /menu/items/0/choices: the choices of an item with \"live\" come from its card\n"
         "menu.json: /menu/items/0/live: expected a member \"web-type\""},
        {with_item_of("enum", R"("pid": 9001, "live": {"slot": 16})"),
         "menu.json: /menu/items/0/live/slot: expected a whole number from 1 to 15, found 16"},
        {with_item_of("enum", R"("pid": 9001, "live": {"slot": 3})"),
         "menu.json: /menu/items/0/live: expected a member \"web-type\""},
        {with_item_of("enum", R"("pid": 9001, "live": {"slot": 3, "web-type": "list"})"),
         "menu.json: /menu/items/0/live/web-type: expected \"combobox\" or \"tree\", found \"list\""},
        {with_item_of("enum", R"("pid": 9001, "live": {"slot": 3, "web-type": "tree"})"),
         "menu.json: /menu/items/0/live: no card in slot 3 has a tree 9001"},
        {with_item_of("enum", R"("pid": 9003, "live": {"slot": 3, "web-type": "combobox"})"),
         "menu.json: /menu/items/0/live: no card in slot 3 has a combobox 9003"},
        {with_item_of("enum", R"("pid": 9001, "live": {"slot": 3, "webtype": "tree"})"),
         "menu.json: /menu/items/0/live: expected a member \"web-type\"\n"
         "menu.json: /menu/items/0/live/webtype@: unknown member \"webtype\"; did you mean \"web-type\"?"},
        {with_item_of("slot", R"("pid": 7)"), ""},
        {with_item_of("slot", R"("pid": 8)"),
         "menu.json: /menu/items/0/pid: expected a parameter from 0 to at most 14 for a slot list"},
        {with_item_of("slot", R"("pid": 6)"),
         "menu.json: /menu/items/0/pid: expected a parameter from 0 to at most 14 for a slot list"},
        {with_item_of("slot", R"("pid": 20)"),
         "menu.json: /menu/items/0/pid: parameter 20 is of another type"},
        {with_item_of("slot", R"("pid": 7, "binding": "visible if [5] == 1")"),
         "menu.json: /menu/items/0/binding: a slot list takes no rules: give them to its node"},
        {with_item_of("slot", R"("pid": 7, "slots": 3)"),
         "menu.json: /menu/items/0/slots@: unknown member \"slots\""},
    };
    for (const Error_case& expected : CASES) {
        EXPECT_EQ(error_of(expected.text), placed(expected.text, expected.error))
            << expected.text.substr(expected.text.find("\"menu\""));
    }
}

struct Type_case {
    const char* type;
    const char* members;
    Data_entry::Entry_type built;
    unsigned int pid;
    Data_entry::Data_access access;
};

TEST(ItemBuilder, EveryTypeBuildsItsEntry) {
    const Type_case CASES[] = {
        {"text", R"("pid": 20)", Data_entry::STRING_LEAF, 20, Data_entry::READ_WRITE},
        {"text", R"("pid": 20, "access": "read-only")", Data_entry::STRING_LEAF, 20,
         Data_entry::READ_ONLY},
        {"address", R"("pid": 21)", Data_entry::IP_LEAF, 21, Data_entry::READ_WRITE},
        {"time", R"("pid": 20)", Data_entry::TIME_LEAF, 20, Data_entry::READ_WRITE},
        {"warning", "", Data_entry::STRING_LEAF, 65549, Data_entry::READ_ONLY},
        {"enum", R"("pid": 5, "choices": ["A", "B", "C"])", Data_entry::ENUM_LEAF, 5,
         Data_entry::READ_WRITE},
        {"enum", R"("pid": 9001, "live": {"slot": 3, "web-type": "combobox"})",
         Data_entry::ENUM_LEAF, 9001, Data_entry::READ_WRITE},
        {"slot", R"("pid": 7)", Data_entry::SLOT_ENUM, 7, Data_entry::READ_WRITE},
    };
    for (const Type_case& expected : CASES) {
        Simulated_menu loaded = simulated_text(with_item_of(expected.type, expected.members));
        const Data_entry* const entry = loaded.menu->root().Get_child();
        ASSERT_NE(entry, nullptr) << expected.type;
        EXPECT_EQ(entry->Get_entry_type(), expected.built) << expected.type;
        EXPECT_EQ(entry->Get_pid(), expected.pid) << expected.type;
        EXPECT_EQ(entry->Get_access_type(), expected.access) << expected.type;
        EXPECT_STREQ(entry->Get_name(), "Item") << expected.type;
    }
}

TEST(ItemBuilder, BindingsShowAndHideEveryType) {
    for (const char* const item :
         {R"({"type": "text", "name": "T", "pid": 20, "binding": "visible if [5] == 2"})",
          R"({"type": "warning", "name": "T", "binding": "visible if [5] == 2"})",
          R"({"type": "enum", "name": "T", "pid": 5, "choices": ["a", "b", "c"],
              "binding": "visible if [7] == 9"})"}) {
        Menu_panel panel(menu_text(PARAMETERS, item));
        EXPECT_EQ(panel.lines()[0], " (empty)            ") << item;
        panel.device().set_integer(5, 0, 2);
        panel.device().set_integer(7, 0, 9);
        panel.controller().tick();
        EXPECT_EQ(panel.lines()[0].substr(0, 2), ">T") << item;
    }
}

}  // namespace
}  // namespace frontpanel
