// Links, the homescreen and the favourites on the panel.
#include "navigation/navigation.h"

#include "support/panel_fixture.h"
#include "unit/eval/evaluation.h"

namespace frontpanel {
namespace {

constexpr const char* PARAMETERS = R"(
    {"name": "gain 1", "pid": 100, "index": [1], "type": "integer", "min": -60, "max": 12, "value": 3},
    {"name": "gain 2", "pid": 100, "index": [2], "type": "integer", "min": -60, "max": 12, "value": 4},
    {"name": "mute", "pid": 101, "type": "integer", "min": 0, "max": 1, "value": 0},
    {"name": "alarm", "pid": 102, "type": "integer", "min": 0, "max": 1, "value": 0},
    {"name": "host", "pid": 103, "type": "text", "length": 15, "value": "127.0.0.1"})";

constexpr const char* AUDIO = R"({"type": "node", "name": "Audio", "id": "audio",
    "binding": "visible if [102] == 0", "items": [
    {"type": "range", "name": "Gain 1", "parameter": "gain 1", "id": "first", "format": "%d dB",
     "shortcut": 1},
    {"type": "range", "name": "Gain 2", "parameter": "gain 2", "id": "second", "format": "%d dB"}]})";
constexpr const char* MUTE =
    R"({"type": "range", "name": "Mute", "parameter": "mute", "id": "mute", "format": "0:off,1:on,%d"})";
const Lcd_size SIZE{24, 2};
const Lines AUDIO_LINES{">Gain 1             3 dB", " Gain 2             4 dB"};

std::string menu_of(const std::string& items, const std::string& members = "") {
    return R"({"device": {"parameters": [)" + std::string(PARAMETERS) +
           R"(]}, "menu": {"name": "Main", "items": [)" + items + "]}" +
           (members.empty() ? "" : ", ") + members + "}";
}

std::string linked(const std::string& target, const std::string& members = "") {
    return R"({"type": "link", "target": ")" + target + "\"" + (members.empty() ? "" : ", ") +
           members + "}";
}

// The audio menu, the mute, and a link.
std::string menu_with_link(const std::string& target, const std::string& members = "") {
    return menu_of(std::string(AUDIO) + "," + MUTE + "," + linked(target, members));
}

TEST(Links, ShowTheirPrefixedNamesAndTheValuesOfTheirTargets) {
    Menu_panel panel(menu_with_link("second"), SIZE);
    panel.press(Key::DOWN, 2);
    EXPECT_EQ(panel.lines(), (Lines{" Mute                off", ">Audio.Gain 2       4 dB"}));
    panel.device().set_integer(100, 2, 9);
    panel.tick();
    EXPECT_EQ(panel.lines()[1], ">Audio.Gain 2       9 dB");
}

TEST(Links, EditTheirTargetsUnderTheirOwnNames) {
    Menu_panel panel(menu_with_link("second"), SIZE);
    panel.press(Key::DOWN, 2).press(Key::SELECT).press(Key::UP);
    EXPECT_EQ(panel.lines(), (Lines{"Audio.Gain 2            ", "5 dB                    "}));
    EXPECT_TRUE(panel.leds().edit);
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.device().integer(100, 2), 5);
    EXPECT_EQ(panel.lines(), (Lines{" Mute                off", ">Audio.Gain 2       5 dB"}));
}

TEST(Links, ShowWhetherTheirAddressAnswersUnderTheirOwnNames) {
    Menu_panel panel(menu_of(
                         R"({"type": "node", "name": "Net", "items": [
               {"type": "address", "name": "Host", "parameter": "host", "id": "host"}]},)" +
                         linked("host")),
                     SIZE);
    panel.press(Key::DOWN).press(Key::SELECT);
    const std::string title = panel.lines()[0];
    EXPECT_TRUE(title == "Host              online" || title == "Host             offline")
        << title;
}

TEST(Links, OpenMenusThatAreLeftToTheLink) {
    Menu_panel panel(menu_with_link("audio"), SIZE);
    panel.press(Key::DOWN, 2);
    EXPECT_EQ(panel.lines()[1], ">Audio               ...");
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), AUDIO_LINES);
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{" Mute                off", ">Audio               ..."}));
}

TEST(Links, ThatSkipLeaveAMenuToItsOwnPlace) {
    Menu_panel panel(menu_with_link("audio", R"("behaviour": "skip")"), SIZE);
    panel.press(Key::DOWN, 2).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), AUDIO_LINES);
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{">Audio               ...", " Mute                off"}));
}

