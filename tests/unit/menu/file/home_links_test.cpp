// The homescreen and the favourites.
#include "unit/menu/links_fixture.h"

namespace frontpanel {
namespace {

TEST(HomeLinks, AHomescreenLinkFollowsItsToggle) {
    Simulated_menu loaded =
        simulated_text(with_home(R"({"target": "first", "toggle": "[mute] == 1"})"));
    Menu& menu = *loaded.menu;
    Link_entry& link = link_in(*menu.homescreen(), 0);
    menu.bindings()->poll();
    EXPECT_EQ(link.isVisible(true, &menu.access()), VIS_FALSE);
    loaded.device().set_integer(101, 0, 1);
    menu.bindings()->poll();
    EXPECT_EQ(link.isVisible(true, &menu.access()), VIS_TRUE);
}

TEST(HomeLinks, AToggleWithoutAParameterIsWarnedOf) {
    const std::string text = with_home(R"({"target": "first", "toggle": "3"},
                                  {"target": "first", "toggle": "2 > 1"},
                                  {"target": "first", "toggle": ""},
                                  {"target": "first", "toggle": "[mute] == 1"})");
    const std::string reason =
        "reads nothing, so it never changes; parameters are written in brackets, as in [100]";
    EXPECT_EQ(simulated_text(text, 40).warnings,
              (Lines{"menu.json:7:115: warning: \"3\" " + reason,
                     "menu.json:8:66: warning: \"2 > 1\" " + reason}));
}

TEST(HomeLinks, FavouritesAreAMenuOfTheirOwn) {
    Simulated_menu loaded = simulated_text(
        with_items(AUDIO, R"("favourites": [{"target": "Audio"}, {"target": "Audio/Gain 2"}])"));
    Data_entry& favourites = *loaded.menu->favourites();
    EXPECT_EQ(names_of(favourites), (Lines{"Audio", "Audio.Gain 2"}));
    EXPECT_EQ(link_in(favourites, 1).Get_parent(), &favourites);
    EXPECT_EQ(favourites.Get_parent(), nullptr);
}

}  // namespace
}  // namespace frontpanel
