// Links, bridges, mounted menus, the homescreen and the favourites of a menu file.
#include <frontpanel_data/evaluator.h>

#include <filesystem>
#include <fstream>

#include <frontpanel_menu/entry_access.h>
#include "support/folder.h"
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* PARAMETERS = R"(
    {"name": "gain 1", "pid": 100, "index": [1], "type": "integer", "min": -60, "max": 12, "value": 3},
    {"name": "gain 2", "pid": 100, "index": [2], "type": "integer", "min": -60, "max": 12, "value": 4},
    {"name": "mute", "pid": 101, "type": "integer", "min": 0, "max": 1, "value": 0},
    {"name": "label", "pid": 102, "type": "text", "length": 8, "value": "Studio"})";

constexpr const char* AUDIO = R"({"type": "node", "name": "Audio", "items": [
    {"type": "range", "name": "Gain 1", "parameter": "gain 1", "id": "first"},
    {"type": "range", "name": "Gain 2", "parameter": "gain 2"}]})";

std::string with_items(const std::string& items, const std::string& members = "") {
    return R"({"device": {"parameters": [)" + std::string(PARAMETERS) +
           R"(]}, "menu": {"name": "Main", "items": [)" + items + "]}" +
           (members.empty() ? "" : ", ") + members + "}";
}

std::string with_home(const std::string& links) {
    return with_items(AUDIO, R"("homescreen": [)" + links + "]");
}

std::vector<Data_entry*> children_of(Data_entry& menu) {
    std::vector<Data_entry*> children;
    for (Data_entry* child = neighbour(menu, Data_entry::OPERATION_CHILD); child != nullptr;
         child = neighbour(*child, Data_entry::OPERATION_NEXT)) {
        children.push_back(child);
    }
    return children;
}

Lines names_of(Data_entry& menu) {
    Lines names;
    for (const Data_entry* const child : children_of(menu)) {
        names.emplace_back(child->Get_name());
    }
    return names;
}

Link_entry& link_in(Data_entry& menu, size_t position) {
    return dynamic_cast<Link_entry&>(*children_of(menu).at(position));
}

TEST(MenuLinks, ALinkStandsInItsPlaceThoughItsTargetComesLater) {
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

TEST(MenuLinks, OnlyLinksOrLinksAloneMakeAMenuToo) {
    Simulated_menu loaded = simulated_text(
        with_items(std::string(AUDIO) + R"(, {"type": "node", "name": "Short", "items": [
            {"type": "link", "target": "Audio/Gain 1"}, {"type": "link", "target": "Audio"}]})"));
    Data_entry& shortcuts = *children_of(loaded.menu->root())[1];
    EXPECT_EQ(names_of(shortcuts), (Lines{"Audio.Gain 1", "Audio"}));
}

TEST(MenuLinks, ALinkBehavesAndEscapesAsItsItemTells) {
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

TEST(MenuLinks, ALinkWhoseNameIsLostIsWarnedOf) {
    const std::string text = with_items(R"({"type": "node", "name": "Audio processing", "items": [
                       {"type": "range", "name": "Gain of 1", "parameter": "gain 1"}]},
                      {"type": "link", "target": "Audio processing/Gain of 1"})");
    EXPECT_EQ(simulated_text(text, 40).warnings,
              (Lines{placed(text,
                            "menu.json: /menu/items/1/target: warning: this link is named \"Audio "
                            "processing.(null)\": with those of the menus around it, the name of "
                            "its target is too long")}));
}

