// Mounted menus on the panel: there while they are shown, gone however they are left.
#include <filesystem>
#include <fstream>

#include "support/folder.h"
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

const std::string TEXT = R"({"device": {"parameters": [
    {"name": "gain", "pid": 100, "type": "integer", "min": -60, "max": 12, "value": 3},
    {"name": "show", "pid": 101, "type": "integer", "min": 0, "max": 1, "value": 1}]},
    "menu": {"name": "Main", "items": [
        {"type": "mount", "name": "Presets", "folder": "FOLDER", "binding": "visible if [101] == 1"},
        {"type": "range", "name": "Gain", "parameter": "gain", "shortcut": 1}]}})";

class Mounted_menu_visits : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directory(m_folder.file("presets"));
        write("Film.json", R"({"gain": -20})");
        write("Hide.json", R"({"show": 0})");
        std::string text = TEXT;
        text.replace(text.find("FOLDER"), 6, m_folder.file("presets"));
        m_panel.emplace(text);
    }
    void write(const std::string& name, const std::string& text) {
        std::ofstream(m_folder.file("presets/" + name)) << text;
    }
    size_t built() { return m_panel->menu().mounted_menus().at(0)->entry_count(); }
    Menu_panel& panel() { return *m_panel; }
    void capture() { testing::internal::CaptureStdout(); }
    static std::string captured() { return testing::internal::GetCapturedStdout(); }

    const Lines TOP{">Presets         ...", " Gain              3"};
    const Lines PRESETS{">Film              -", " Hide              -"};
    support::Folder m_folder;
    std::optional<Menu_panel> m_panel;
};

TEST_F(Mounted_menu_visits, BuildOnEntryAndDestroyOnBack) {
    EXPECT_EQ(panel().lines(), TOP);
    EXPECT_EQ(built(), 0U);
    panel().press(Key::SELECT);
    EXPECT_EQ(panel().lines(), PRESETS);
    EXPECT_EQ(built(), 2U);
    panel().press(Key::BACK);
    EXPECT_EQ(panel().lines(), TOP);
    EXPECT_EQ(built(), 0U);
}

TEST_F(Mounted_menu_visits, KeepTheMenuThatWasBuiltWhileItIsShown) {
    panel().press(Key::SELECT);
    write("Art.json", "{}");
    panel().tick().tick();
    EXPECT_EQ(panel().lines(), PRESETS);
    panel().press(Key::BACK).press(Key::SELECT);
    EXPECT_EQ(panel().lines(), (Lines{">Art               -", " Film              -"}));
}

TEST_F(Mounted_menu_visits, EndWithAJumpAndWithAnUntouchedPanel) {
    panel().press(Key::SELECT).shortcut(1);
    EXPECT_EQ(panel().lines(), (Lines{" Presets         ...", ">Gain              3"}));
    EXPECT_EQ(built(), 0U);
    panel().press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(built(), 2U);
    panel().controller().receive(FrontPanel::UserInputTimeout);
    EXPECT_EQ(panel().lines(), TOP);
    EXPECT_EQ(built(), 0U);
}

TEST_F(Mounted_menu_visits, AnUntouchedPanelDropsAnEditorThatIsOpenThere) {
    panel().press(Key::SELECT, 2).press(Key::UP);
    EXPECT_EQ(panel().lines(), (Lines{"Film             2/2", "load                "}));
    panel().controller().receive(FrontPanel::UserInputTimeout);
    EXPECT_EQ(panel().lines(), TOP);
    EXPECT_EQ(built(), 0U);
    EXPECT_EQ(panel().device().integer(100, 0), 3);
}

TEST_F(Mounted_menu_visits, APresetIsLoadedFromItsEditor) {
    panel().press(Key::SELECT, 2).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel().lines(), (Lines{"Presets             ", "Film loaded         "}));
    panel().press(Key::SELECT);
    EXPECT_EQ(panel().lines(), PRESETS);
    EXPECT_EQ(panel().device().integer(100, 0), -20);
}

TEST_F(Mounted_menu_visits, APresetThatHidesItsOwnMenuEndsInTheMenuAround) {
    panel()
        .press(Key::SELECT)
        .press(Key::DOWN)
        .press(Key::SELECT)
        .press(Key::UP)
        .press(Key::SELECT);
    EXPECT_EQ(panel().lines(), (Lines{"Presets             ", "Hide loaded         "}));
    panel().press(Key::SELECT);
    EXPECT_EQ(panel().lines(), (Lines{">Gain              3", "                    "}));
    EXPECT_EQ(built(), 0U);
    EXPECT_EQ(panel().device().integer(101, 0), 0);
}

TEST_F(Mounted_menu_visits, AMenuThatIsHiddenFromOutsideIsLeftWithItsEditor) {
    panel().press(Key::SELECT, 2).press(Key::UP);
    panel().device().set_integer(101, 0, 0);
    panel().tick();
    EXPECT_EQ(panel().lines(), (Lines{"Film                ", "hidden: edit ended  "}));
    EXPECT_EQ(built(), 0U);
    panel().press(Key::SELECT);
    EXPECT_EQ(panel().lines(), (Lines{">Gain              3", "                    "}));
    EXPECT_EQ(panel().device().integer(100, 0), 3);
}