TEST(Links, ThatSkipLeaveAnEditorToTheTargetsMenu) {
    for (const Key::Kind key : {Key::SELECT, Key::BACK}) {
        Menu_panel panel(menu_with_link("second", R"("behaviour": "skip")"), SIZE);
        panel.press(Key::DOWN, 2).press(Key::SELECT).press(key);
        EXPECT_EQ(panel.lines(), (Lines{" Gain 1             3 dB", ">Gain 2             4 dB"}));
        panel.press(Key::BACK);
        EXPECT_EQ(panel.lines()[0], ">Audio               ...");
    }
}

TEST(Links, LeadWhereTheirEscapeNodesTell) {
    const std::string escapes =
        R"("behaviour": "skip", "escape": {"select": "audio", "escape": "mute", "redraw": "first"})";
    Menu_panel panel(menu_with_link("second", escapes), SIZE);
    panel.press(Key::DOWN, 2).press(Key::SELECT, 2);
    EXPECT_EQ(panel.lines(), AUDIO_LINES);
    panel.press(Key::BACK).press(Key::DOWN, 2).press(Key::SELECT).press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{" Audio               ...", ">Mute                off"}));
}

TEST(Links, OfMenusLeadToTheirEscapeNodeWhenTheyAreLeft) {
    Menu_panel panel(menu_with_link("audio", R"("escape": {"escape": "mute"})"), SIZE);
    panel.press(Key::DOWN, 2).press(Key::SELECT).press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{" Audio               ...", ">Mute                off"}));
}

TEST(Links, WhoseEscapeNodeIsHiddenBehaveAsWithoutIt) {
    Menu_panel panel(menu_of(std::string(AUDIO) + "," + MUTE + "," +
                             linked("mute", R"("escape": {"select": "audio"})")),
                     SIZE);
    panel.press(Key::DOWN, 2).press(Key::SELECT);
    panel.device().set_integer(102, 0, 1);
    panel.tick().press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{" Mute                off", ">Mute                off"}));
}

TEST(Links, ThatAreHiddenWhileTheyAreEditedLeadToTheirRedrawNode) {
    const std::string text = menu_of(std::string(AUDIO) + "," + MUTE + "," +
                                     R"({"type": "node", "name": "Mine", "items": [)" +
                                     linked("second", R"("escape": {"redraw": "mute"})") + "]}");
    Menu_panel panel(text, SIZE);
    panel.press(Key::DOWN, 2).press(Key::SELECT, 2).press(Key::UP);
    panel.root().Get_child()->Get_child()->Get_next()->Set_invisible();
    panel.tick();
    EXPECT_EQ(panel.lines(), (Lines{"Audio.Gain 2            ", "hidden: edit ended      "}));
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{" Audio               ...", ">Mute                off"}));
    EXPECT_EQ(panel.device().integer(100, 2), 4);
}

TEST(Links, ToAMenuThatIsHiddenAreLeft) {
    Menu_panel panel(menu_with_link("audio"), SIZE);
    panel.press(Key::DOWN, 2).press(Key::SELECT);
    panel.device().set_integer(102, 0, 1);
    panel.tick();
    EXPECT_EQ(panel.lines(), (Lines{">Mute                off", "                        "}));
}

TEST(Links, ABridgeEditsWhatItOwns) {
    Menu_panel panel(menu_of(std::string(MUTE) + R"(, {"type": "bridge", "id": "bridge",
        "item": {"type": "range", "name": "Second", "parameter": "gain 2", "format": "%d dB"}})"),
                     SIZE);
    panel.press(Key::DOWN);
    EXPECT_EQ(panel.lines()[1], ">Second             4 dB");
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines()[0], "Second                  ");
    panel.press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.device().integer(100, 2), 5);
}

TEST(Links, AShortcutJumpsToALinksPlace) {
    Menu_panel panel(menu_with_link("second", R"("shortcut": 7)"), SIZE);
    panel.shortcut(7);
    EXPECT_EQ(panel.lines(), (Lines{" Mute                off", ">Audio.Gain 2       4 dB"}));
}

TEST(Links, RoundInACircleEndSomewhere) {
    Menu_panel panel(menu_of(R"({"type": "node", "name": "One", "id": "one", "items": [)" +
                             linked("one") + "," + MUTE + "]}"),
                     SIZE);
    panel.press(Key::SELECT, 1000);
    EXPECT_EQ(panel.lines(), (Lines{"One                     ", "too many menus open     "}));
    panel.press(Key::SELECT).press(Key::BACK, 1000);
    EXPECT_EQ(panel.lines()[0], ">One                 ...");
}

// ---- homescreen and favourites

// Other expressions of the process may have used names that sort before the toggles'.
class Homescreen : public testing::Test {
    void SetUp() override { evaluation::forget_variables(); }
};

