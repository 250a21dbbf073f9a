// Presets as a person loads them: one question, all or nothing, and what became of it.
#include <filesystem>
#include <fstream>

#include "support/folder.h"
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr Lcd_size SIZES[] = {{16, 2}, {20, 2}, {20, 4}, {40, 4}};
constexpr uint32_t LIMIT = 1;
constexpr uint32_t LEVEL = 2;
constexpr uint32_t LOCK = 3;
constexpr uint32_t TITLE = 4;

const std::string TEXT = R"({"device": {"parameters": [
    {"name": "limit", "pid": 1, "type": "integer", "min": 0, "max": 100, "value": 50},
    {"name": "level", "pid": 2, "type": "integer", "min": 0, "max": 100, "value": 10},
    {"name": "lock", "pid": 3, "type": "integer", "min": 0, "max": 1, "value": 0},
    {"name": "title", "pid": 4, "type": "text", "length": 8, "value": "none"}]},
    "menu": {"name": "Main", "items": [
        {"type": "mount", "name": "Presets", "folder": "FOLDER"},
        {"type": "range", "name": "Limit", "parameter": "limit",
         "binding": "warn \"limit {value}\" if value > 80"},
        {"type": "range", "name": "Level", "parameter": "level",
         "binding": "range 0..[limit]; warn \"loud: {value}\" if value > 70; access read-only if [lock] == 1"},
        {"type": "text", "name": "Title", "parameter": "title"}]}})";

class Preset_screen : public testing::TestWithParam<Lcd_size> {
protected:
    void load_with(const std::string& preset) {
        std::filesystem::create_directory(m_folder.file("presets"));
        std::ofstream(m_folder.file("presets/Sport.json")) << preset;
        std::string text = TEXT;
        text.replace(text.find("FOLDER"), 6, m_folder.file("presets"));
        m_panel.emplace(text, GetParam());
        panel().device().clear_records();
        panel().press(Key::SELECT, 2).press(Key::UP).press(Key::SELECT);
    }
    Menu_panel& panel() { return *m_panel; }
    bool shows(const std::string& text) {
        return shown_in_time(panel()).find(text) != std::string::npos;
    }
    int number(uint32_t pid) { return panel().device().integer(pid, 0).value(); }
    std::string title() { return panel().device().text(TITLE, 0).value(); }
    void expect_untouched() {
        EXPECT_EQ(number(LIMIT), 50);
        EXPECT_EQ(number(LEVEL), 10);
        EXPECT_EQ(number(LOCK), 0);
        EXPECT_EQ(title(), "none");
    }

    support::Folder m_folder;
    std::optional<Menu_panel> m_panel;
};

TEST_P(Preset_screen, SaysThatItIsLoaded) {
    load_with(R"({"level": 60, "limit": 70, "title": "Sport"})");
    EXPECT_TRUE(shows("Sport loaded"));
    EXPECT_EQ(number(LEVEL), 60);
    EXPECT_EQ(number(LIMIT), 70);
    EXPECT_EQ(title(), "Sport");
    panel().press(Key::SELECT).tick();
    EXPECT_FALSE(shows("loaded"));
    EXPECT_EQ(number(LEVEL), 60);
}

TEST_P(Preset_screen, AsksAllItsWarningsAsOneQuestion) {
    load_with(R"({"limit": 90, "level": 75})");
    expect_untouched();
    EXPECT_TRUE(shows("limit 90"));
    panel().press(Key::SELECT);
    EXPECT_TRUE(shows("loud: 75"));
    expect_untouched();
    panel().press(Key::SELECT);
    EXPECT_TRUE(shows("Sport loaded"));
    EXPECT_EQ(number(LEVEL), 75);
}

TEST_P(Preset_screen, WritesNothingWhenAWarningIsNotAccepted) {
    load_with(R"({"limit": 90, "level": 75})");
    panel().press(Key::SELECT).press(Key::BACK);
    expect_untouched();
    EXPECT_FALSE(shows("loud"));
    panel().press(Key::BACK).tick();
    expect_untouched();
    EXPECT_TRUE(panel().device().writes().empty());
    EXPECT_FALSE(shows("load"));
}

TEST_P(Preset_screen, NamesTheValueThatIsNotAllowed) {
    load_with(R"({"title": "Sport", "level": 60})");
    EXPECT_TRUE(shows("not loaded"));
    EXPECT_TRUE(shows("Level 60: allowed: 0..50"));
    expect_untouched();
    EXPECT_TRUE(panel().device().writes().empty());
}

TEST_P(Preset_screen, AValueThatARuleMakesReadOnlyIsNotWritten) {
    load_with(R"({"lock": 1, "level": 20})");
    EXPECT_TRUE(shows("Level 20: read only"));
    expect_untouched();
}

TEST_P(Preset_screen, PutsBackWhatWasWrittenWhenTheDeviceRefusesAValue) {
    std::filesystem::create_directory(m_folder.file("presets"));
    load_with(R"({"limit": 5, "level": 4, "title": "Sport"})");
    EXPECT_TRUE(shows("Sport loaded"));
    panel().device().set_integer(LIMIT, 0, 50);
    panel().device().set_integer(LEVEL, 0, 10);
    panel().device().set_text(TITLE, 0, "none");
    panel().press(Key::SELECT).tick();
    panel().fail(Memory_device::Operation_kind::WRITE, TITLE);
    panel().press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_TRUE(shows("not loaded"));
    EXPECT_TRUE(shows("write failed"));
    EXPECT_TRUE(panel().leds().alarm);
    expect_untouched();
    panel().repair();
    panel().press(Key::SELECT).tick();
    expect_untouched();
}

INSTANTIATE_TEST_SUITE_P(Sizes, Preset_screen, testing::ValuesIn(SIZES));

}  // namespace
}  // namespace frontpanel
