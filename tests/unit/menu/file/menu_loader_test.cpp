#include <frontpanel_menu/menu_loader.h>

#include "unit/menu/items_fixture.h"

namespace frontpanel {
namespace {

std::string with_parameter(const std::string& parameter) {
    return menu_text(parameter, R"({"type": "range", "name": "Level", "pid": 5})");
}

std::string nested(int depth) {
    std::string item = R"({"type": "range", "name": "Level", "pid": 5})";
    for (int i = 0; i < depth; ++i) {
        item = R"({"type": "node", "name": "N", "items": [)" + item + "]}";
    }
    return item;
}

std::string items_in_one_menu(int count) {
    std::string items;
    for (int i = 0; i < count; ++i) {
        items += std::string(i == 0 ? "" : ",") + R"({"type": "range", "name": "L", "pid": 5})";
    }
    return items;
}

TEST(MenuLoader, AnErrorNamesFilePlaceAndExpectation) {
    const std::string repeated_pid = std::string(LEVEL) + "," + LEVEL;
    const Error_case CASES[] = {
        {"", "menu.json:1:1: The document is empty."},
        {"{\"menu\": {},\n  \"device\" 3}",
         "menu.json:2:12: Missing a colon after a name of object member."},
        {"{} {}", "menu.json:1:4: The document root must not be followed by other values."},
        {"{\"menu\": \"\xff", "menu.json:1:12: Missing a closing quotation mark in string."},
        {std::string(100000, '['), "menu.json:1:101: values are nested more than 100 deep"},
        {"[]", "menu.json: /: expected an object, found a list"},
        {"{}",
         "menu.json: /: expected a member \"device\"\nmenu.json: /: expected a member \"menu\""},
        {R"({"device": {"parameters": []}})", "menu.json: /: expected a member \"menu\""},
        {R"({"menus": {}, "device": {"parameters": []}})",
         "menu.json: /: expected a member \"menu\"\nmenu.json: /menus@: unknown member \"menus\"; did you mean \"menu\"?"},
        {R"({"a\n\u001b[0mb": {}, "device": {"parameters": []}, "menu": 1})",
         "menu.json:1:2: unknown member \"a??[0mb\"\n"
         "menu.json: /menu: expected an object, found a whole number"},
        {R"({"menu": 1, "menu": {}, "device": {"parameters": []}})",
         "menu.json: /menu: expected an object, found a whole number\n"
         "menu.json:1:13: duplicate member \"menu\""},
        {menu_text(LEVEL, nested(0), "[]"),
         "menu.json: /options: expected an object, found a list"},
        {menu_text(LEVEL, nested(0), R"({"dolby": -1})"),
         "menu.json: /options/dolby: expected a whole number from 0 to 2147483647, found -1"},
        {menu_text(LEVEL, nested(0), R"({"": 1})"),
         "menu.json:1:14: expected an option name of 1 to 63 printable ASCII characters"},
        {menu_text(LEVEL, nested(0), R"({"a\u0000b": 1, "a": 2})"),
         "menu.json:1:14: expected an option name of 1 to 63 printable ASCII characters"},
        {R"({"device": {"parameters": {}}})",
         "menu.json: /: expected a member \"menu\"\n"
         "menu.json: /device/parameters: expected a list, found an object"},
        {R"({"device": {"parameter": []}})",
         "menu.json: /: expected a member \"menu\"\n"
         "menu.json: /device: expected a member \"parameters\"\n"
         "menu.json: /device/parameter@: unknown member \"parameter\"; did you mean \"parameters\"?"},
        {with_parameter(R"({"type": "integer"})"),
         "menu.json: /device/parameters/0: expected a member \"pid\""},
        {with_parameter(R"({"pid": 4294967295})"),
         "menu.json: /device/parameters/0/pid: expected a whole number from 0 to 4294967294, "
         "found 4294967295"},
        {with_parameter(R"({"pid": 5, "type": "real"})"),
         "menu.json: /device/parameters/0/type: expected \"integer\" or \"text\", found \"real\""},
        {with_parameter(R"({"pid": 5, "type": "integer", "min": 3, "max": 2, "value": 2})"),
         "menu.json: /device/parameters/0/max: expected a whole number from 3 to 2147483647, found 2\n"
         "menu.json: /device/parameters/0/value: expected a whole number from 3 to 2147483647, found 2"},
        {with_parameter(R"({"pid": 5, "type": "integer", "min": 0, "max": 2, "value": 2.5})"),
         "menu.json: /device/parameters/0/value: expected a whole number from 0 to 2, found 2.5"},
        {with_parameter(R"({"pid": 5, "type": "text", "length": 257, "value": ""})"),
         "menu.json: /device/parameters/0/length: expected a whole number from 1 to 256, found 257"},
        {with_parameter(R"({"pid": 5, "type": "text", "length": 2, "value": "abc"})"),
         "menu.json: /device/parameters/0/value: expected a text of 0 to 2 characters, found 3"},
        {with_parameter(R"({"pid": 5, "type": "text", "min": 2, "length": 2, "value": ""})"),
         "menu.json: /device/parameters/0/min@: unknown member \"min\""},
        {with_parameter(R"({"pid": 5, "index": [1, 2, 3], "type": "integer"})"),
         "menu.json: /device/parameters/0/index: expected at most 2 levels, found 3"},
        {with_parameter(R"({"pid": 5, "index": [1, 256], "type": "integer"})"),
         "menu.json: /device/parameters/0/index/1: expected a whole number from 0 to 255, found 256"},
        {with_parameter(repeated_pid),
         "menu.json: /device/parameters/1: parameter 5 with this index is declared twice"},
        {menu_text(LEVEL, ""), "menu.json: /menu/items: expected 1 to 1000 items, found 0"},
        {menu_text(LEVEL, "7"),
         "menu.json: /menu/items/0: expected an object, found a whole number"},
        {with_item("{}"), "menu.json: /menu/items/0: expected a member \"type\""},
        {with_item(R"({"type": "knob"})"),
         "menu.json: /menu/items/0/type: expected one of \"node\", \"range\", \"text\", "
         "\"address\", \"time\", \"enum\", \"slot\", \"warning\", \"link\", \"bridge\", \"mount\", found \"knob\""},
        {with_item(R"({"type": 3})"),
         "menu.json: /menu/items/0/type: expected a text, found a whole number"},
        {with_item(R"({"type": "range", "pid": 5})"),
         "menu.json: /menu/items/0: expected a member \"name\""},
        {with_item(R"({"type": "range", "name": "", "pid": 5})"),
         "menu.json: /menu/items/0/name: expected a name of 1 to 24 characters before any ':', found 0"},
        {with_item(R"({"type": "range", "name": "1234567890123456789012345", "pid": 5})"),
         "menu.json: /menu/items/0/name: expected a name of 1 to 24 characters before any ':', found 25"},
        {with_item(R"({"type": "range", "name": "a\u0000b", "pid": 5})"),
         "menu.json: /menu/items/0/name: expected printable characters in UTF-8"},
        {with_item(R"({"type": "range", "name": "a\u0085b", "pid": 5})"),
         "menu.json: /menu/items/0/name: expected printable characters in UTF-8"},
        {with_item("{\"type\": \"range\", \"name\": \"a\xFF\", \"pid\": 5}"),
         "menu.json: /menu/items/0/name: expected printable characters in UTF-8"},
        {with_item(R"({"type": "range", "name": "\u00e4234567890123456789012\u00e4", "pid": 5})"),
         "menu.json: /menu/items/0/name: expected a name of 1 to 24 characters before any ':', found 25 bytes of "
         "UTF-8"},
        {with_item(R"({"type": "range", "name": "Level"})"),
         "menu.json: /menu/items/0: expected a member \"pid\""},
        {with_item(R"({"type": "range", "name": "Level", "pid": 9})"),
         "menu.json: /menu/items/0/pid: the device has no parameter 9 with this index"},
        {with_item(R"({"type": "range", "name": "Level", "pid": 5, "index": [1]})"),
         "menu.json: /menu/items/0/pid: the device has no parameter 5 with this index"},
        {with_item(R"({"type": "range", "name": "Level", "pid": 6})"),
         "menu.json: /menu/items/0/pid: parameter 6 is of another type"},
        {with_item(R"({"type": "node", "name": "N", "pid": 5, "items": 1})"),
         "menu.json: /menu/items/0/pid@: unknown member \"pid\"\n"
         "menu.json: /menu/items/0/items: expected a list, found a whole number"},
        {with_item(nested(17)),
         "menu.json: /menu/items/0/items/0/items/0/items/0/items/0/items/0/items/0/items/0/items/0"
         "/items/0/items/0/items/0/items/0/items/0/items/0/items/0/items: "
         "menus are nested more than 16 deep"},
        {with_range(R"("max": "x")"),
         "menu.json: /menu/items/0/max: expected a whole number from 0 to 2147483646, found a text"},
        {with_range(R"("min": 10, "max": 9)"),
         "menu.json: /menu/items/0/max: expected a whole number from 10 to 2147483646, found 9"},
        {with_range(R"("min": 101)"),
         "menu.json: /menu/items/0: no number lies between \"min\" and \"max\""},
        {with_range(R"("default": 101)"),
         "menu.json: /menu/items/0/default: expected a whole number from 0 to 100, found 101"},
        {with_range(R"("format": "0:Off,dB")"), ""},
        {with_range(R"("format": "at 1:2,dB")"),
         "menu.json: /menu/items/0/format: table row \"at 1:2\" does not begin with a whole number"},
        {with_range(R"("format": "0:Off,1,%d")"),
         "menu.json: /menu/items/0/format: table row \"1\" has no ':'"},
        {with_range(R"("format": "%d of %d")"),
         "menu.json: /menu/items/0/format: more than one conversion in \"%d of %d\""},
        {with_range(R"("format": "%s")"),
         "menu.json: /menu/items/0/format: conversion \"%s\" is not one of %d, %02x, %02X, %f, %e, %g"},
        {with_range(R"("value_format": "v/")"),
         "menu.json:1:265: not an expression in v: Unexpected end"},
        {with_range(R"-("value_format": "(v")-"),
         "menu.json:1:265: not an expression in v: Missing ')'"},
        {with_range(R"-("value_format": "1/(v-100)")-"), ""},
        {with_range(R"("access": "write")"),
         "menu.json: /menu/items/0/access: expected one of \"read-only\", \"read-write\", \"write-only\", found \"write\""},
        {with_range(R"("visible": 1)"),
         "menu.json: /menu/items/0/visible: expected true or false, found a whole number"},
        {with_range(R"("shortcut": 0)"),
         "menu.json: /menu/items/0/shortcut: expected a whole number from 1 to 99, found 0"},
        {with_item(R"({"type": "range", "name": "A", "pid": 5, "shortcut": 1},
                      {"type": "range", "name": "B", "pid": 5, "shortcut": 1})"),
         "menu.json: /menu/items/1/shortcut: shortcut button 1 is taken"},
        {with_range(R"("ranges": [])"),
         "menu.json: /menu/items/0/ranges: expected at least one range"},
        {with_range(R"("ranges": [{"min": 0, "max": 3}, {"min": 9, "max": 101}])"),
         "menu.json: /menu/items/0/ranges/1/max: expected a whole number from 9 to 100, found 101"},
        {with_range(R"("ranges": [{"min": 0, "max": 3, "options": ["absent"]}])"),
         "menu.json: /menu/items/0/ranges: expected at least one range that is allowed with these "
         "product options"},
        {with_range(R"("options": [""])"),
         "menu.json: /menu/items/0/options/0: expected a text of 1 to 256 characters, found 0"},
        {menu_text(
             R"({"pid": 5, "index": [0, 1], "type": "integer", "min": 0, "max": 9, "value": 1})",
             R"({"type": "range", "name": "Level", "pid": 5, "index": [0, 1],
                       "binding": "visible if [5.0.1] == 1"})"),
         ""},
        {with_range(R"("binding": "visible if [5@s] == \"on\"")"),
         "menu.json:1:269: parameter \"[5@s]\" is declared as an integer"},
        {with_range(R"("min": 3, "binding": "range -9..3; range 100..200")"), ""},
        {with_range(R"("binding": "visible if [6] == 1")"),
         "menu.json:1:276: expected a text, found an integer"},
        {menu_text(LEVEL, items_in_one_menu(1001)),
         "menu.json: /menu/items: expected 1 to 1000 items, found 1001"},
        {menu_text(LEVEL, items_in_one_menu(1000)), ""},
    };
    for (const Error_case& expected : CASES) {
        EXPECT_EQ(error_of(expected.text), placed(expected.text, expected.error))
            << expected.text.substr(0, 300);
    }
}

TEST(MenuLoader, AMessageStaysOneLineOfReadableLengthWhateverItQuotes) {
    const std::string text = with_item(R"({"type": ")" + std::string(60000, 'x') + "\"}");
    const std::string error = error_of(text);
    const std::string place =
        placed(text, "menu.json: /menu/items/0/type: expected one of \"node\"");
    EXPECT_LT(error.size(), 1100U);
    EXPECT_EQ(error.substr(0, place.size()), place);
    EXPECT_EQ(error.substr(error.size() - 3), "xx\"");
}

TEST(MenuLoader, EverythingWrongWithAMenuIsToldAtOnceInItsOrder) {
    EXPECT_EQ(error_of(R"({
  "options": {"dolby": -1},
  "device": {"parameters": [
    {"pid": 5, "type": "integer", "min": 0, "max": "9", "value": 10},
    {"pid": 6, "type": "text", "length": 8, "value": 3, "colour": 7}
  ]},
  "menu": {"name": "Main", "title": "M", "items": [
    {"type": "range", "name": "Level", "pid": 5, "access": "none", "visible": 0},
    {"type": "range", "name": "", "pid": 9, "format": "%s", "binding": "visible if"},
    {"type": "node", "name": "Empty", "items": []},
    {"type": "text", "name": "Note", "pid": 7, "shortcut": 100, "options": [1, 2]}
  ]}
})"),
              R"(menu.json:2:24: expected a whole number from 0 to 2147483647, found -1
menu.json:4:52: expected a whole number from 0 to 2147483647, found a text
menu.json:5:54: expected a text, found a whole number
menu.json:5:57: unknown member "colour"
menu.json:7:28: unknown member "title"
menu.json:8:60: expected one of "read-only", "read-write", "write-only", found "none"
menu.json:8:79: expected true or false, found a whole number
menu.json:9:31: expected a name of 1 to 24 characters before any ':', found 0
menu.json:9:42: the device has no parameter 9 with this index
menu.json:9:55: conversion "%s" is not one of %d, %02x, %02X, %f, %e, %g
menu.json:9:83: expected a number, a text, a [parameter], "value", a function or "(", found end of text
menu.json:10:48: expected 1 to 1000 items, found 0
menu.json:11:45: the device has no parameter 7 with this index
menu.json:11:60: expected a whole number from 1 to 99, found 100
menu.json:11:77: expected a text, found a whole number
menu.json:11:80: expected a text, found a whole number)");
}

TEST(MenuLoader, WhatFollowsFromAWrongParameterIsNotToldAgain) {
    const std::string text = with_parameter(R"({"pid": 5, "type": "real"})");
    EXPECT_EQ(error_of(text), placed(text,
                                     "menu.json: /device/parameters/0/type: expected \"integer\" "
                                     "or \"text\", found \"real\""));
}

TEST(MenuLoader, AnAvalancheOfErrorsIsCutShort) {
    std::string items;
    for (int i = 0; i < 999; ++i) {
        items += R"({"type": "node"},)";
    }
    const std::string errors = error_of(menu_text(LEVEL, items + R"({"type": "node"})"));
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 200);
    EXPECT_EQ(errors.substr(errors.rfind('\n') + 1), "menu.json: 1800 more like these");
}