constexpr const char* HOME = R"("homescreen": [
    {"target": "first", "toggle": "[mute] == 0"},
    {"target": "second", "toggle": "[alarm] == 1"},
    {"target": "mute", "toggle": "[mute] == 1"}])";
constexpr const char* FAVOURITES = R"("favourites": [{"target": "second"}, {"target": "mute"}])";
const std::string ITEMS = std::string(AUDIO) + "," + MUTE;

TEST_F(Homescreen, ShowsValuesWithoutACursorWhileTheirTogglesAreOn) {
    Menu_panel panel(menu_of(ITEMS, HOME), SIZE);
    EXPECT_EQ(panel.lines(), (Lines{" Audio.Gain 1       3 dB", "                        "}));
    panel.device().set_integer(101, 0, 1);
    panel.tick();
    EXPECT_EQ(panel.lines(), (Lines{" Mute                 on", "                        "}));
    panel.device().set_integer(101, 0, 0);
    panel.device().set_integer(100, 1, -7);
    panel.tick();
    EXPECT_EQ(panel.lines()[0], " Audio.Gain 1      -7 dB");
}

TEST_F(Homescreen, ShowsTheMenusNameWhileNoToggleIsOn) {
    Menu_panel panel(
        menu_of(ITEMS, R"("homescreen": [{"target": "first", "toggle": "[mute] == 1"}])"), SIZE);
    EXPECT_EQ(panel.lines(), (Lines{" Main                   ", "                        "}));
    panel.press(Key::DOWN);
    EXPECT_EQ(panel.lines(), (Lines{" Main                   ", "                        "}));
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines()[0], ">Audio               ...");
}

TEST_F(Homescreen, UsesEveryLineForValues) {
    Menu_panel panel(menu_of(ITEMS, R"("homescreen": [{"target": "first"}, {"target": "second"},
                                                 {"target": "mute"}])"),
                     {24, 3});
    EXPECT_EQ(panel.lines(), (Lines{" Audio.Gain 1       3 dB", " Audio.Gain 2       4 dB",
                                    " Mute                off"}));
}

TEST_F(Homescreen, SelectOpensTheMenuAndBackReturns) {
    Menu_panel panel(menu_of(ITEMS, HOME), SIZE);
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Audio               ...", " Mute                off"}));
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{" Audio.Gain 1       3 dB", "                        "}));
}

TEST_F(Homescreen, TheEncoderBringsOutACursorThatBackPutsAway) {
    Menu_panel panel(menu_of(ITEMS, HOME), SIZE);
    panel.press(Key::DOWN);
    EXPECT_EQ(panel.lines()[0], ">Audio.Gain 1       3 dB");
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.device().integer(100, 1), 4);
    EXPECT_EQ(panel.lines()[0], ">Audio.Gain 1       4 dB");
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines()[0], " Audio.Gain 1       4 dB");
}

TEST_F(Homescreen, AnEditorEndsWhenTheToggleGoesOff) {
    Menu_panel panel(menu_of(ITEMS, HOME), SIZE);
    panel.press(Key::DOWN).press(Key::SELECT);
    panel.device().set_integer(101, 0, 1);
    panel.tick();
    EXPECT_EQ(panel.lines(), (Lines{"Audio.Gain 1            ", "hidden: edit ended      "}));
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines()[0], ">Mute                 on");
}

TEST_F(Homescreen, AToggleThatACommitChangesShowsAtOnce) {
    Menu_panel panel(menu_of(ITEMS, R"("homescreen": [{"target": "mute"},
                                   {"target": "first", "toggle": "[mute] == 1"}])"),
                     SIZE);
    panel.press(Key::DOWN).press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Mute                 on", " Audio.Gain 1       3 dB"}));
}

TEST_F(Homescreen, AnUntouchedPanelGoesThere) {
    Menu_panel panel(menu_of(ITEMS, HOME), SIZE);
    panel.press(Key::SELECT, 3).press(Key::UP);
    panel.controller().receive(FrontPanel::UserInputTimeout);
    EXPECT_EQ(panel.lines(), (Lines{" Audio.Gain 1       3 dB", "                        "}));
    EXPECT_EQ(panel.device().integer(100, 1), 3);
}

TEST_F(Homescreen, AShortcutJumpsIntoTheMenuBelowIt) {
    Menu_panel panel(menu_of(ITEMS, HOME), SIZE);
    panel.shortcut(1);
    EXPECT_EQ(panel.lines(), AUDIO_LINES);
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines()[0], ">Audio               ...");
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines()[0], " Audio.Gain 1       3 dB");
}