TEST(MenuLinks, ABridgeOwnsWhatItLeadsTo) {
    Simulated_menu loaded =
        simulated_text(with_items(R"({"type": "bridge", "id": "bridge", "behaviour": "skip",
                       "item": {"type": "range", "parameter": "gain 2", "format": "%d dB"}},
                      {"type": "range", "name": "Mute", "parameter": "mute"})"));
    Data_entry& root = loaded.menu->root();
    EXPECT_EQ(names_of(root), (Lines{"Bridge Entry", "Mute"}));
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

TEST(MenuLinks, AnErrorNamesPlaceAndExpectation) {
    const Error_case CASES[] = {
        {with_items(R"({"type": "link"})"),
         "menu.json: /menu/items/0: expected a member \"target\""},
        {with_items(R"({"type": "link", "target": "Audio/Gain 9"},)" + std::string(AUDIO)),
         "menu.json: /menu/items/0/target: there is no item \"Audio/Gain 9\""},
        {with_items(R"({"type": "link", "target": "Audio", "name": "A"},)" + std::string(AUDIO)),
         "menu.json: /menu/items/0/name@: unknown member \"name\""},
        {with_items(R"({"type": "link", "target": "Audio"},)" + std::string(AUDIO) + "," + AUDIO),
         "menu.json: /menu/items/0/target: several items are \"Audio\": give the one that is meant "
         "an \"id\"\n"
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
         "menu.json: /menu/items/0/item/name@: unknown member \"name\"\n"
         "menu.json: /menu/items/0/item/parameter: the device has no parameter \"x\""},
        {with_items(R"({"type": "mount", "name": "Presets"})"),
         "menu.json: /menu/items/0: expected a member \"folder\""},
        {with_items(AUDIO, R"("favourites": [])"),
         "menu.json: /favourites: expected 1 to 1000 links, found 0"},
        {with_items(AUDIO, R"("favourites": [{"target": "first", "toggle": "1"}, 5])"),
         "menu.json: /favourites/0/toggle@: unknown member \"toggle\"\n"
         "menu.json: /favourites/1: expected an object, found a whole number"},
        {with_home(R"({"target": "first", "toggle": "[mutt] == 1"})"),
         "menu.json:7:115: the device has no parameter \"mutt\""},
        {with_home(R"({"target": "first", "toggle": "1 + [label] == 1"})"),
         "menu.json:7:119: parameter \"label\" is of another type"},
        {with_home(R"({"target": "first", "toggle": "[mute == 1"})"),
         "menu.json:7:115: no ']' closes this '['"},
        {with_home(R"({"target": "first", "toggle": "[] == 1"})"),
         "menu.json:7:115: the device has no parameter \"\""},
        {with_home(R"({"target": "first", "toggle": "[mute] == "})"),
         "menu.json:7:115: not a condition"},
        {with_home(R"({"target": "first", "toggle": "b=[mute]"})"),
         "menu.json:7:115: a toggle yields its result in \"a\": write the condition alone"},
        {with_home(R"({"target": "first", "toggle": "B=2; a=[mute]==B"})"),
         "menu.json:7:115: a name sorts before \"a\", in which toggles yield their result"},
        {with_home(R"({"target": "first", "toggle": "[mute]==1; [mute]==0"})"),
         "menu.json:7:115: only one condition counts: join conditions by && or ||"},
        {with_home(R"({"target": "first", "toggle": "a=1, [mute]==0"})"),
         "menu.json:7:115: only one condition counts: join conditions by && or ||"},
        {with_home(R"-({"target": "first", "toggle": "fmod([mute], 2)==1;"})-"), ""},
        {with_home(R"-({"target": "first", "toggle": "1/([mute])"})-"), ""},
    };
    for (const Error_case& expected : CASES) {
        EXPECT_EQ(error_of(expected.text), placed(expected.text, expected.error)) << expected.text;
    }
}

TEST(MenuLinks, AToggleInNamesBecomesOneInAddresses) {
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

TEST(MenuLinks, AToggleWithoutAParameterIsWarnedOf) {
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

TEST(MenuLinks, AHomescreenLinkFollowsItsToggle) {
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

TEST(MenuLinks, AToggleTakesNumbersBelowZero) {
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

TEST(MenuLinks, ADisplayExpressionMayNotTakeTheTogglesResultAway) {
    const std::string home = R"("homescreen": [{"target": "Gain", "toggle": "[mute] == 1"}])";
    const auto with_expression = [](const std::string& expression) {
        return R"({"type": "range", "name": "Gain", "parameter": "gain 1", "value_format": ")" +
               expression + "\"}";
    };
    const std::string capital = with_items(with_expression("(Half=v/2)"), home);
    EXPECT_EQ(error_of(capital),
              placed(capital,
                     "menu.json: /menu/items/0/value_format: \"Half\" sorts before \"a\", in which "
                     "toggles yield their result"));
    EXPECT_EQ(error_of(with_items(with_expression("1E2*exp(v)"), home)), "");
    EXPECT_EQ(error_of(with_items(with_expression("(Half=v/2)"))), "");
}

TEST(MenuLinks, FavouritesAreAMenuOfTheirOwn) {
    Simulated_menu loaded = simulated_text(
        with_items(AUDIO, R"("favourites": [{"target": "Audio"}, {"target": "Audio/Gain 2"}])"));
    Data_entry& favourites = *loaded.menu->favourites();
    EXPECT_EQ(names_of(favourites), (Lines{"Audio", "Audio.Gain 2"}));
    EXPECT_EQ(link_in(favourites, 1).Get_parent(), &favourites);
    EXPECT_EQ(favourites.Get_parent(), nullptr);
}

class Mounted_presets : public testing::Test {
protected:
    void write(const std::string& name, const std::string& text) {
        std::ofstream(m_folder.file("presets/" + name)) << text;
    }
    Menu& load() {
        Menu_document document(m_folder.file("menu.json"),
                               with_items(R"({"type": "mount", "name": "Presets",
                                              "folder": "presets"},)" +
                                          std::string(AUDIO)));
        m_loaded.menu.reset();
        m_loaded = simulate(document);
        return *m_loaded.menu;
    }
    Link_entry& link() { return link_in(m_loaded.menu->root(), 0); }
    Data_entry* enter() { return neighbour(link(), Data_entry::OPERATION_CHILD); }
    Data_entry* leave() { return neighbour(link(), Data_entry::OPERATION_PARENT); }

    support::Folder m_folder;
    Simulated_menu m_loaded;

private:
    void SetUp() override { std::filesystem::create_directory(m_folder.file("presets")); }
};

TEST_F(Mounted_presets, AreBuiltOnEntryInTheOrderOfTheirNames) {
    write("Sport.json", R"({"gain 1": -10, "label": "Sport"})");
    write("Film.json", R"({"gain 1": -20})");
    write("notes.txt", "nothing");
    Menu& menu = load();
    EXPECT_TRUE(m_loaded.warnings.empty());
    EXPECT_GE(link().isVisible(true, &menu.access()), 0);
    Data_entry* const first = enter();
    ASSERT_NE(first, nullptr);
    EXPECT_STREQ(first->Get_name(), "Film");
    EXPECT_EQ(first->Get_parent(), &link());
    ASSERT_NE(first->Get_next(), nullptr);
    EXPECT_STREQ(first->Get_next()->Get_name(), "Sport");
    EXPECT_EQ(first->Get_next()->Get_next(), nullptr);
    write("Art.json", "{}");
    EXPECT_EQ(leave(), &menu.root());
    EXPECT_STREQ(enter()->Get_name(), "Art");
}

TEST_F(Mounted_presets, WriteTheirValuesWhenTheyAreCommitted) {
    write("Sport.json", R"({"gain 1": -10, "label": "Sport", "100.2": 7})");
    Menu& menu = load();
    Data_entry& preset = *enter();
    EXPECT_EQ(commit(preset, menu.access()), 0);
    EXPECT_EQ(m_loaded.device().integer(100, 1), 3);
    preset.Inc_value(1, 0);
    EXPECT_EQ(display_value(preset, 8), "load");
    EXPECT_EQ(commit(preset, menu.access()), 0);
    EXPECT_EQ(m_loaded.device().integer(100, 1), -10);
    EXPECT_EQ(m_loaded.device().integer(100, 2), 7);
    EXPECT_EQ(m_loaded.device().text(102, 0), "Sport");
    EXPECT_EQ(display_value(preset, 8), "-");
}

TEST_F(Mounted_presets, TellWhichFilesCannotBeUsed) {
    write("Broken.json", "{");
    write("High.json", R"({"mute": 1, "gain 1": 13})");
    write("Other.json", R"({"gain 7": 1})");
    Menu& menu = load();
    Data_entry* preset = enter();
    for (int i = 0; i < 3; ++i, preset = preset->Get_next()) {
        EXPECT_EQ(display_value(*preset, 8), "damaged");
        EXPECT_EQ(preset->Get_access_type(), Data_entry::READ_ONLY);
        EXPECT_EQ(commit(*preset, menu.access()), 0);
    }
    EXPECT_EQ(m_loaded.device().integer(101, 0), 0);
    const std::string folder = m_folder.file("presets");
    EXPECT_EQ(menu.mounted_menus().at(0)->problems(),
              (Lines{folder + "/Broken.json:1:2: Missing a name for object member.",
                     folder + "/High.json:1:23: expected a whole number from -60 to 12, found 13",
                     folder + "/Other.json:1:2: the device has no parameter \"gain 7\""}));
}

TEST_F(Mounted_presets, AFolderThatIsNotThereIsWarnedOfAndLeadsBack) {
    std::filesystem::remove(m_folder.file("presets"));
    Menu& menu = load();
    ASSERT_EQ(m_loaded.warnings.size(), 1U);
    EXPECT_NE(m_loaded.warnings[0].find("warning: there is no folder \"" +
                                        m_folder.file("presets") + "\""),
              std::string::npos);
    testing::internal::CaptureStdout();
    EXPECT_EQ(enter(), &menu.root());
    EXPECT_NE(testing::internal::GetCapturedStdout().find("Dynamic menu creation failed"),
              std::string::npos);
}

TEST_F(Mounted_presets, LeaveNothingBehindHoweverOftenTheyAreVisited) {
    write("Sport.json", R"({"gain 1": -10})");
    write("Film.json", R"({"gain 1": -20})");
    Menu& menu = load();
    const Mounted_menu& mounted = *menu.mounted_menus().at(0);
    const size_t entries = menu.entry_count();
    for (int visit = 0; visit < 10000; ++visit) {
        ASSERT_NE(enter(), nullptr);
        ASSERT_EQ(mounted.entry_count(), 2U);
        ASSERT_EQ(leave(), &menu.root());
        ASSERT_EQ(mounted.entry_count(), 0U);
    }
    EXPECT_EQ(menu.entry_count(), entries);
}

}  // namespace
}  // namespace frontpanel
