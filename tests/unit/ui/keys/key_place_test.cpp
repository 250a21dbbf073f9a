// The arrows to the sides, and the key that erases: in lists and wherever a value is edited.
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* PARAMETERS = R"(
    {"pid": 1, "type": "integer", "min": 0, "max": 999, "value": 123},
    {"pid": 20, "type": "text", "length": 24, "value": "Main"},
    {"pid": 21, "type": "text", "length": 15, "value": "192.0.2.1"},
    {"pid": 22, "type": "text", "length": 20, "value": "12:30"})";
constexpr const char* ITEMS = R"({"type": "node", "name": "All", "items": [
    {"type": "text", "name": "Label", "pid": 20}, {"type": "address", "name": "Address", "pid": 21},
    {"type": "time", "name": "Clock", "pid": 22}, {"type": "range", "name": "Gain", "pid": 1}]})";

// The item of that number is edited.
class ArrowKeys : public testing::Test {
protected:
    void edit(int number) { panel.press(Key::SELECT).press(Key::DOWN, number).press(Key::SELECT); }
    int cursor() { return panel.controller().draw().lcd.cursor_column(); }

    Menu_panel panel{menu_text(PARAMETERS, ITEMS)};
};

TEST_F(ArrowKeys, OpenAndLeaveMenus) {
    panel.press(Key::RIGHT);
    EXPECT_EQ(panel.lines()[0], ">Label          Main");
    panel.press(Key::LEFT);
    EXPECT_EQ(panel.lines()[0], ">All             ...");
    panel.press(Key::RIGHT).press(Key::ERASE);
    EXPECT_EQ(panel.lines()[0], ">All             ...");
    panel.press(Key::RIGHT, 2);
    EXPECT_TRUE(panel.leds().edit);
}

TEST_F(ArrowKeys, MoveTheCursorOfAText) {
    edit(0);
    EXPECT_EQ(cursor(), 3);
    panel.press(Key::LEFT, 2);
    EXPECT_EQ(cursor(), 1);
    panel.press(Key::RIGHT).press(Key::UP);
    EXPECT_EQ(cursor(), 2);
    EXPECT_EQ(panel.lines()[1], "Majn                ");
}

TEST_F(ArrowKeys, MoveToAnotherBlockOfAnAddressAndFieldOfATime) {
    edit(1);
    panel.press(Key::LEFT).press(Key::UP).press(Key::RIGHT).press(Key::UP, 2).press(Key::SELECT);
    EXPECT_EQ(panel.device().text(21, 0), "192.0.3.3");
    panel.press(Key::DOWN).press(Key::SELECT);
    panel.press(Key::LEFT).press(Key::UP).press(Key::RIGHT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.device().text(22, 0), "13:31");
}

TEST_F(ArrowKeys, MoveToAnotherDigitOfANumber) {
    edit(3);
    panel.press(Key::LEFT).press(Key::UP).press(Key::RIGHT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.device().integer(1, 0), 134);
}

TEST_F(ArrowKeys, NeitherAcceptNorDiscardAnything) {
    for (int number = 0; number < 4; ++number) {
        edit(number);
        panel.press(Key::UP).press(Key::RIGHT, 30).press(Key::LEFT, 30).press(Key::RIGHT);
        EXPECT_TRUE(panel.leds().edit) << number;
        EXPECT_TRUE(panel.device().writes().empty()) << number;
        panel.press(Key::BACK, 2);
    }
}

// The arrow that moved the cursor a moment ago is no answer to a question about the value.
TEST(Arrows, DoNotAnswerWhatIsAskedAboutAnEditedValue) {
    Menu_panel warned(menu_text(PARAMETERS, R"({"type": "range", "name": "Gain", "pid": 1,
        "binding": "warn \"loud\" if value > 123"})"));
    warned.press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    for (const Key::Kind key : {Key::RIGHT, Key::LEFT}) {
        warned.press(key);
        EXPECT_EQ(warned.lines()[0], "Gain: loud          ");
        EXPECT_TRUE(warned.device().writes().empty());
    }
    warned.press(Key::SELECT);
    EXPECT_EQ(warned.device().integer(1, 0), 124);
}

TEST(Arrows, LeaveAnEditorThatOnlyShowsItsValue) {
    Menu_panel shown(menu_text(
        PARAMETERS, R"({"type": "text", "name": "Label", "pid": 20, "access": "read-only"})"));
    shown.press(Key::RIGHT);
    EXPECT_EQ(shown.lines()[0], "Label               ");
    shown.press(Key::LEFT);
    EXPECT_EQ(shown.lines()[0], ">Label=         Main");
}

TEST_F(ArrowKeys, TurnNotAboutWithTheEncoder) {
    Encoder_settings encoder;
    encoder.reversed = true;
    panel.set_encoder(encoder);
    panel.press(Key::RIGHT).press(Key::RIGHT).press(Key::LEFT);
    EXPECT_EQ(cursor(), 2);
}

TEST_F(ArrowKeys, EraseTakesTheCharacterAtTheCursorOfAText) {
    edit(0);
    panel.press(Key::ERASE, 2);
    EXPECT_EQ(panel.lines()[1], "Ma                  ");
    EXPECT_TRUE(panel.leds().edit);
}

// One key too many loses no edit where characters are typed.
TEST_F(ArrowKeys, EraseLeavesOnlyEditorsThatTakeNoCharacters) {
    for (int number = 1; number < 4; ++number) {
        edit(number);
        panel.press(Key::UP);
        const bool is_typed = !panel.controller().characters().empty();
        const Lines before = panel.lines();
        panel.press(Key::ERASE);
        EXPECT_EQ(panel.leds().edit, is_typed) << number;
        EXPECT_EQ(panel.lines() == before, is_typed) << number;
        EXPECT_TRUE(panel.device().writes().empty()) << number;
        panel.press(Key::BACK, is_typed ? 2 : 1);
    }
}

}  // namespace
}  // namespace frontpanel