TEST_F(Mounted_menu_visits, APresetOfMoreThan64KibibytesShowsAsDamaged) {
    const std::string largest = "{" + std::string(64 * 1024 - 2, ' ') + "}";
    write("Film.json", largest);
    write("Hide.json", largest + " ");
    panel().press(Key::SELECT);
    EXPECT_EQ(panel().lines(), (Lines{">Film              -", " Hide=       damaged"}));
    EXPECT_EQ(panel().menu().mounted_menus().at(0)->problems(),
              Lines{m_folder.file("presets/Hide.json") + ": is larger than 64 KiB"});
}

// The log has the whole path, the notice what fits the person who looks at the display.
TEST_F(Mounted_menu_visits, ADamagedPresetSaysWhatIsWrongWithIt) {
    write("Film.json", "{\n  \"show\": 7\n}");
    panel().press(Key::SELECT);
    EXPECT_EQ(panel().lines(), (Lines{">Film=       damaged", " Hide              -"}));
    capture();
    panel().press(Key::SELECT);
    EXPECT_EQ(captured(), m_folder.file("presets/Film.json") +
                              ":2:11: expected a whole number from 0 to 1, found 7\n");
    EXPECT_EQ(shown_in_time(panel()),
              "Film             1/5\n"
              "damaged: Film.json:2:11: expected a whole number from 0 "
              "to 1, found 7 ");
    panel().press(Key::SELECT);
    EXPECT_EQ(panel().lines(), (Lines{">Film=       damaged", " Hide              -"}));
    EXPECT_EQ(panel().device().integer(101, 0), 1);
}

TEST_F(Mounted_menu_visits, AFolderThatIsGoneIsTold) {
    std::filesystem::remove_all(m_folder.file("presets"));
    capture();
    panel().press(Key::SELECT);
    EXPECT_NE(captured().find("Dynamic menu creation failed"), std::string::npos);
    EXPECT_EQ(panel().lines(), (Lines{"Presets             ", "nothing there       "}));
    panel().press(Key::SELECT);
    EXPECT_EQ(panel().lines(), TOP);
}

TEST_F(Mounted_menu_visits, AFolderThatGoesWhileItIsShownLeavesTheMenuUsable) {
    panel().press(Key::SELECT);
    std::filesystem::remove_all(m_folder.file("presets"));
    panel().tick();
    EXPECT_EQ(panel().lines(), PRESETS);
    panel().press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel().device().integer(100, 0), -20);
    panel().press(Key::SELECT).press(Key::BACK);  // the notice, the menu
    capture();
    panel().press(Key::SELECT);
    captured();
    EXPECT_EQ(panel().lines()[1], "nothing there       ");
}

TEST_F(Mounted_menu_visits, LeaveNothingBehindHoweverOftenAndByWhicheverWay) {
    const size_t entries = panel().menu().entry_count();
    for (int visit = 0; visit < 10000; ++visit) {
        panel().press(Key::SELECT);
        ASSERT_EQ(built(), 2U);
        switch (visit % 3) {
            case 0:
                panel().press(Key::BACK);
                break;
            case 1:
                panel().shortcut(1).press(Key::UP);
                break;
            default:
                panel().press(Key::SELECT).press(Key::UP);
                panel().controller().receive(FrontPanel::UserInputTimeout);
                break;
        }
        ASSERT_EQ(built(), 0U);
    }
    EXPECT_EQ(panel().menu().entry_count(), entries);
    EXPECT_EQ(panel().lines(), TOP);
}

// The builder and its counterpart come in pairs, also when the panel ends inside the menu.
TEST(Mount_links, AreLeftWhenThePanelEnds) {
    Simulated_menu loaded = simulated_text(
        menu_text(R"({"pid": 100, "type": "integer", "min": 0, "max": 9, "value": 3})",
                  R"({"type": "range", "name": "Gain", "pid": 100})"));
    Data_entry& root = loaded.menu->root();
    Data_entry& gain = *root.Get_child();
    Link_entry link(&gain);
    std::vector<std::string> calls;
    link.setAsMountLink(
        [&](MenuControl*) {
            calls.emplace_back("create");
            return &gain;
        },
        [&](MenuControl*) {
            calls.emplace_back("destroy");
            return static_cast<Data_entry*>(nullptr);
        });
    link.Set_parent(&root);
    {
        Menu_path path(root);
        EXPECT_EQ(path.enter(link), Menu_path::Entered::YES);
        EXPECT_EQ(path.enter(link), Menu_path::Entered::YES);
        EXPECT_EQ(path.steps().size(), 2U);
        EXPECT_EQ(calls, (Lines{"create"}));
    }
    EXPECT_EQ(calls, (Lines{"create", "destroy"}));
}

}  // namespace
}  // namespace frontpanel
