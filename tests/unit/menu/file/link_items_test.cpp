#include "file/link_items.h"

#include "unit/menu/links_fixture.h"

namespace frontpanel {
namespace {

TEST(LinkItems, ALinkBehavesAndEscapesAsItsItemTells) {
    Simulated_menu loaded = simulated_text(with_items(std::string(AUDIO) + R"(,
            {"type": "link", "target": "first", "id": "short", "behaviour": "skip", "shortcut": 7,
             "escape": {"redraw": "Audio", "escape": "later"}},
            {"type": "link", "target": "first", "id": "later", "behaviour": "stay",
             "escape": {"select": "Audio/Gain 2"}})"));
    Data_entry& root = loaded.menu->root();
    Link_entry& link = link_in(root, 1);
    Link_entry& later = link_in(root, 2);
    EXPECT_EQ(link.getBehaviour(), Link_entry::LINK_SKIP);
    EXPECT_EQ(later.getBehaviour(), Link_entry::LINK_STAY);
    EXPECT_STREQ(link.Get_escape_node(Link_entry::ESCAPE_REDRAW)->Get_name(), "Audio");
    EXPECT_EQ(link.Get_escape_node(Link_entry::ESCAPE_LEAVE), &later);
    EXPECT_EQ(link.Get_escape_node(Link_entry::ESCAPE_SELECT), nullptr);
    EXPECT_STREQ(later.Get_escape_node(Link_entry::ESCAPE_SELECT)->Get_name(), "Gain 2");
    EXPECT_EQ(root.getShortcut(7), &link);
}

TEST(LinkItems, ABridgeOwnsWhatItLeadsTo) {
    Simulated_menu loaded =
        simulated_text(with_items(R"({"type": "bridge", "id": "bridge", "behaviour": "skip",
                       "item": {"type": "range", "parameter": "gain 2", "format": "%d dB"}},
                      {"type": "range", "name": "Mute", "parameter": "mute"})"));
    Data_entry& root = loaded.menu->root();
    EXPECT_EQ(names_of(root), (Lines{"gain 2", "Mute"}));
    Link_entry& link = link_in(root, 0);
    EXPECT_TRUE(link.isBridgeLink());
    EXPECT_EQ(link.getBehaviour(), Link_entry::LINK_SKIP);
    EXPECT_EQ(link.Refresh(&loaded.menu->access(), true), 0);
    char text[21] = {};
    EXPECT_EQ(link.Get_display_string(text, 20), 0);
    EXPECT_STREQ(text, "4 dB");
    // The root, the link and the other item: what the bridge owns is not the menu's.
    EXPECT_EQ(loaded.menu->entry_count(), 3U);
}

TEST(LinkItems, ABridgeGoesByTheNameOfItsItemOrOfItsParameter) {
    const Simulated_menu loaded = simulated_text(with_items(
        R"({"type": "bridge", "item": {"type": "range", "name": "Treble", "parameter": "gain 2"}},
           {"type": "bridge", "item": {"type": "range", "parameter": "gain 2"}},
           {"type": "bridge", "item": {"type": "range", "pid": 101}})"));
    EXPECT_EQ(names_of(loaded.menu->root()), (Lines{"Treble", "gain 2", "Bridge"}));
}

TEST(LinkItems, AnErrorNamesPlaceAndExpectation) {
    const Error_case CASES[] = {
        {with_items(R"({"type": "link"})"),
         "menu.json: /menu/items/0: expected a member \"target\""},
        {with_items(R"({"type": "link", "target": "Audio/Gain 9"},)" + std::string(AUDIO)),
         "menu.json: /menu/items/0/target: there is no item \"Audio/Gain 9\""},
        {with_items(R"({"type": "link", "target": "Audio", "name": "A"},)" + std::string(AUDIO)),
         "menu.json: /menu/items/0/name@: unknown member \"name\""},
        {with_items(R"({"type": "link", "target": "Audio"},)" + std::string(AUDIO) + "," + AUDIO),
         "menu.json: /menu/items/0/target: several items are \"Audio\": give the item an "
         "\"id\" and refer to that\n"
         "menu.json: /menu/items/2/items/0/id: another item has the id \"first\""},
        {with_items(R"({"type": "link", "target": "first", "id": "a"},
                       {"type": "link", "target": "a"},)" +
                    std::string(AUDIO)),
         "menu.json: /menu/items/1/target: a link leads to no other link"},
        {with_items(R"({"type": "link", "target": "first", "behaviour": "jump"},)" +
                    std::string(AUDIO)),
         "menu.json: /menu/items/0/behaviour: expected \"stay\" or \"skip\", found \"jump\""},
        {with_items(
             R"({"type": "link", "target": "first", "escape": {"redraw": "x", "leave": "y"}},)" +
             std::string(AUDIO)),
         "menu.json: /menu/items/0/escape/redraw: there is no item \"x\"\n"
         "menu.json: /menu/items/0/escape/leave@: unknown member \"leave\""},
        {with_items(R"({"type": "range", "name": "Gain", "parameter": "gain 3"},
                       {"type": "link", "target": "Gain"})"),
         "menu.json: /menu/items/0/parameter: the device has no parameter \"gain 3\""},
        {with_items(R"({"type": "node", "name": "Gain"}, {"type": "link", "target": "Gain"})"),
         "menu.json: /menu/items/0: expected a member \"items\""},
        {with_items(R"({"type": "bridge"})"),
         "menu.json: /menu/items/0: expected a member \"item\""},
        {with_items(R"({"type": "bridge", "item": {"type": "node", "items": []}})"),
         "menu.json: /menu/items/0/item/type: a bridge leads to no item of this type"},
        {with_items(
             R"({"type": "bridge", "item": {"type": "range", "name": "G", "parameter": "x"}})"),
         "menu.json: /menu/items/0/item/parameter: the device has no parameter \"x\""},
        {with_items(R"({"type": "mount", "name": "Presets"})"),
         "menu.json: /menu/items/0: expected a member \"folder\""},
        {with_items(AUDIO, R"("favourites": [])"),
         "menu.json: /favourites: expected 1 to 1000 links, found 0"},
        {with_items(AUDIO, R"("favourites": [{"target": "first", "toggle": "1"}, 5])"),
         "menu.json: /favourites/0/toggle@: unknown member \"toggle\"\n"
         "menu.json: /favourites/1: expected an object, found a whole number"},
        {with_home(R"({"target": "first", "toggle": "[mutt] == 1"})"),
         "menu.json:7:115: unknown parameter \"[mutt]\"; did you mean [mute]?"},
        {with_home(R"({"target": "first", "toggle": "1 == [label]"})"),
         "menu.json:7:120: a condition of the homescreen compares numbers, not texts"},
        {with_home(R"({"target": "first", "toggle": "[mute == 1"})"),
         "menu.json:7:115: parameter without closing bracket"},
        {with_home(R"({"target": "first", "toggle": "[mute] == "})"),
         "menu.json:7:125: expected a number, a text, a [parameter], \"value\", a function or "
         "\"(\", found end of text"},
        {with_home(R"({"target": "first", "toggle": "a=[mute]"})"),
         "menu.json:7:115: expected a number, a text, a [parameter], \"value\", a function or "
         "\"(\", found \"a\""},
        {with_home(R"({"target": "first", "toggle": "[mute]==1; [mute]==0"})"),
         "menu.json:7:124: expected one condition; \"and\" and \"or\" join several, found \";\""},
        {with_home(R"({"target": "first", "toggle": "[999] == 1"})"),
         "menu.json:7:116: the device has no parameter 999 with this index"},
        {with_home(R"({"target": "first", "toggle": "value == 1"})"),
         "menu.json:7:115: this entry has no value of its own"},
        {with_home(R"({"target": "first", "toggle": "[mute] == 9007199254740993"})"),
         "menu.json:7:125: this number may be beyond 9007199254740992, the largest in a condition "
         "of the homescreen"},
        {with_home(R"-({"target": "first", "toggle": "1/([mute])"})-"), ""},
    };
    for (const Error_case& expected : CASES) {
        EXPECT_EQ(error_of(expected.text), placed(expected.text, expected.error)) << expected.text;
    }
}

}  // namespace
}  // namespace frontpanel
