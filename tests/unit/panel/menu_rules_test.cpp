// The rules of a menu file's items.
#include "entry_access.h"
#include "panel_fixture.h"

namespace panel {
namespace {

constexpr const char* PARAMETERS = R"(
    {"name": "mode", "pid": 5, "type": "integer", "min": 0, "max": 2, "value": 1},
    {"name": "input 1 gain", "pid": 6, "index": [1], "type": "integer", "min": -60, "max": 12, "value": 3},
    {"name": "label", "pid": 7, "type": "text", "length": 8, "value": "abc"})";

std::string with_items(const std::string& items) {
    return menu_text(PARAMETERS, items, R"({"gps": 1})");
}

std::string with_rules(const std::string& rules) {
    return with_items(
        R"({"type": "range", "name": "Gain", "parameter": "input 1 gain", "binding": ")" + rules +
        "\"}");
}

// An item's error within its rules, from the place where the rules begin.
std::string error_at(const std::string& text, size_t column, const std::string& message) {
    const std::string start = placed(text, "menu.json: /menu/items/0/binding: ");
    const size_t last = start.rfind(':', start.size() - 3);
    const size_t quote = std::stoul(start.substr(last + 1));
    return start.substr(0, last + 1) + std::to_string(quote + column) + ": " + message;
}

TEST(MenuRules, ParametersGoByTheirNames) {
    const Loaded_menu loaded =
        load_menu_text("menu.json", with_rules("visible if [mode] == 1 and [6.1] > 2; "
                                               "range -10..5 if [input 1 gain] == 3"));
    Data_entry& gain = *loaded.menu->root().Get_child();
    EXPECT_GE(gain.isVisible(true, &loaded.menu->access()), 0);
    EXPECT_EQ(static_cast<Range_entry&>(gain).Get_max(), 5);
    loaded.menu->device().set_integer(5, 0, 2);
    loaded.menu->bindings()->poll();
    EXPECT_LT(gain.isVisible(true, &loaded.menu->access()), 0);
}

TEST(MenuRules, EveryKindOfRuleReachesItsItem) {
    Panel panel(with_items(R"(
        {"type": "enum", "name": "Mode", "parameter": "mode", "choices": ["A", "B", "C"],
         "binding": "keys 1..2 if [input 1 gain] == 3"},
        {"type": "range", "name": "Gain", "parameter": "input 1 gain",
         "binding": "access read-only if has_option(\"gps\")\nset [label] = \"loud\" if value > 2"},
        {"type": "text", "name": "Label", "parameter": "label",
         "binding": "warn \"no text\" if length(value) == 0"})"));
    EXPECT_EQ(panel.lines()[0].substr(0, 5), ">Mode");
    Data_entry& mode = *panel.root().Get_child();
    static_cast<Enum_entry&>(mode).updateControlOptionMap();
    EXPECT_EQ(static_cast<Enum_entry&>(mode).Get_size(), 2);
    EXPECT_EQ(mode.Get_next()->Get_access_type(), Data_entry::READ_ONLY);
    EXPECT_EQ(panel.device().text(7, 0), "loud");
    EXPECT_EQ(mode.Get_next()->Get_next()->Set_value("", 1), 1);
}

TEST(MenuRules, AMistakeIsToldWhereItStands) {
    const std::string unknown = with_rules("visible if [mood] == 1");
    const std::string unknown_place = error_at(unknown, 12, "");
    EXPECT_EQ(error_of(unknown).substr(0, unknown_place.size()), unknown_place);
    const std::string escaped = with_rules(R"(visible if [label] == \"x\" and)");
    const std::string place = error_at(escaped, 32, "");
    EXPECT_EQ(error_of(escaped).substr(0, place.size()), place);
}

TEST(MenuRules, AMistakeOnALaterLineIsToldWithIt) {
    const std::string text = with_rules(R"(visible if [mode] == 1\nrange 1..)");
    const std::string place = placed(text, "menu.json: /menu/items/0/binding: line 2, column 10: ");
    EXPECT_EQ(error_of(text).substr(0, place.size()), place);
}

TEST(MenuRules, WhatIsWrittenMustBeDeclared) {
    const std::string text = with_rules(R"(set [99] = 1 if [label] == \"set [98] \")");
    EXPECT_EQ(error_of(text), placed(text,
                                     "menu.json: /menu/items/0/binding: the device has no "
                                     "parameter [99]"));
}

TEST(MenuRules, CirclesOfWritesAreErrorsAndThoseOfLimitsWarnings) {
    const std::string writes = with_items(R"(
        {"type": "range", "name": "Mode", "parameter": "mode",
         "binding": "set [input 1 gain] = value if value > 1"},
        {"type": "range", "name": "Gain", "parameter": "input 1 gain",
         "binding": "set [mode] = 0 if value > 3"})");
    EXPECT_NE(error_of(writes).find("rules that write drive each other in a circle: "),
              std::string::npos)
        << error_of(writes);
    const std::string limits = with_items(R"(
        {"type": "range", "name": "Mode", "parameter": "mode",
         "binding": "range 0..[input 1 gain]"},
        {"type": "range", "name": "Gain", "parameter": "input 1 gain",
         "binding": "range [mode]..12"})");
    const Loaded_menu loaded = load_menu_text("menu.json", limits);
    ASSERT_EQ(loaded.warnings.size(), 1U);
    EXPECT_NE(loaded.warnings[0].find("warning: rules limit each other in a circle: "),
              std::string::npos)
        << loaded.warnings[0];
}

}  // namespace
}  // namespace panel
