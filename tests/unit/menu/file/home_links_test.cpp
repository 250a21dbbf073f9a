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
                                  {"target": "first", "toggle": "a=2 > 1"},
                                  {"target": "first", "toggle": ""},
                                  {"target": "first", "toggle": "3 == [mute]"})");
    const std::string warning =
        "/toggle: warning: this toggle names no parameter, so it never changes";
    EXPECT_EQ(simulated_text(text, 40).warnings,
              (Lines{placed(text, "menu.json: /homescreen/0" + warning),
                     placed(text, "menu.json: /homescreen/1" + warning)}));
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
