// A number with gaps between its allowed ranges, as a person edits it.
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr Lcd_size SIZES[] = {{16, 2}, {20, 2}, {20, 4}, {40, 4}};
constexpr uint32_t DELAY = 5;
constexpr uint32_t MODE = 6;

std::string delay_menu(const std::string& members, int value) {
    return menu_text(
        R"({"name": "delay", "pid": 5, "type": "integer", "min": 0, "max": 300, "value": )" +
            std::to_string(value) + R"(},
                     {"name": "mode", "pid": 6, "type": "integer", "min": 0, "max": 2, "value": 1})",
        R"({"type": "range", "name": "Delay", "parameter": "delay", )" + members + "}");
}

constexpr const char* BY_ITEM = R"("ranges": [{"min": 0, "max": 80}, {"min": 120, "max": 240}])";
constexpr const char* BY_RULE = R"("binding": "range 0..80, 120..240 if [mode] == 1")";

// Whether some line shows the text, which is no part of a longer number.
bool shows(Menu_panel& panel, const std::string& text) {
    for (const std::string& line : panel.lines()) {
        const size_t at = line.find(text);
        const auto is_digit = [&](size_t place) {
            return place < line.size() && line[place] >= '0' && line[place] <= '9';
        };
        if (at != std::string::npos && !is_digit(at + text.size()) &&
            (at == 0 || !is_digit(at - 1))) {
            return true;
        }
    }
    return false;
}

class Gapped_screen : public testing::TestWithParam<Lcd_size> {};

TEST_P(Gapped_screen, StepsGoFromRangeToRange) {
    for (const char* const members : {BY_ITEM, BY_RULE}) {
        SCOPED_TRACE(members);
        Menu_panel panel(delay_menu(members, 79), GetParam());
        panel.press(Key::SELECT);
        EXPECT_TRUE(shows(panel, "79"));
        panel.press(Key::UP);
        EXPECT_TRUE(shows(panel, "80"));
        panel.press(Key::UP);
        EXPECT_TRUE(shows(panel, "120"));
        panel.press(Key::DOWN);
        EXPECT_TRUE(shows(panel, "80"));
        panel.press(Key::COARSER).press(Key::UP);
        EXPECT_TRUE(shows(panel, "120"));
        panel.press(Key::SELECT);
        EXPECT_EQ(panel.device().integer(DELAY, 0), 120);
    }
}

TEST_P(Gapped_screen, AValueOfTheDeviceInAGapIsShownButNotWritten) {
    for (const char* const members : {BY_ITEM, BY_RULE}) {
        SCOPED_TRACE(members);
        Menu_panel panel(delay_menu(members, 101), GetParam());
        panel.tick();
        EXPECT_TRUE(shows(panel, "101"));
        panel.press(Key::SELECT).tick();
        EXPECT_TRUE(shows(panel, "101"));
        panel.press(Key::SELECT);
        EXPECT_TRUE(shows(panel, "limit: new val"));
        EXPECT_EQ(panel.device().integer(DELAY, 0), 101);
        panel.press(Key::SELECT);
        EXPECT_TRUE(shows(panel, "120"));
        panel.press(Key::SELECT);
        EXPECT_EQ(panel.device().integer(DELAY, 0), 120);
    }
}

TEST_P(Gapped_screen, AValueThatAChangeOfTheDeviceForbidsMovesToTheNearest) {
    Menu_panel panel(delay_menu(BY_RULE, 79), GetParam());
    panel.device().set_integer(MODE, 0, 0);
    panel.tick().press(Key::SELECT).press(Key::UP, 12);
    EXPECT_TRUE(shows(panel, "91"));
    panel.device().set_integer(MODE, 0, 1);
    panel.tick();
    EXPECT_TRUE(shows(panel, "limit: new val"));
    panel.press(Key::SELECT);
    EXPECT_TRUE(shows(panel, "80"));
    EXPECT_TRUE(panel.device().writes().empty());
}

INSTANTIATE_TEST_SUITE_P(Sizes, Gapped_screen, testing::ValuesIn(SIZES));

}  // namespace
}  // namespace frontpanel
