#include "file/toggle.h"

#include "unit/menu/links_fixture.h"

namespace frontpanel {
namespace {

TEST(Toggles, AToggleInNamesBecomesOneInAddresses) {
    Simulated_menu loaded =
        simulated_text(with_home(R"({"target": "first", "toggle": "[mute] == 0 && [gain 2] > 3"},
                                  {"target": "first", "toggle": "a=[101]; a=a+[100.2]==5"},
                                  {"target": "first", "toggle": ""},
                                  {"target": "first"})"));
    Data_entry& home = *loaded.menu->homescreen();
    EXPECT_EQ(names_of(home),
              (Lines{"Audio.Gain 1", "Audio.Gain 1", "Audio.Gain 1", "Audio.Gain 1"}));
    EXPECT_EQ(link_in(home, 0).GetToggleExpression(), "a=[101] == 0 && ([100.2]) > 3");
    EXPECT_EQ(link_in(home, 1).GetToggleExpression(), "a=[101]; a=a+([100.2])==5");
    EXPECT_EQ(link_in(home, 2).GetToggleExpression(), "");
    EXPECT_TRUE(link_in(home, 0).isHomescreenEntry());
    EXPECT_FALSE(link_in(home, 3).isHomescreenEntry());
    EXPECT_EQ(loaded.menu->favourites(), nullptr);
}

TEST(Toggles, AToggleTakesNumbersBelowZero) {
    Simulated_menu loaded = simulated_text(with_home(R"({"target": "first", "toggle": "![gain 1]"},
                                  {"target": "first", "toggle": "[gain 1] ** 2 == 9"})"));
    Menu& menu = *loaded.menu;
    loaded.device().set_integer(100, 1, -3);
    menu.bindings()->poll();
    EXPECT_EQ(link_in(*menu.homescreen(), 0).CheckToggleState(), 0);
    EXPECT_EQ(link_in(*menu.homescreen(), 1).CheckToggleState(), 1);
    testing::internal::CaptureStderr();
    link_in(*menu.homescreen(), 0).CheckToggleState();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace frontpanel
