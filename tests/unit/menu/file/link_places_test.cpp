#include "file/link_places.h"

#include "unit/menu/links_fixture.h"

namespace frontpanel {
namespace {

TEST(LinkPlaces, ALinkStandsInItsPlaceThoughItsTargetComesLater) {
    Simulated_menu loaded =
        simulated_text(with_items(R"({"type": "range", "name": "Mute", "parameter": "mute"},
                                   {"type": "link", "target": "Audio/Gain 2"},)" +
                                  std::string(AUDIO) + R"(, {"type": "link", "target": "first"})"));
    Data_entry& root = loaded.menu->root();
    EXPECT_EQ(names_of(root), (Lines{"Mute", "Audio.Gain 2", "Audio", "Audio.Gain 1"}));
    Link_entry& link = link_in(root, 1);
    EXPECT_EQ(link.Get_parent(), &root);
    EXPECT_STREQ(link.Get_previous()->Get_name(), "Mute");
    EXPECT_STREQ(link.Get_next()->Get_name(), "Audio");
    EXPECT_EQ(link_in(root, 3).Get_next(), nullptr);
    EXPECT_STREQ(link.Get_housed_entry()->Get_name(), "Gain 2");
    EXPECT_EQ(loaded.menu->links().size(), 2U);
}

TEST(LinkPlaces, OnlyLinksOrLinksAloneMakeAMenuToo) {
    Simulated_menu loaded = simulated_text(
        with_items(std::string(AUDIO) + R"(, {"type": "node", "name": "Short", "items": [
            {"type": "link", "target": "Audio/Gain 1"}, {"type": "link", "target": "Audio"}]})"));
    Data_entry& shortcuts = *children_of(loaded.menu->root())[1];
    EXPECT_EQ(names_of(shortcuts), (Lines{"Audio.Gain 1", "Audio"}));
}

}  // namespace
}  // namespace frontpanel