TEST(MenuLoader, WarningsAreToldWithTheErrors) {
    const std::string text = with_item(
        R"({"type": "range", "name": "Temperature", "pid": 5},
           {"type": "range", "name": "Modem", "pid": 5, "options": ["modem"]},
           {"type": "knob", "name": "Volume"})");
    const Lines complaints = complaints_of(text);
    ASSERT_EQ(complaints.size(), 3U);
    EXPECT_EQ(complaints[0], error_of(text));
    EXPECT_NE(complaints[0].find("found \"knob\""), std::string::npos);
    EXPECT_EQ(complaints[1], placed(text,
                                    "menu.json: /menu/items/0/name: warning: a list of 20 columns "
                                    "has room for \"Temperatur\" of this name"));
    EXPECT_EQ(complaints[2], placed(text,
                                    "menu.json: /menu/items/1/options/0: warning: no product "
                                    "option \"modem\" is declared"));
}

TEST(MenuLoader, PlacesCountFromTheByteOrderMarkAndBehindEscapes) {
    EXPECT_EQ(error_of("{\n\t\"men\\u0075\" :\r\n  7, \"device\": {\"parameters\" : [ ] } }"),
              "menu.json:3:3: expected an object, found a whole number");
}

TEST(MenuLoader, AMissingFileIsNamed) {
    try {
        simulated_file("no-such-menu.json");
        FAIL();
    } catch (const Input_error& error) {
        EXPECT_STREQ(error.what(),
                     "no-such-menu.json: cannot be opened: No such file or directory");
    }
}

