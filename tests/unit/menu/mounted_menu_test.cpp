#include <frontpanel_menu/mounted_menu.h>
#include <frontpanel_menu/shown_value.h>

#include <filesystem>
#include <fstream>

#include "support/folder.h"
#include "unit/menu/links_fixture.h"

namespace frontpanel {
namespace {

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
    EXPECT_EQ(shown_value(preset), "load");
    EXPECT_EQ(commit(preset, menu.access()), 0);
    EXPECT_EQ(m_loaded.device().integer(100, 1), -10);
    EXPECT_EQ(m_loaded.device().integer(100, 2), 7);
    EXPECT_EQ(m_loaded.device().text(102, 0), "Sport");
    EXPECT_EQ(shown_value(preset), "-");
}

TEST_F(Mounted_presets, TellWhichFilesCannotBeUsed) {
    write("Broken.json", "{");
    write("High.json", R"({"mute": 1, "gain 1": 13})");
    write("Other.json", R"({"gain 7": 1,
        "mute": 5})");
    Menu& menu = load();
    Data_entry* preset = enter();
    for (int i = 0; i < 3; ++i, preset = preset->Get_next()) {
        EXPECT_EQ(shown_value(*preset), "damaged");
        EXPECT_EQ(preset->Get_access_type(), Data_entry::READ_ONLY);
        EXPECT_EQ(commit(*preset, menu.access()), 0);
        EXPECT_NE(preset_of(*preset)->damage().line, "");
    }
    EXPECT_EQ(preset_of(*enter())->damage().brief(),
              "Broken.json:1:2: Missing a name for object member.");
    EXPECT_EQ(m_loaded.device().integer(101, 0), 0);
    const std::string folder = m_folder.file("presets");
    EXPECT_EQ(menu.mounted_menus().at(0)->problems(),
              (Lines{folder + "/Broken.json:1:2: Missing a name for object member.",
                     folder + "/High.json:1:23: expected a whole number from -60 to 12, found 13",
                     folder + "/Other.json:1:2: the device has no parameter \"gain 7\"",
                     folder + "/Other.json:2:17: expected a whole number from 0 to 1, found 5"}));
    EXPECT_EQ(menu.mounted_menus().at(0)->mistakes(), menu.mounted_menus().at(0)->problems());
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