TEST_F(Homescreen, BackAtTheTopDoesNothing) {
    Menu_panel with_home(menu_of(ITEMS, std::string(HOME) + "," + FAVOURITES), SIZE);
    with_home.press(Key::BACK, 3);
    EXPECT_EQ(with_home.lines()[0], " Audio.Gain 1       3 dB");
    Menu_panel without_home(menu_of(ITEMS, FAVOURITES), SIZE);
    without_home.press(Key::DOWN).press(Key::BACK, 3);
    EXPECT_EQ(without_home.lines(),
              (Lines{" Audio               ...", ">Mute                off"}));
}

const Lines FAVOURITE_LINES{">Audio.Gain 2       4 dB", " Mute                off"};

TEST(Favourites, HaveAKeyOfTheirOwnAndLeadBackToWhereItWasPressed) {
    Menu_panel panel(menu_of(ITEMS, std::string(HOME) + "," + FAVOURITES), SIZE);
    panel.press(Key::FAVOURITES);
    EXPECT_EQ(panel.lines(), FAVOURITE_LINES);
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines()[0], " Audio.Gain 1       3 dB");
    panel.press(Key::SELECT, 2).press(Key::DOWN).press(Key::FAVOURITES);
    EXPECT_EQ(panel.lines(), FAVOURITE_LINES);
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{" Gain 1             3 dB", ">Gain 2             4 dB"}));
}

TEST(Favourites, ThatAreOpenAreGoneBackTo) {
    Menu_panel panel(menu_of(ITEMS, std::string(HOME) + R"(, "favourites": [{"target": "audio"}])"),
                     SIZE);
    panel.press(Key::SELECT).press(Key::DOWN).press(Key::FAVOURITES, 3).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), AUDIO_LINES);
    panel.press(Key::FAVOURITES);
    EXPECT_EQ(panel.lines()[0], ">Audio               ...");
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{" Audio               ...", ">Mute                off"}));
}

TEST(Favourites, LeaveTheHomescreensCursorWhereItWas) {
    Menu_panel panel(menu_of(ITEMS, std::string(HOME) + "," + FAVOURITES), SIZE);
    panel.press(Key::DOWN).press(Key::FAVOURITES).press(Key::BACK);
    EXPECT_EQ(panel.lines()[0], ">Audio.Gain 1       3 dB");
}

TEST(Favourites, TheKeyDoesNothingToAnEditedValue) {
    Menu_panel panel(menu_of(ITEMS, FAVOURITES), SIZE);
    panel.press(Key::DOWN).press(Key::SELECT).press(Key::UP).press(Key::FAVOURITES);
    EXPECT_EQ(panel.lines(), (Lines{"Mute                    ", "on                      "}));
}

TEST(Favourites, AMenuWithoutThemSaysSo) {
    Menu_panel panel(menu_of(ITEMS), SIZE);
    panel.press(Key::FAVOURITES);
    EXPECT_EQ(panel.lines(), (Lines{"Favourites              ", "none in this menu       "}));
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines()[0], ">Audio               ...");
}

TEST(Favourites, AreAmongTheKeysOfAMenuThatHasThem) {
    const Key_uses with = Menu_panel(menu_of(ITEMS, FAVOURITES), SIZE).controller().draw().keys;
    EXPECT_TRUE(with.has_favourites);
    EXPECT_EQ(with.shortcuts, std::vector<int>{1});
    const Key_uses without = Menu_panel(menu_of(MUTE), SIZE).controller().draw().keys;
    EXPECT_FALSE(without.has_favourites);
    EXPECT_EQ(without.shortcuts, std::vector<int>());
}

TEST(Favourites, ShowTheirTitleOnThreeLinesAndMore) {
    for (const auto& [size, title] :
         {std::pair<Lcd_size, std::string>{{20, 3}, "Favourites       1/2"},
          {{20, 4}, "Favourites       1/2"},
          {{40, 4}, "Favourites                           1/2"}}) {
        Menu_panel panel(menu_of(ITEMS, FAVOURITES), size);
        panel.press(Key::FAVOURITES);
        EXPECT_EQ(panel.lines()[0], title);
    }
}

TEST(Favourites, OpenAndEditAsLinksDo) {
    Menu_panel panel(menu_of(ITEMS, R"("favourites": [{"target": "audio"}, {"target": "mute"}])"),
                     SIZE);
    panel.press(Key::FAVOURITES).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), AUDIO_LINES);
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{">Audio               ...", " Mute                off"}));
    panel.press(Key::DOWN).press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines()[1], ">Mute                 on");
}

}  // namespace
}  // namespace frontpanel