TEST(MenuLoader, AnEndlessFileIsRefused) {
    try {
        simulated_file("/dev/zero");
        FAIL();
    } catch (const Input_error& error) {
        EXPECT_STREQ(error.what(), "/dev/zero: is larger than 4 MiB");
    }
}

TEST(MenuLoader, AFolderIsRefused) {
    try {
        simulated_file(FRONTPANEL_SOURCE_DIR "/menus");
        FAIL();
    } catch (const Input_error& error) {
        EXPECT_STREQ(error.what(), FRONTPANEL_SOURCE_DIR "/menus: cannot be read: Is a directory");
    }
}

// Two items of one name, with rules.
std::string twins(const std::string& rules, const std::string& other_rules) {
    const auto item = [](const std::string& pid, const std::string& rule) {
        return R"({"type": "range", "name": "Level", "pid": )" + pid + R"(, "binding": ")" + rule +
               "\"}";
    };
    return menu_text(R"({"pid": 5, "type": "integer", "min": 0, "max": 100},
        {"pid": 6, "type": "integer", "min": 0, "max": 100})",
                     item("5", rules) + "," + item("6", other_rules));
}

Loaded_menu loaded_for_panel(const std::string& text) {
    Memory_device device;
    Loading loading;
    loading.has_all_warnings = false;
    return load_menu_text("menu.json", text, device, loading);
}

