// Characters of a keyboard in edited values.
#include <gtest/gtest.h>

#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* PARAMETERS = R"(
    {"name": "label", "pid": 20, "type": "text", "length": 16, "value": "Main"},
    {"name": "host", "pid": 21, "type": "text", "length": 15, "value": "127.0.0.1"},
    {"name": "mode", "pid": 22, "type": "integer", "min": 0, "max": 2, "value": 0},
    {"name": "gain", "pid": 23, "type": "integer", "min": -600, "max": 120, "value": 0},
    {"name": "delay", "pid": 24, "type": "integer", "min": 0, "max": 240, "value": 40})";
constexpr const char* GAIN = R"({"type": "range", "name": "Gain", "parameter": "gain",
    "format": "%.1f dB", "value_format": "v/10"})";
constexpr const char* DELAY = R"({"type": "range", "name": "Delay", "parameter": "delay",
    "format": "%d ms", "ranges": [{"min": 0, "max": 80}, {"min": 120, "max": 240}]})";
constexpr const char* ITEMS = R"(
    {"type": "text", "name": "Label", "parameter": "label", "shortcut": 1},
    {"type": "address", "name": "Host", "parameter": "host", "shortcut": 2},
    {"type": "enum", "name": "Mode", "parameter": "mode", "shortcut": 3,
     "choices": ["one", "two", "three"]})";
constexpr Lcd_size SIZES[] = {{16, 2}, {20, 2}, {20, 4}, {40, 4}};

// A key of a keyboard that means something else where nothing is typed.
Key typed(char character) {
    return character >= '1' && character <= '9' ? Key{Key::SHORTCUT, character - '0', character}
           : character == 'd'                   ? Key{Key::DIAGNOSTICS, 0, character}
           : character == 'f'                   ? Key{Key::FAVOURITES, 0, character}
           : character == '-'                   ? Key{Key::FINER, 0, character}
                                                : Key{Key::CHARACTER, 0, character};
}

void type(Menu_panel& panel, const std::string& text) {
    for (const char character : text) {
        panel.controller().press(typed(character));
    }
}

std::string start(const std::string& line, size_t length) {
    return line.substr(0, length);
}

TEST(Typing, WritesATextAtEverySize) {
    for (const Lcd_size size : SIZES) {
        Menu_panel panel(menu_text(PARAMETERS, ITEMS), size);
        panel.press(Key::SELECT).press(Key::RIGHT);
        type(panel, " d-fq 2");
        EXPECT_EQ(start(panel.lines()[1], 11), "Main d-fq 2");
        panel.press(Key::ERASE, 2);
        EXPECT_EQ(start(panel.lines()[1], 11), "Main d-fq  ");
        panel.press(Key::SELECT);
        EXPECT_EQ(panel.device().text(20, 0), "Main d-fq");
    }
}

TEST(Typing, WritesAnAddressAtEverySize) {
    for (const Lcd_size size : SIZES) {
        Menu_panel panel(menu_text(PARAMETERS, ITEMS), size);
        panel.press(Key::DOWN).press(Key::SELECT).press(Key::LEFT, 3);
        type(panel, "10.20.30.47");
        panel.press(Key::ERASE);
        EXPECT_EQ(start(panel.lines()[1], 12), "10.20.30.4  ");
        panel.press(Key::SELECT);
        EXPECT_EQ(panel.device().text(21, 0), "10.20.30.4");
    }
}

TEST(Typing, WritesANumberAsItIsShownAtEverySize) {
    for (const Lcd_size size : SIZES) {
        Menu_panel panel(menu_text(PARAMETERS, GAIN), size);
        panel.press(Key::SELECT);
        type(panel, "-12.55");
        EXPECT_EQ(start(panel.lines()[1], 10), "-12.55 dB ");
        panel.press(Key::ERASE);
        EXPECT_EQ(start(panel.lines()[1], 10), "-12.5 dB  ");
        EXPECT_TRUE(panel.device().writes().empty());
        panel.press(Key::SELECT);
        EXPECT_EQ(panel.device().integer(23, 0), -125);
    }
}

