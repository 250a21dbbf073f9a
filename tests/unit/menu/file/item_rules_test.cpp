// The rules of a menu file's items.
#include <algorithm>

#include <frontpanel_menu/entry_access.h>
#include "support/panel_fixture.h"

namespace frontpanel {
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

constexpr const char* GAIN = R"({"type": "range", "name": "Gain", "parameter": "input 1 gain")";
constexpr const char* MODE = R"({"type": "enum", "name": "Mode", "parameter": "mode",
    "choices": ["A", "B", "C"])";
constexpr const char* LABEL = R"({"type": "text", "name": "Label", "parameter": "label")";
constexpr const char* NODE = R"({"type": "node", "name": "Node",
    "items": [{"type": "range", "name": "Mode", "parameter": "mode"}])";

TEST(ItemRules, ParametersGoByTheirNames) {
    Simulated_menu loaded =
        simulated_text(with_rules("visible if [mode] == 1 and [6.1] > 2; "
                                  "range -10..5 if [input 1 gain] == 3"));
    Data_entry& gain = *loaded.menu->root().Get_child();
    EXPECT_GE(gain.isVisible(true, &loaded.menu->access()), 0);
    EXPECT_EQ(static_cast<Range_entry&>(gain).Get_max(), 5);
    loaded.device().set_integer(5, 0, 2);
    loaded.menu->bindings()->poll();
    EXPECT_LT(gain.isVisible(true, &loaded.menu->access()), 0);
}

TEST(ItemRules, EveryKindOfRuleReachesItsItem) {
    Menu_panel panel(with_items(R"(
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

TEST(ItemRules, AMistakeIsToldWhereItStands) {
    const std::string unknown = with_rules("visible if [mood] == 1");
    const std::string unknown_place = error_at(unknown, 12, "");
    EXPECT_EQ(error_of(unknown).substr(0, unknown_place.size()), unknown_place);
    const std::string escaped = with_rules(R"(visible if [label] == \"x\" and)");
    const std::string place = error_at(escaped, 32, "");
    EXPECT_EQ(error_of(escaped).substr(0, place.size()), place);
}

TEST(ItemRules, AMistakeOnALaterLineIsToldWithIt) {
    const std::string text = with_rules(R"(visible if [mode] == 1\nrange 1..)");
    const std::string place = placed(text, "menu.json: /menu/items/0/binding: line 2, column 10: ");
    EXPECT_EQ(error_of(text).substr(0, place.size()), place);
}

TEST(ItemRules, TheMistakesOfAllRulesAreTold) {
    const std::string text = with_rules("visible if [unheard] == 1; range 0..9; frobnicate");
    const std::string place = error_at(text, 40, "expected \"visible\"");
    const std::string errors = error_of(text);
    EXPECT_EQ(errors.substr(0, errors.find('\n')),
              error_at(text, 12, "unknown parameter \"[unheard]\""));
    EXPECT_EQ(errors.substr(errors.find('\n') + 1, place.size()), place);
    const std::string lines = with_rules(R"(range 1..\nkeys)");
    const std::string start = placed(lines, "menu.json: /menu/items/0/binding: ");
    const std::string both = error_of(lines);
    EXPECT_EQ(both.substr(0, start.size() + 17), start + "line 1, column 10");
    EXPECT_EQ(both.substr(both.find('\n') + 1, start.size() + 16), start + "line 2, column 5");
}

// The rules of an item, of a file with one more parameter that is declared wrongly.
std::string beside_wrong(const std::string& parameter, const std::string& rules) {
    return menu_text(parameter + ", " + PARAMETERS,
                     std::string(GAIN) + R"(, "binding": ")" + rules + "\"}");
}

TEST(ItemRules, AParameterThatIsDeclaredWronglyIsToldThereAlone) {
    for (const char* const wrong : {
             R"({"name": "d", "pid": 9, "type": "integer", "min": 0, "max": 9})",
             R"({"name": "d", "pid": 9})",
             R"({"name": "d", "pid": -9, "type": "integer", "value": 0})",
             R"({"name": "d", "pid": 9, "type": "text", "length": 8, "value": 1})",
             R"({"name": "d", "pid": 9, "type": "real", "value": 1})",
         }) {
        const std::string text = beside_wrong(
            wrong, "visible if [d]; range 0..5 if [d]; set [d] = 1; visible if [mode]");
        const std::string declaration = error_of(beside_wrong(wrong, "visible if [mode]"));
        EXPECT_EQ(declaration.find('\n'), std::string::npos) << declaration;
        if (std::string(wrong).find("text") == std::string::npos) {
            EXPECT_EQ(error_of(text), declaration);
        }
    }
    const std::string text = R"({"name": "d", "pid": 9, "type": "text", "length": 8})";
    EXPECT_EQ(error_of(beside_wrong(text, R"(visible if [d] == \"a\" or [9] == \"b\")")),
              error_of(beside_wrong(text, "visible if [mode]")));
    const std::string again =
        R"({"name": "d", "pid": 5, "type": "integer", "min": 0, "max": 2, "value": 1})";
    EXPECT_EQ(error_of(beside_wrong(again, "visible if [mode] == 1")),
              error_of(beside_wrong(again, "visible if [5]")));
}

TEST(ItemRules, WhatElseIsWrongWithRulesOfAWrongParameterIsTold) {
    const std::string wrong = R"({"name": "d", "pid": 9, "type": "integer", "min": 0, "max": 9})";
    const std::string errors =
        error_of(beside_wrong(wrong, "visible if [d] and [unheard]; keys [d]; visible if [mood]"));
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 2) << errors;
    EXPECT_NE(errors.find("unknown parameter \"[unheard]\""), std::string::npos) << errors;
    EXPECT_NE(errors.find("unknown parameter \"[mood]\"; did you mean [mode]?"), std::string::npos)
        << errors;
}

TEST(ItemRules, TheEndsOfARangeStandInEitherOrder) {
    Menu_panel panel(with_rules("range 3..-1 if [mode]"));
    EXPECT_TRUE(simulated_text(with_rules("range 3..-1 if [mode]")).warnings.empty());
    auto& gain = static_cast<Range_entry&>(panel.item(0));
    gain.Refresh(&panel.menu().access(), true);
    EXPECT_EQ(gain.Get_min(), -1);
    EXPECT_EQ(gain.Get_max(), 3);
    Menu_panel keys(with_items(std::string(MODE) + R"(, "binding": "keys 2..1"})"));
    auto& mode = static_cast<Enum_entry&>(keys.item(0));
    mode.updateControlOptionMap();
    EXPECT_EQ(mode.Get_size(), 2);
}

// What is told of rules of the first item, and the column at which it is within them.
void expect_error(const std::string& item, const std::string& rules, size_t column,
                  const std::string& message) {
    const std::string text = with_items(item + R"(, "binding": ")" + rules + "\"}");
    EXPECT_EQ(error_of(text), error_at(text, column, message)) << rules;
}