TEST(MenuLoader, AMenuForAPanelIsNotSearchedForWarnings) {
    const std::string text = twins("range [6]..100", "range [5]..100");
    Memory_device device;
    EXPECT_EQ(load_menu_text("menu.json", text, device).warnings.size(), 2U);
    EXPECT_TRUE(loaded_for_panel(text).warnings.empty());
}

TEST(MenuLoader, AMenuWithErrorsHasAllWarningsAlsoForAPanel) {
    for (const std::string& text :
         {twins("set [6] = value if value > 1", "set [5] = value if value > 1"),
          twins("range [6]..", "range [5]..100")}) {
        Memory_device device;
        std::vector<std::string> lines;
        try {
            load_menu_text("menu.json", text, device);
        } catch (const Input_errors& errors) {
            lines = errors.lines();
        }
        EXPECT_EQ(lines.size(), 2U);
        try {
            loaded_for_panel(text);
            FAIL();
        } catch (const Input_errors& errors) {
            EXPECT_EQ(errors.lines(), lines);
        }
    }
}

TEST(MenuLoader, TheShippedMenuLoadsWithoutWarning) {
    Simulated_menu loaded = simulated_file(FRONTPANEL_SOURCE_DIR "/menus/demo.json");
    EXPECT_TRUE(loaded.warnings.empty());
    EXPECT_GE(loaded.menu->entry_count(), 20U);
}

}  // namespace
}  // namespace frontpanel
