#include "file/toggle.h"

#include "unit/menu/links_fixture.h"

namespace frontpanel {
namespace {

TEST(Toggles, AConditionInNamesBecomesAToggleInAddresses) {
    Simulated_menu loaded =
        simulated_text(with_home(R"-({"target": "first", "toggle": "[mute] == 0 and [gain 2] > 3"},
                                  {"target": "first", "toggle": "[101] == 0 && !([100.2] > 3)"},
                                  {"target": "first", "toggle": ""},
                                  {"target": "first"})-"));
    Data_entry& home = *loaded.menu->homescreen();
    EXPECT_EQ(names_of(home),
              (Lines{"Audio.Gain 1", "Audio.Gain 1", "Audio.Gain 1", "Audio.Gain 1"}));
    EXPECT_EQ(link_in(home, 0).GetToggleExpression(), "A=[101]==0&&[100.2]>3");
    EXPECT_EQ(link_in(home, 1).GetToggleExpression(), "A=[101]==0&&[100.2]>3==0");
    EXPECT_EQ(link_in(home, 2).GetToggleExpression(), "");
    EXPECT_TRUE(link_in(home, 0).isHomescreenEntry());
    EXPECT_FALSE(link_in(home, 3).isHomescreenEntry());
    EXPECT_EQ(loaded.menu->favourites(), nullptr);
    EXPECT_EQ(loaded.menu->condition_of(link_in(home, 0)), "[mute] == 0 and [gain 2] > 3");
    EXPECT_EQ(loaded.menu->condition_of(link_in(home, 3)), "");
}

TEST(Toggles, AToggleTakesNumbersBelowZero) {
    Simulated_menu loaded = simulated_text(with_home(R"({"target": "first", "toggle": "![gain 1]"},
                                  {"target": "first", "toggle": "[gain 1] * [gain 1] == 9"})"));
    Menu& menu = *loaded.menu;
    loaded.device().set_integer(100, 1, -3);
    menu.bindings()->poll();
    EXPECT_EQ(link_in(*menu.homescreen(), 0).CheckToggleState(), 0);
    EXPECT_EQ(link_in(*menu.homescreen(), 1).CheckToggleState(), 1);
    testing::internal::CaptureStderr();
    link_in(*menu.homescreen(), 0).CheckToggleState();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// The evaluator's variables are the process's: "Half" sorts before most names.
TEST(Toggles, NoNameOfADisplayExpressionTakesTheResultAway) {
    Simulated_menu loaded = simulated_text(
        with_items(R"-({"type": "range", "name": "Gain", "parameter": "gain 1", "format": "%.1f",
                       "value_format": "(Half=v/2)"})-",
                   R"("homescreen": [{"target": "Gain", "toggle": "[mute] == 1"}])"));
    Menu& menu = *loaded.menu;
    menu.bindings()->poll();
    EXPECT_EQ(link_in(*menu.homescreen(), 0).CheckToggleState(), 0);
    loaded.device().set_integer(101, 0, 1);
    menu.bindings()->poll();
    EXPECT_EQ(link_in(*menu.homescreen(), 0).CheckToggleState(), 1);
}

TEST(Toggles, ATextThatTheEvaluatorCannotTakeIsToldBeforeItIsUsed) {
    EXPECT_EQ(toggle_error("A=[101]==0&&[100.2]>3"), std::nullopt);
    EXPECT_EQ(toggle_error("A=" + std::string(130, '(') + "[101]" + std::string(130, ')')),
              "this condition is too deeply nested for the homescreen");
}

}  // namespace
}  // namespace frontpanel