TEST(ItemRules, ParametersMustBeDeclared) {
    expect_error(GAIN, R"(set [99] = 1 if [label] == \"set [98] \")", 6,
                 "the device has no parameter 99 with this index");
    expect_error(GAIN, "visible if [mode] and [6.2] > 1", 24,
                 "the device has no parameter 6 with this index");
    expect_error(GAIN, "visible if [6.257] == 1", 13,
                 "the device has no parameter 6 with this index");
    expect_error(GAIN, "visible if [7@i] > 1", 12, "parameter \"[7@i]\" is declared as a text");
}

TEST(ItemRules, RulesMustFitTheItem) {
    expect_error(MODE, "visible if 1; range 0..1", 21, "\"range\" is for items of type \"range\"");
    expect_error(LABEL, "range 0..[mode]", 7, "\"range\" is for items of type \"range\"");
    expect_error(GAIN, "keys [mode]", 6, "\"keys\" is for items of type \"enum\"");
    expect_error(LABEL, "keys 0", 6, "\"keys\" is for items of type \"enum\"");
    expect_error(NODE, R"(warn \"a\")", 1, "\"warn\" is for items that have a value");
    expect_error(NODE, "visible if 1; access read-only", 15,
                 "\"access\" is for items that have a value");
    EXPECT_EQ(error_of(with_items(
                  std::string(NODE) +
                  R"(, "binding": "visible if [mode]; set [mode] = 1 if [label] == \"a\""})")),
              "");
}

TEST(ItemRules, KeysMustBeThoseOfChoices) {
    expect_error(MODE, "keys 0, 3 if [label] == \\\"a\\\"", 9, "keys 3: the choices are 0..2");
    expect_error(MODE, "keys 1..3", 6, "keys 1..3: the choices are 0..2");
    EXPECT_EQ(error_of(with_items(std::string(MODE) + R"(, "binding": "keys 0..2"})")), "");
}

TEST(ItemRules, RangesMustHoldAValueOfTheItem) {
    expect_error(GAIN, "range 0..1, 13..20", 13, "range 13..20 holds no value from -60 to 12");
    expect_error(GAIN, "range -80..-61 if [mode]", 7,
                 "range -80..-61 holds no value from -60 to 12");
    expect_error(std::string(GAIN) + R"(, "min": 3)", "range -9..2", 7,
                 "range -9..2 holds no value from 3 to 12");
    EXPECT_EQ(error_of(with_rules("range -80..-60; range 12..20")), "");
}

TEST(ItemRules, WhatIsWrittenMustFitTheParameter) {
    expect_error(GAIN, "set [mode] = 3", 14, "parameter 5 holds 0 to 2, not 3");
    expect_error(GAIN, "set [mode] = -1 if value", 14, "parameter 5 holds 0 to 2, not -1");
    expect_error(GAIN, R"(set [label] = \"123456789\")", 15,
                 "parameter 7 holds texts of at most 8 characters, not 9");
    EXPECT_EQ(error_of(with_rules(R"(set [mode] = 2; set [label] = \"12345678\"; )"
                                  R"(set [label] = \"{value} and more\")")),
              "");
}

TEST(ItemRules, AllThatDoesNotFitIsToldAtOnce) {
    const std::string text =
        with_items(std::string(MODE) + R"(, "binding": "keys 3; range 1..2\nset [mode] = 7"})");
    const std::string place = placed(text, "menu.json: /menu/items/0/binding: ");
    EXPECT_EQ(error_of(text), place + "line 1, column 6: keys 3: the choices are 0..2\n" + place +
                                  "line 1, column 15: \"range\" is for items of type \"range\"\n" +
                                  place + "line 2, column 14: parameter 5 holds 0 to 2, not 7");
}

TEST(ItemRules, ConditionsThatReadNothingAreWarnedOfWhereTheyStand) {
    const std::string text = with_rules("visible if 5 == 1");
    Simulated_menu loaded = simulated_text(text);
    ASSERT_EQ(loaded.warnings.size(), 1U);
    const std::string place = error_at(text, 12, "warning: ");
    EXPECT_EQ(loaded.warnings[0].substr(0, place.size()), place);
}

}  // namespace
}  // namespace frontpanel