TEST(Typing, ANumberThatIsNotAllowedGoesToTheNearestWithANotice) {
    struct Nearest {
        const char* item;
        const char* typed;
        uint32_t pid;
        int32_t value;
    };
    for (const Nearest& of : {Nearest{GAIN, "99", 23, 120}, Nearest{GAIN, "-99.9", 23, -600},
                              Nearest{GAIN, "1.26", 23, 13}, Nearest{DELAY, "90", 24, 80},
                              Nearest{DELAY, "110", 24, 120}}) {
        SCOPED_TRACE(of.typed);
        Menu_panel panel(menu_text(PARAMETERS, of.item));
        panel.press(Key::SELECT);
        type(panel, of.typed);
        panel.press(Key::SELECT);
        EXPECT_EQ(panel.lines()[1], "limit: new value    ");
        EXPECT_TRUE(panel.device().writes().empty());
        panel.press(Key::SELECT, 2);
        EXPECT_EQ(panel.device().integer(of.pid, 0), of.value);
    }
}

TEST(Typing, ANumberIsSteppedOnFromWhatWasTyped) {
    Menu_panel panel(menu_text(PARAMETERS, DELAY));
    panel.press(Key::SELECT);
    type(panel, "79");
    panel.press(Key::UP, 2);
    EXPECT_EQ(start(panel.lines()[1], 7), "120 ms ");
    type(panel, "5");
    panel.press(Key::ERASE);
    EXPECT_EQ(start(panel.lines()[1], 7), "120 ms ");
    type(panel, "5");
    panel.press(Key::BACK);
    EXPECT_TRUE(panel.device().writes().empty());
}

TEST(Typing, APreviewWritesNoNumberThatIsNotComplete) {
    Menu_panel panel(menu_text(PARAMETERS, DELAY));
    panel.settings(0).preview = true;
    panel.press(Key::SELECT);
    type(panel, "12");
    panel.press(Key::ERASE);
    EXPECT_TRUE(panel.device().writes().empty());
    type(panel, "3");
    panel.press(Key::SELECT);
    ASSERT_EQ(panel.device().writes().size(), 1U);
    EXPECT_EQ(panel.device().integer(24, 0), 13);
}

TEST(Typing, TheStepIsShownInTheUnitAtEverySize) {
    for (const Lcd_size size : SIZES) {
        Menu_panel panel(menu_text(PARAMETERS, GAIN), size);
        panel.press(Key::SELECT).press(Key::COARSER);
        const std::string title = panel.lines()[0];
        EXPECT_EQ(title.substr(title.size() - 12), " step 1.0 dB");
    }
}

TEST(Typing, MeansNothingToOptionsAndInMenus) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    type(panel, "x3");
    EXPECT_EQ(panel.lines()[1], ">Mode            one");
    panel.press(Key::SELECT);
    const Lines opened = panel.lines();
    type(panel, "x2 .");
    EXPECT_EQ(panel.lines(), opened);
    EXPECT_EQ(panel.controller().characters(), "");
}

TEST(Typing, EndsWhileANoticeOrTheLogIsShown) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.press(Key::SELECT).press(Key::DIAGNOSTICS);
    EXPECT_EQ(panel.lines()[1], "not kept            ");
    EXPECT_EQ(panel.controller().characters(), "");
    type(panel, "x");
    EXPECT_EQ(panel.lines()[1], "Main                ");
}

TEST(Typing, AFrameNamesItsModeAndTheCharacters) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    EXPECT_EQ(panel.controller().draw().mode, Panel_mode::TOP_MENU);
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.controller().draw().mode, Panel_mode::TEXT);
    EXPECT_EQ(panel.controller().draw().characters.size(), 95U);
    panel.press(Key::BACK).press(Key::DOWN).press(Key::SELECT);
    EXPECT_EQ(panel.controller().draw().mode, Panel_mode::FIELDS);
    EXPECT_EQ(panel.controller().draw().characters, "0123456789.");
    panel.press(Key::BACK).press(Key::DOWN).press(Key::SELECT);
    EXPECT_EQ(panel.controller().draw().mode, Panel_mode::OPTIONS);
    panel.press(Key::DIAGNOSTICS);
    EXPECT_EQ(panel.controller().draw().mode, Panel_mode::NOTICE);
}

}  // namespace
}  // namespace frontpanel
